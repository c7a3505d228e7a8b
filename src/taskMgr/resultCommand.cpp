#include "resultCommand.h"

#include "globalFunction.h"

namespace {

int skipCount(const QString& text)
{
    bool ok = false;
    const int count = text.toInt(&ok, 10);
    return ok ? count : 1;
}

}  // namespace

ResultCommand ResultCommand::takeFrom(QString& result)
{
    static const QString s_strOpen = QStringLiteral("<CMD>");
    static const QString s_strClose = QStringLiteral("</CMD>");
    const QString body = GlobalFunction::getAndRemoveBody(result, s_strOpen, s_strClose);
    if (body.startsWith(QLatin1String("skip:")))
        return {Kind::Skip, skipCount(body.mid(5)), {}};
    if (body.startsWith(QLatin1String("stop:")))
        return {Kind::Stop, 1, body.mid(5)};
    if (body.startsWith(QLatin1String("print:")))
        return {Kind::Print, 1, body.mid(6)};
    return {};
}

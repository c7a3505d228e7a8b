#include "saving/savingName.h"

#include "paramStore/arithmParamMgr.h"
#include "saving/saving.h"
#include "saving/savingOption.h"

#include <QDateTime>
#include <QDir>

std::atomic<int> gNumber{0};

namespace {

/// The first string of a record as UTF-8, as much of it as fits this thread's result buffer, up to its first zero byte;
/// empty when it has none.
QString firstStringOf(const ParamStrings& record)
{
    QString empty;
    char* buffer = Saving::transConfigStr(empty);
    const int length = record.getString(buffer, Saving::s_nBuffLen - 1, 0);
    buffer[length] = '\0';
    return QString::fromUtf8(buffer);
}

QString stringPart(const SavingOption& option, const ArithmParamMgr* store)
{
    if (!option.m_bStringID)
        return option.m_strStringID;
    const ParamStrings* record = store ? store->findParamStrings(option.stringRecordID()) : nullptr;
    return record ? firstStringOf(*record) : QString();
}

QString timeStamp()
{
    const QDateTime now = QDateTime::currentDateTime();
    const QDate date = now.date();
    const QTime time = now.time();
    return QString::asprintf("[%d.%d.%d][%d.%d.%d][%d]", date.year(), date.month(), date.day(), time.hour(),
                             time.minute(), time.second(), time.msec());
}

QString identityPart(const SavingOption& option)
{
    switch (option.m_nIdentity) {
    case SavingOption::TimeStamp:
        return timeStamp();
    case SavingOption::RunningNumber:
        return QString::number(gNumber.fetch_add(1));
    default:
        return {};
    }
}

QString extension(int format)
{
    static const QStringList extensions{QStringLiteral(".jpg"), QStringLiteral(".png"), QStringLiteral(".bmp")};
    return extensions.value(format);
}

/// The base folder with a separator at its end; it need not exist afterwards.
QString openFolder(const QString& basePath)
{
    if (!QDir(basePath).exists())
        QDir().mkdir(basePath);
    return basePath.endsWith(QDir::separator()) ? basePath : basePath + QLatin1Char('/');
}

}  // namespace

QString SavingName::nextPath(const SavingOption& option, const ArithmParamMgr* store)
{
    const QString string = stringPart(option, store);
    const QString identity = identityPart(option);
    const QString name =
        option.m_bExchange ? identity + option.m_strSeparator + string : string + option.m_strSeparator + identity;
    return openFolder(option.m_strBasePath) + name + extension(option.m_nFormat);
}

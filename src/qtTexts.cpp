#include "qtTexts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <memory>

bool QtTexts::makeChinese(const QString& folder)
{
    const QString place = folder.isEmpty() ? QLibraryInfo::location(QLibraryInfo::TranslationsPath) : folder;
    auto translator = std::make_unique<QTranslator>(QCoreApplication::instance());
    // The one file with the texts of windows; "qt_zh_CN" would only lead to it, and load others as well.
    if (!translator->load(QStringLiteral("qtbase_zh_CN"), place))
        return false;
    return QCoreApplication::installTranslator(translator.release());  // owned by the application
}

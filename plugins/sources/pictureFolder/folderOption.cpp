#include "folderOption.h"

#include <pacer.h>
#include <taggedText.h>

FolderOption FolderOption::read(const QString& text)
{
    const TaggedReader reader(text);
    FolderOption option;
    option.folder = reader.text(QStringLiteral("Folder")).trimmed();
    option.loop = reader.flag(QStringLiteral("Loop"), option.loop);
    option.rate = Pacer::possibleRate(reader.real(QStringLiteral("Rate"), option.rate, 0, Pacer::MaxRate));
    return option;
}

QString FolderOption::write() const
{
    return TaggedWriter()
        .text(QStringLiteral("Folder"), folder)
        .flag(QStringLiteral("Loop"), loop)
        .real(QStringLiteral("Rate"), rate)
        .result();
}

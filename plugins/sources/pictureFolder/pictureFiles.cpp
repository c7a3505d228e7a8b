#include "pictureFiles.h"

#include "folderMessages.h"

#include <QCollator>
#include <QDir>

#include <algorithm>

namespace {

const QStringList Patterns{QStringLiteral("*.png"),  QStringLiteral("*.bmp"), QStringLiteral("*.jpg"),
                           QStringLiteral("*.jpeg"), QStringLiteral("*.tif"), QStringLiteral("*.tiff")};

/// Orders names the same way in every locale; names that only differ in what a reader ignores go by their code units.
void sortNaturally(QStringList& names)
{
    QCollator collator(QLocale(QLocale::English, QLocale::UnitedStates));
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    std::sort(names.begin(), names.end(), [&collator](const QString& first, const QString& second) {
        const int order = collator.compare(first, second);
        return order != 0 ? order < 0 : first < second;
    });
}

}  // namespace

PictureFiles listPictureFiles(const QString& folder)
{
    if (folder.isEmpty())
        return {QStringList(), FolderMessages::noFolder()};
    const QDir dir(folder);
    if (!dir.exists())
        return {QStringList(), FolderMessages::folderMissing(folder)};
    QStringList names = dir.entryList(Patterns, QDir::Files, QDir::Unsorted);
    if (names.isEmpty())
        return {QStringList(), FolderMessages::folderEmpty(folder)};
    sortNaturally(names);
    for (QString& name : names)
        name = dir.absoluteFilePath(name);
    return {names, QString()};
}

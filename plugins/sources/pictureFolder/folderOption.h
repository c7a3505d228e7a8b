#pragma once

#include <QString>

/// The configuration of a picture folder.
struct FolderOption
{
    QString folder;      ///< A relative one is relative to the working directory.
    bool loop = true;    ///< From the first picture again after the last one.
    double rate = 10.0;  ///< Pictures a second; 0: as fast as asked.

    static FolderOption read(const QString& text);
    QString write() const;

    bool operator==(const FolderOption& other) const
    {
        return folder == other.folder && loop == other.loop && rate == other.rate;
    }
};

#pragma once

#include <QStringList>

/// The pictures of a folder.
struct PictureFiles
{
    QStringList paths;  ///< Absolute, in natural order of the names: "2.png" before "10.png".
    QString error;      ///< Why there are none.
};

/// Lists the PNG, BMP, JPEG and TIFF files of a folder; they are told by the ends of their names, in any case.
PictureFiles listPictureFiles(const QString& folder);

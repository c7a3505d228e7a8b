#pragma once

#include "packLibraries.h"

#include <QColor>
#include <QImage>
#include <QTemporaryDir>
#include <QVector>
#include <QtTest>

#include <memory>

/// A folder of one test's own with pictures in it, and the data source "Picture Folder" that plays them.
class PictureFiles
{
protected:
    /// Writes a picture of one colour.
    void write(const QString& name, const QColor& colour, const QSize& size = QSize(5, 4),
               QImage::Format format = QImage::Format_RGB32) const
    {
        QImage image(size, format);
        image.fill(colour);
        QVERIFY2(image.save(m_pcDir->filePath(name)), qPrintable(name));
    }

    /// The red values of the next pictures.
    static QVector<int> nextReds(SourceInstance& source, int count)
    {
        QVector<int> reds;
        for (int i = 0; i < count; ++i) {
            const Picture picture = source.waitFor("RGB");
            reds << (picture.isNull() ? -1 : picture.byteAt(2));
        }
        return reds;
    }

    const SourceLibrary m_cLibrary{QStringLiteral("pictureFolder")};
    std::unique_ptr<QTemporaryDir> m_pcDir;
};

#include "directSupport.h"

#include <QtTest>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <limits>

#include <sys/uio.h>
#include <unistd.h>  // gives the function the name that programs with large files call

using namespace DirectSupport;
using namespace PictureSupport;

namespace {

/// What the file system does to the reads of this program.
struct FileSystem
{
    std::size_t m_nMostAtOnce = SIZE_MAX;                 ///< Bytes; network file systems give fewer than asked for.
    off_t m_nBroken = std::numeric_limits<off_t>::max();  ///< From this place on the disk cannot be read.
};

FileSystem s_cFileSystem;

}  // namespace

/// Comes before that of the C library.
extern "C" ssize_t pread(int handle, void* target, size_t count, off_t position)
{
    const std::size_t most = std::min(count, s_cFileSystem.m_nMostAtOnce);
    if (position + static_cast<off_t>(most) > s_cFileSystem.m_nBroken) {
        errno = EIO;
        return -1;
    }
    const iovec part{target, most};
    return ::preadv(handle, &part, 1, position);
}

/// File systems that give fewer bytes than asked for, and disks that break in the middle of a file.
class TestFileReads : public QObject
{
    Q_OBJECT

    Folder m_cFolder;

    static void addKinds()
    {
        QTest::addColumn<QString>("suffix");
        QTest::addColumn<int>("format");
        QTest::newRow("bitmap, 24 bits") << "bmp" << int{QImage::Format_RGB888};
        QTest::newRow("bitmap, 8 bits") << "bmp" << int{QImage::Format_Indexed8};
        QTest::newRow("jpeg") << "jpg" << int{QImage::Format_RGB888};
        QTest::newRow("png") << "png" << int{QImage::Format_RGB888};
    }

    QString saved(QSize size)
    {
        QFETCH(QString, suffix);
        QFETCH(int, format);
        const QImage picture = mixedPicture(static_cast<QImage::Format>(format), size.width(), size.height());
        return m_cFolder.save(picture, "a." + suffix);
    }

private Q_SLOTS:
    void cleanup() { s_cFileSystem = {}; }

    void fileThatComesInSmallPiecesGivesTheWholePicture_data() { addKinds(); }
    void fileThatComesInSmallPiecesGivesTheWholePicture()
    {
        const QSize size(41, 30);
        const QString path = saved(size);
        for (const std::size_t most : {1U, 7U, 1000U}) {
            s_cFileSystem.m_nMostAtOnce = most;
            QVERIFY(direct(path, false, size) == byQt(path, false));
            QVERIFY(direct(path, true, size) == byQt(path, true));
        }
    }

    void fileThatCannotBeReadToItsEndIsLeftToQt_data() { addKinds(); }
    void fileThatCannotBeReadToItsEndIsLeftToQt()
    {
        const QString path = saved(QSize(700, 300));
        const qint64 bytes = QFileInfo(path).size();
        // In the signature, the header, the first and the last of several pieces, the last byte.
        for (const qint64 broken : {qint64{0}, qint64{4}, qint64{40}, bytes / 4, bytes - 100, bytes - 1}) {
            s_cFileSystem.m_nBroken = broken;
            for (const bool grey : {false, true}) {
                SparePicture picture(grey);
                QVERIFY(!DirectReader::read(path, picture));
            }
        }
        s_cFileSystem.m_nBroken = bytes;
        SparePicture picture(false);
        QVERIFY(DirectReader::read(path, picture));
    }
};

QTEST_APPLESS_MAIN(TestFileReads)
#include "testFileReads.moc"

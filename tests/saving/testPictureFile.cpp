#include "saving/pictureFile.h"
#include "savingSupport.h"

#include <QtTest>

#include <random>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace PictureSupport;
using namespace SavingSupport;

namespace {

constexpr int NoOtherUser = 3;  // How a child ends that cannot become an ordinary user.

enum Content
{
    Noisy,
    Smooth,
    Empty,
    Black,
    Dotted,  // a few dots on black
    Lined,   // a few lines on grey
    Camera   // a smooth scene with a sensor's noise
};

int valueAt(Content content, int index, int y, std::mt19937& random)
{
    switch (content) {
    case Noisy:
        return static_cast<int>(random());
    case Smooth:
        return index / 5 + y / 3;
    case Empty:
        return 90;
    case Black:
        return 0;
    case Dotted:
        return index % 53 == 0 && y % 40 == 0 ? 255 : 0;
    case Lined:
        return index % 1200 < 9 || y % 300 < 3 ? 200 : 30;
    case Camera:
        return index / 60 + y / 12 + static_cast<int>(random() % 5);
    }
    return 0;
}

QVector<QRgb> greyRamp()
{
    QVector<QRgb> ramp;
    for (int value = 0; value < 256; ++value)
        ramp.append(qRgb(value, value, value));
    return ramp;
}

QImage pictureOf(QImage::Format format, QSize size, Content content)
{
    QImage picture(size, format);
    if (format == QImage::Format_Indexed8)
        picture.setColorTable(greyRamp());
    std::mt19937 random(7);
    for (int y = 0; y < size.height(); ++y) {
        std::memset(picture.scanLine(y), 0, static_cast<std::size_t>(picture.bytesPerLine()));  // padding, too
        for (int i = 0; i < size.width() * picture.depth() / 8; ++i)
            picture.scanLine(y)[i] = static_cast<unsigned char>(valueAt(content, i, y, random));
    }
    return picture;
}

/// Names and bytes of all chunks but those of the pixels.
QList<QByteArray> otherChunks(const QByteArray& png)
{
    QList<QByteArray> chunks;
    for (int at = 8; at + 12 <= png.size();) {
        const int length = static_cast<int>(qFromBigEndian<quint32>(png.constData() + at));
        const QByteArray chunk = png.mid(at + 4, 4 + length);
        if (!chunk.startsWith("IDAT"))
            chunks.append(chunk);
        at += 12 + length;
    }
    return chunks;
}

}  // namespace

class TestPictureFile : public QObject
{
    Q_OBJECT

    Folder m_cFolder;

    void addPictures()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("content");
        QTest::newRow("colour, noisy") << int{QImage::Format_RGB888} << int{Noisy};
        QTest::newRow("colour, smooth") << int{QImage::Format_RGB888} << int{Smooth};
        QTest::newRow("colour, empty") << int{QImage::Format_RGB888} << int{Empty};
        QTest::newRow("grey, noisy") << int{QImage::Format_Indexed8} << int{Noisy};
        QTest::newRow("grey, smooth") << int{QImage::Format_Indexed8} << int{Smooth};
        QTest::newRow("grey, empty") << int{QImage::Format_Indexed8} << int{Empty};
        QTest::newRow("32 bits") << int{QImage::Format_RGB32} << int{Smooth};
    }

    static QList<QImage> pictures()
    {
        QFETCH(int, format);
        QFETCH(int, content);
        QList<QImage> all;
        for (const QSize& size : {QSize(1, 1), QSize(2, 3), QSize(5, 7), QSize(16, 4), QSize(33, 18), QSize(1021, 301)})
            all += pictureOf(static_cast<QImage::Format>(format), size, static_cast<Content>(content));
        return all;
    }

private Q_SLOTS:
    void bitmapIsByteForByteWhatQtWrites_data() { addPictures(); }
    void bitmapIsByteForByteWhatQtWrites()
    {
        for (QImage picture : pictures()) {
            picture.setDotsPerMeterX(2345);
            QVERIFY(PictureFile::write(picture, m_cFolder.path("ours.bmp")));
            QCOMPARE(bytesOf(m_cFolder.path("ours.bmp")), bytesOf(m_cFolder.save(picture, "qt.bmp")));
        }
    }

    void jpegIsByteForByteWhatQtWrites_data() { addPictures(); }
    void jpegIsByteForByteWhatQtWrites()
    {
        for (const QImage& picture : pictures()) {
            QVERIFY(PictureFile::write(picture, m_cFolder.path("ours.jpg")));
            QCOMPARE(bytesOf(m_cFolder.path("ours.jpg")), bytesOf(m_cFolder.save(picture, "qt.jpg")));
        }
    }

    void pngHasThePixelsAndTheKindThatQtWrites_data() { addPictures(); }
    void pngHasThePixelsAndTheKindThatQtWrites()
    {
        for (const QImage& picture : pictures()) {
            QVERIFY(PictureFile::write(picture, m_cFolder.path("ours.png")));
            const QImage ours(m_cFolder.path("ours.png"));
            const QImage expected(m_cFolder.save(picture, "qt.png"));
            QCOMPARE(ours.format(), expected.format());
            QCOMPARE(ours, expected);
            QCOMPARE(otherChunks(bytesOf(m_cFolder.path("ours.png"))), otherChunks(bytesOf(m_cFolder.path("qt.png"))));
        }
    }

    void pngIsHardlyLargerThanWhatQtWrites_data()
    {
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("content");
        const char* const contents[] = {"noisy", "smooth", "empty", "black", "a few dots", "a few lines", "camera"};
        for (int content = Noisy; content <= Camera; ++content) {
            QTest::addRow("colour, %s", contents[content]) << int{QImage::Format_RGB888} << content;
            QTest::addRow("grey, %s", contents[content]) << int{QImage::Format_Indexed8} << content;
        }
    }

    void pngIsHardlyLargerThanWhatQtWrites()
    {
        QFETCH(int, format);
        QFETCH(int, content);
        const QImage picture =
            pictureOf(static_cast<QImage::Format>(format), QSize(1920, 1080), static_cast<Content>(content));
        QVERIFY(PictureFile::write(picture, m_cFolder.path("ours.png")));
        const int size = bytesOf(m_cFolder.path("ours.png")).size();
        const int expected = bytesOf(m_cFolder.save(picture, "qt.png")).size();
        QVERIFY2(size * 10 <= expected * 11, QByteArray::number(size) + " for " + QByteArray::number(expected));
    }

    void whatCannotBeWrittenIsRefusedAndTouchesNothing_data()
    {
        QTest::addColumn<QImage>("picture");
        QTest::addColumn<QString>("name");
        QTest::newRow("no picture") << QImage() << "a.bmp";
        QTest::newRow("no format of that name") << plainPicture(2, 2, 0xFF102030) << "a.xyz";
        QTest::newRow("no suffix") << plainPicture(2, 2, 0xFF102030) << "a";
    }

    void whatCannotBeWrittenIsRefusedAndTouchesNothing()
    {
        QFETCH(QImage, picture);
        QFETCH(QString, name);
        const Folder folder;
        const timespec longAgo[] = {{1000000000, 0}, {1000000000, 0}};
        QCOMPARE(::utimensat(AT_FDCWD, QFile::encodeName(folder.path()).constData(), longAgo, 0), 0);
        QVERIFY(!PictureFile::write(picture, folder.path(name)));
        QCOMPARE(folder.names(), QStringList());
        // Not even a hidden file that came and went.
        QCOMPARE(QFileInfo(folder.path()).lastModified().toSecsSinceEpoch(), qint64{1000000000});
    }

    void fullDiskIsReported_data()
    {
        QTest::addColumn<QString>("name");
        for (const char* name : {"a.bmp", "a.png", "a.jpg"})
            QTest::newRow(name) << name;
    }

    void fullDiskIsReported()
    {
        QFETCH(QString, name);
        const Folder folder;
        const QImage picture = pictureOf(QImage::Format_RGB888, QSize(200, 100), Noisy);
        const FullDisk disk(4096);
        QVERIFY(!PictureFile::write(picture, folder.path(name)));
        QCOMPARE(folder.names(), QStringList());
    }

    void placeThatCannotBeWrittenIsRefused()
    {
        const Folder folder;
        QVERIFY(QDir(folder.path()).mkdir("a.bmp"));
        const QImage picture = plainPicture(2, 2, 0xFF102030);
        QVERIFY(!PictureFile::write(picture, folder.path("a.bmp")));
        QVERIFY(!PictureFile::write(picture, folder.path("no such folder/a.bmp")));
        QCOMPARE(folder.names(), QStringList{"a.bmp"});
    }

    void fileThatMayNotBeWrittenIsLeftAlone()
    {
        const Folder folder;
        const QString path = folder.write("kept", "a.bmp");
        QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther));
        QCOMPARE(::chmod(QFile::encodeName(folder.path()).constData(), 0777), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            // The super user may write everything.
            constexpr uid_t Nobody = 65534;
            if (::geteuid() == 0 && ::setresuid(Nobody, Nobody, Nobody) != 0)
                ::_exit(NoOtherUser);
            const QImage picture = plainPicture(2, 2, 0xFF102030);
            const bool isRight =
                PictureFile::write(picture, folder.path("b.bmp")) && !PictureFile::write(picture, path);
            ::_exit(isRight ? 0 : 1);
        }
        int status = -1;
        QCOMPARE(::waitpid(child, &status, 0), child);
        if (WIFEXITED(status) && WEXITSTATUS(status) == NoOtherUser)
            QSKIP("This name space of users has no other than the super user.");
        QCOMPARE(status, 0);
        QCOMPARE(bytesOf(path), QByteArray("kept"));
        QCOMPARE(folder.names(), (QStringList{"a.bmp", "b.bmp"}));
    }

    void linkThatLeadsNowhereIsReplaced()
    {
        const Folder folder;
        QVERIFY(QFile::link(folder.path("gone.bmp"), folder.path("cam.bmp")));
        QVERIFY(PictureFile::write(plainPicture(3, 2, 0xFF102030), folder.path("cam.bmp")));
        QCOMPARE(folder.names(), QStringList{"cam.bmp"});
        QVERIFY(!QFileInfo(folder.path("cam.bmp")).isSymLink());
        QCOMPARE(QImage(folder.path("cam.bmp")).size(), QSize(3, 2));
    }

    void paletteOfOtherColoursIsLeftToQt()
    {
        QImage picture = palettePicture(9, 4);
        for (const char* suffix : {"png", "bmp"}) {
            QVERIFY(PictureFile::write(picture, m_cFolder.path(QStringLiteral("ours.") + suffix)));
            QCOMPARE(QImage(m_cFolder.path(QStringLiteral("ours.") + suffix)),
                     QImage(m_cFolder.save(picture, QStringLiteral("qt.") + suffix)));
        }
        picture.setColorCount(200);
        QVERIFY(PictureFile::write(picture, m_cFolder.path("few.bmp")));
        QCOMPARE(bytesOf(m_cFolder.path("few.bmp")), bytesOf(m_cFolder.save(picture, "fewQt.bmp")));
    }
};

QTEST_APPLESS_MAIN(TestPictureFile)
#include "testPictureFile.moc"

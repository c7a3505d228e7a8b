#include "directSupport.h"
#include "memoryLimit.h"

#include <QtTest>

using namespace PictureSupport;

/// Compressed files of large pictures, which take seconds to make: apart from the other tests, which are quick.
class TestLargePictures : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pictureOfTooManyPixelsIsNotRead();
    void pictureThatMemoryDoesNotSufficeForIsLeftToQt();

private:
    static QImage blackPicture(int width, int height)
    {
        QImage picture(width, height, QImage::Format_Grayscale8);
        picture.fill(0);
        return picture;
    }
};

void TestLargePictures::pictureOfTooManyPixelsIsNotRead()
{
    const QImage large = blackPicture(8193, 8192);
    const Folder folder;
    for (const char* name : {"a.jpg", "a.png"}) {
        const QString path = folder.save(large, name);
        SparePicture picture(true);
        QVERIFY2(!DirectReader::read(path, picture), name);
        QVERIFY2(PictureReader::read(path).isNull(), name);
    }
}

void TestLargePictures::pictureThatMemoryDoesNotSufficeForIsLeftToQt()
{
    if (!MemoryLimit::works())
        QSKIP("a sanitizer needs the address space that the test takes away");
    const QImage large = blackPicture(8192, 8192);
    const Folder folder;
    for (const char* name : {"a.jpg", "a.png"}) {
        const QString path = folder.save(large, name);
        SparePicture picture(true);
        const MemoryLimit limit(40 * MiB);
        QVERIFY2(!DirectReader::read(path, picture), name);
    }
}

QTEST_APPLESS_MAIN(TestLargePictures)
#include "testLargePictures.moc"

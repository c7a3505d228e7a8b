#include "memoryLimit.h"
#include "pictureSupport.h"
#include "saving/bmpWriter.h"
#include "saving/pngWriter.h"

#include <QBuffer>
#include <QtTest>

using namespace PictureSupport;

namespace {

constexpr int Colour = QImage::Format_RGB888;
constexpr int Indexed = QImage::Format_Indexed8;

/// Takes so many bytes and no more.
class SmallDevice : public QIODevice
{
public:
    explicit SmallDevice(qint64 room) : m_nRoom(room) { open(WriteOnly | Unbuffered); }
    bool isSequential() const override { return true; }

protected:
    qint64 readData(char* /*data*/, qint64 /*length*/) override { return -1; }
    qint64 writeData(const char* /*data*/, qint64 length) override
    {
        const qint64 taken = qMin(length, m_nRoom);
        m_nRoom -= taken;
        return taken;
    }

private:
    qint64 m_nRoom;
};

QVector<QRgb> greyRamp(int count)
{
    QVector<QRgb> ramp;
    for (int value = 0; value < count; ++value)
        ramp.append(qRgb(value, value, value));
    return ramp;
}

/// A picture that claims a size and has no pixels: for what does not look at them.
QImage claimedPicture(int format, int width, int height)
{
    static uchar noPixel = 0;
    const int rowBytes = (width * (format == Colour ? 3 : 1) + 3) / 4 * 4;
    QImage picture(&noPixel, width, height, rowBytes, static_cast<QImage::Format>(format));
    if (format == Indexed)
        picture.setColorTable(greyRamp(256));
    return picture;
}

QImage noisyPicture(int format)
{
    QImage picture(61, 37, static_cast<QImage::Format>(format));
    if (format == Indexed)
        picture.setColorTable(greyRamp(256));
    unsigned state = 1;
    for (int y = 0; y < picture.height(); ++y) {
        for (int i = 0; i < picture.bytesPerLine(); ++i) {
            state = state * 1664525U + 1013904223U;
            picture.scanLine(y)[i] = static_cast<uchar>(state >> 24);
        }
    }
    return picture;
}

}  // namespace

/// The writers of plain pictures by themselves: what they take, and what they say when the device does not take it all.
class TestPictureWriters : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainPicturesAreTaken_data();
    void plainPicturesAreTaken();
    void bitmapsBeyondTwoGigabytesAreNotTaken_data();
    void bitmapsBeyondTwoGigabytesAreNotTaken();
    void deviceThatDoesNotTakeEveryByteIsReported_data();
    void deviceThatDoesNotTakeEveryByteIsReported();
    void rowThatMemoryDoesNotSufficeForIsReported();
};

void TestPictureWriters::plainPicturesAreTaken_data()
{
    QTest::addColumn<QImage>("picture");
    QTest::addColumn<bool>("asBitmap");
    QTest::addColumn<bool>("asPng");
    QImage other = noisyPicture(Indexed);
    QTest::newRow("no picture") << QImage() << false << false;
    QTest::newRow("24 bits") << noisyPicture(Colour) << true << true;
    QTest::newRow("24 bits, one row") << noisyPicture(Colour).copy(0, 0, 5, 1) << true << true;
    QTest::newRow("32 bits") << noisyPicture(Colour).convertToFormat(QImage::Format_RGB32) << false << false;
    QTest::newRow("256 greys") << other << true << true;
    other.setColor(0, qRgb(1, 0, 0));
    QTest::newRow("black is not black") << other << true << false;
    other.setColorTable(greyRamp(256));
    other.setColor(255, qRgb(255, 255, 254));
    QTest::newRow("white is not white") << other << true << false;
    other.setColorTable(greyRamp(255));
    QTest::newRow("255 greys") << other << false << false;
    other.setColorTable({});
    QTest::newRow("no colours") << other << false << false;
}

void TestPictureWriters::plainPicturesAreTaken()
{
    QFETCH(QImage, picture);
    QTEST(BmpWriter::canWrite(picture), "asBitmap");
    QTEST(PngWriter::canWrite(picture), "asPng");
}

void TestPictureWriters::bitmapsBeyondTwoGigabytesAreNotTaken_data()
{
    QTest::addColumn<int>("format");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("height");
    QTest::addColumn<bool>("isTaken");
    // The header and the largest palette have 1078 bytes: 2147482569 are left for the rows.
    QTest::newRow("grey, as high as can be") << Indexed << 4 << 536870642 << true;
    QTest::newRow("grey, one row more") << Indexed << 4 << 536870643 << false;
    QTest::newRow("grey, the last row of three pixels") << Indexed << 3 << 536870643 << false;
    QTest::newRow("colour, as high as can be") << Colour << 2 << 268435321 << true;
    QTest::newRow("colour, one row more") << Colour << 2 << 268435322 << false;
}

void TestPictureWriters::bitmapsBeyondTwoGigabytesAreNotTaken()
{
    QFETCH(int, format);
    QFETCH(int, width);
    QFETCH(int, height);
    const QImage picture = claimedPicture(format, width, height);
    QCOMPARE(picture.height(), height);
    QTEST(BmpWriter::canWrite(picture), "isTaken");
}

void TestPictureWriters::deviceThatDoesNotTakeEveryByteIsReported_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("colour") << Colour;
    QTest::newRow("grey") << Indexed;
}

void TestPictureWriters::deviceThatDoesNotTakeEveryByteIsReported()
{
    QFETCH(int, format);
    const QImage picture = noisyPicture(format);
    for (const auto write : {&BmpWriter::write, &PngWriter::write}) {
        QBuffer whole;
        QVERIFY(whole.open(QIODevice::WriteOnly));
        QVERIFY(write(whole, picture));
        const qint64 size = whole.size();
        for (qint64 room = 0; room < size; room += room < 1200 || size - room < 30 ? 1 : 13) {
            SmallDevice device(room);
            QVERIFY2(!write(device, picture), qPrintable(QStringLiteral("%1 of %2 bytes").arg(room).arg(size)));
        }
        SmallDevice device(size);
        QVERIFY(write(device, picture));
    }
}

void TestPictureWriters::rowThatMemoryDoesNotSufficeForIsReported()
{
    if (!MemoryLimit::works())
        QSKIP("a sanitizer needs the address space that the test takes away");
    const QImage picture = claimedPicture(Colour, 80000000, 1);
    QCOMPARE(picture.width(), 80000000);
    QBuffer buffer;
    QVERIFY(buffer.open(QIODevice::WriteOnly));
    const MemoryLimit limit(100 * MiB);
    QVERIFY(!BmpWriter::write(buffer, picture));
}

QTEST_APPLESS_MAIN(TestPictureWriters)
#include "testPictureWriters.moc"

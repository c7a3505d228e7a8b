#include "directSupport.h"

#include <QtTest>

using namespace DirectSupport;
using namespace PictureSupport;

/// Thousands of files, each with one wrong byte: apart from the other tests, which are quick.
class TestWrongBytes : public QObject
{
    Q_OBJECT

    Folder m_cFolder;

private Q_SLOTS:
    void everyByteMayBeWrong_data()
    {
        QTest::addColumn<QString>("suffix");
        QTest::newRow("bmp") << "bmp";
        QTest::newRow("jpg") << "jpg";
        QTest::newRow("png") << "png";
    }

    /// What is read all the same is what Qt reads.
    void everyByteMayBeWrong()
    {
        QFETCH(QString, suffix);
        const QByteArray whole = bytesOf(m_cFolder.save(mixedPicture(QImage::Format_RGB888, 9, 7), "a." + suffix));
        for (int i = 0; i < std::min(whole.size(), 700); ++i) {
            for (const int change : {0x01, 0x80, 0xFF}) {
                QByteArray bytes = whole;
                bytes[i] = static_cast<char>(bytes.at(i) ^ change);
                const QString path = m_cFolder.write(bytes, "wrong." + suffix);
                SparePicture picture(false);
                if (!DirectReader::read(path, picture))
                    continue;
                const QImage expected = PictureReader::read(path);
                QVERIFY2(!expected.isNull(), qPrintable(QString::asprintf("byte %d ^ %d", i, change)));
                QCOMPARE(direct(path, false, expected.size()), byQt(path, false));
            }
        }
    }
};

QTEST_APPLESS_MAIN(TestWrongBytes)
#include "testWrongBytes.moc"

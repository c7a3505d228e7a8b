#include "loading/loading.h"
#include "pictureSupport.h"
#include "runAtOnce.h"

#include <QtTest>

#include <atomic>
#include <thread>
#include <vector>

using namespace PictureSupport;

namespace {

QString option(const QString& path, int beGray, const QString& id)
{
    return QStringLiteral(
               "<FilePath>%1</FilePath><OutputName>src</OutputName><Describe>camera</Describe>"
               "<BeGray>%2</BeGray><PicType>%2</PicType><PicID>%3</PicID>")
        .arg(path)
        .arg(beGray)
        .arg(id);
}

/// Any format, made without Qt's converters.
QImage pictureOf(QImage::Format format, int width, int height)
{
    QImage picture(width, height, format);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (format == QImage::Format_Mono)
                picture.setPixel(x, y, static_cast<unsigned>(x * y / 7) & 1U);
            else
                picture.setPixelColor(x, y, QColor((x * 5 + y) & 255, (x + y * 7) & 255, (x * 3 + y * 2) & 255));
        }
    }
    return picture;
}

QByteArray hex(const char* text)
{
    return QByteArray::fromHex(text);
}

}  // namespace

class TestLoading : public QObject
{
    Q_OBJECT

    Store m_cStore;
    Folder m_cFolder;

    void load(const QString& path, int beGray, const QString& id = QStringLiteral("3"))
    {
        QCOMPARE(execute<Loading>(option(path, beGray, id), m_cStore.get()), QString());
    }

private Q_SLOTS:
    void init() { m_cStore = makeStore(); }

    void namesOfTheAlgorithm()
    {
        QCOMPARE(Loading::getName(), QStringLiteral("加载图像"));
        QCOMPARE(Loading::getClass(), QStringLiteral("系统"));
        QCOMPARE(Loading::getID(), "KW_Loading");
        QCOMPARE(Loading::s_ID, "KW_Loading");
    }

    void pureColoursAsGrey_data()
    {
        QTest::addColumn<uint>("colour");
        QTest::addColumn<int>("grey");
        QTest::newRow("red") << 0xFFFF0000U << 29;
        QTest::newRow("green") << 0xFF00FF00U << 149;
        QTest::newRow("blue") << 0xFF0000FFU << 76;
    }

    void pureColoursAsGrey()
    {
        QFETCH(uint, colour);
        load(m_cFolder.save(plainPicture(20, 2, colour), "a.bmp"), 1);
        QTEST(static_cast<int>(m_cStore->getParamGray8(3)->getGray8()[39]), "grey");
    }

    void colourRowsAreRedGreenBlueAndPaddedToFourBytes()
    {
        QImage picture(3, 2, QImage::Format_RGB888);
        picture.setPixel(0, 0, qRgb(1, 2, 3));
        picture.setPixel(1, 0, qRgb(4, 5, 6));
        picture.setPixel(2, 0, qRgb(7, 8, 9));
        picture.setPixel(0, 1, qRgb(11, 12, 13));
        picture.setPixel(1, 1, qRgb(14, 15, 16));
        picture.setPixel(2, 1, qRgb(17, 18, 19));
        load(m_cFolder.save(picture, "rows.png"), 0);

        const ParamDIB* record = m_cStore->findParamDIB(3);
        QVERIFY(record);
        QCOMPARE(record->getWidth(), 3);
        QCOMPARE(record->getHeight(), 2);
        const QByteArray bytes = bytesOf(*record);
        QCOMPARE(bytes.size(), 24);
        QCOMPARE(bytes.left(9), hex("010203040506070809"));
        QCOMPARE(bytes.mid(12, 9), hex("0b0c0d0e0f10111213").left(9));
    }

    void greyRowsAreNotPadded()
    {
        QImage picture(3, 2, QImage::Format_RGB888);
        picture.fill(Qt::red);
        picture.setPixel(0, 1, qRgb(0, 255, 0));
        picture.setPixel(2, 1, qRgb(0, 0, 255));
        load(m_cFolder.save(picture, "grey.png"), 1);

        const ParamGray8* record = m_cStore->findParamGray8(3);
        QVERIFY(record);
        QCOMPARE(record->getWidth(), 3);
        QCOMPARE(record->getHeight(), 2);
        QCOMPARE(bytesOf(*record), hex("1d1d1d951d4c"));
    }

    void paletteGivesItsIndexThreeTimesAsColour()
    {
        load(m_cFolder.save(palettePicture(3, 2), "pal.bmp"), 0);
        const QByteArray bytes = bytesOf(*m_cStore->getParamDIB(3));
        QCOMPARE(bytes.size(), 24);
        QCOMPARE(bytes.left(9), hex("0a0a0a0b0b0b0c0c0c"));
        QCOMPARE(bytes.mid(12, 9), hex("0d0d0d0e0e0e0f0f0f"));
    }

    void paletteGivesItsIndexAsGrey()
    {
        load(m_cFolder.save(palettePicture(3, 2), "pal.bmp"), 1);
        QCOMPARE(bytesOf(*m_cStore->getParamGray8(3)), hex("0a0b0c0d0e0f"));
    }

    void everyPixelOfAPictureOfManyRowsIsTaken_data()
    {
        // Several bands of rows each, the last one shorter, and less than Qt hands to threads of its own.
        QTest::addColumn<int>("format");
        QTest::addColumn<int>("height");
        QTest::addColumn<QString>("suffix");
        QTest::newRow("24 bits, png") << int{QImage::Format_RGB888} << 15 << "png";
        QTest::newRow("24 bits, bmp") << int{QImage::Format_RGB888} << 15 << "bmp";
        QTest::newRow("24 bits, ppm") << int{QImage::Format_RGB888} << 15 << "ppm";
        QTest::newRow("32 bits, png") << int{QImage::Format_RGB32} << 15 << "png";
        QTest::newRow("transparency, png") << int{QImage::Format_ARGB32} << 15 << "png";
        QTest::newRow("16 bits a channel, png") << int{QImage::Format_RGBX64} << 15 << "png";
        QTest::newRow("grey, png") << int{QImage::Format_Grayscale8} << 15 << "png";
        QTest::newRow("grey, jpg") << int{QImage::Format_Grayscale8} << 15 << "jpg";
        QTest::newRow("black and white, png") << int{QImage::Format_Mono} << 15 << "png";
        QTest::newRow("black and white, bmp") << int{QImage::Format_Mono} << 15 << "bmp";
    }

    void everyPixelOfAPictureOfManyRowsIsTaken()
    {
        QFETCH(int, format);
        QFETCH(int, height);
        QFETCH(QString, suffix);
        const QString path =
            m_cFolder.save(pictureOf(static_cast<QImage::Format>(format), 1021, height), "many." + suffix);
        load(path, 0);
        load(path, 1);

        const QImage expected = QImage(path).convertToFormat(QImage::Format_RGB888);
        QCOMPARE(expected.height(), height);
        const unsigned char* colour = m_cStore->getParamDIB(3)->getDIB();
        const unsigned char* grey = m_cStore->getParamGray8(3)->getGray8();
        for (int y = 0; y < height; ++y) {
            const unsigned char* row = expected.constScanLine(y);
            QVERIFY(std::memcmp(colour + y * 3064, row, 1021 * 3) == 0);
            for (int x = 0; x < 1021; ++x) {
                const double value = 0.587 * row[3 * x + 1] + 0.299 * row[3 * x + 2] + 0.114 * row[3 * x];
                QCOMPARE(int{grey[y * 1021 + x]}, static_cast<int>(value));
            }
        }
    }

    void recordGetsNameAndDescriptionAtEveryPass()
    {
        m_cStore->getParamGray8(3)->setName(QStringLiteral("old"));
        for (const char* name : {"plain.png", "leftToQt.ppm"}) {
            const QString path = m_cFolder.save(numberedPicture(4, 4), name);
            m_cStore->getParamDIB(3)->setName(QStringLiteral("old"));
            m_cStore->getParamGray8(3)->setDescribe(QStringLiteral("old"));
            load(path, 0);
            load(path, 1);
            QCOMPARE(m_cStore->getParamDIB(3)->getName(), QStringLiteral("src"));
            QCOMPARE(m_cStore->getParamDIB(3)->getDescribe(), QStringLiteral("camera"));
            QCOMPARE(m_cStore->getParamGray8(3)->getName(), QStringLiteral("src"));
            QCOMPARE(m_cStore->getParamGray8(3)->getDescribe(), QStringLiteral("camera"));
        }
    }

    void fileIsReadAnewAtEveryPass()
    {
        const QString path = m_cFolder.save(plainPicture(2, 2, 0xFF0000FF), "again.png");
        load(path, 1);
        m_cFolder.save(plainPicture(5, 2, 0xFFFF0000), "again.png");
        load(path, 1);
        QCOMPARE(m_cStore->getParamGray8(3)->getWidth(), 5);
        QCOMPARE(int{m_cStore->getParamGray8(3)->getGray8()[0]}, 29);
    }

    void chinesePathsAndNamesWork()
    {
        const QString path = m_cFolder.save(numberedPicture(4, 4), QStringLiteral("图像.png"));
        execute<Loading>("<FilePath>" + path + "</FilePath><OutputName>源图</OutputName><PicID>8</PicID>",
                         m_cStore.get());
        QCOMPARE(m_cStore->getParamDIB(8)->getName(), QStringLiteral("源图"));
        QCOMPARE(m_cStore->getParamDIB(8)->getWidth(), 4);
    }

    void onlyOneInBeGrayMeansGrey_data()
    {
        QTest::addColumn<QString>("beGray");
        QTest::addColumn<bool>("isGrey");
        QTest::newRow("1") << "<BeGray>1</BeGray>" << true;
        QTest::newRow("0") << "<BeGray>0</BeGray>" << false;
        QTest::newRow("2") << "<BeGray>2</BeGray>" << false;
        QTest::newRow("word") << "<BeGray>yes</BeGray>" << false;
        QTest::newRow("absent") << "" << false;
    }

    void onlyOneInBeGrayMeansGrey()
    {
        QFETCH(QString, beGray);
        const QString path = m_cFolder.save(numberedPicture(4, 4), "a.png");
        execute<Loading>("<FilePath>" + path + "</FilePath><PicID>3</PicID>" + beGray, m_cStore.get());
        QTEST(m_cStore->findParamGray8(3) != nullptr, "isGrey");
        QFETCH(bool, isGrey);
        QCOMPARE(m_cStore->findParamDIB(3) != nullptr, !isGrey);
    }

    void identifierThatIsNoNumberMakesANewRecordEachTime_data()
    {
        QTest::addColumn<QString>("id");
        QTest::newRow("absent") << "";
        QTest::newRow("word") << "<PicID>three</PicID>";
        QTest::newRow("-1") << "<PicID>-1</PicID>";
    }

    void identifierThatIsNoNumberMakesANewRecordEachTime()
    {
        QFETCH(QString, id);
        const QString text = "<FilePath>" + m_cFolder.save(numberedPicture(4, 4), "a.png") + "</FilePath>" + id;
        execute<Loading>(text, m_cStore.get());
        execute<Loading>(text, m_cStore.get());
        QCOMPARE(m_cStore->requestParamDIBMap()->size(), 2);
        for (const ParamDIB* record : *m_cStore->requestParamDIBMap()) {
            QVERIFY(record->getID() > 0);
            QCOMPARE(record->getWidth(), 4);
        }
    }

    void withoutAStoreNothingHappens()
    {
        const QString path = m_cFolder.save(numberedPicture(4, 4), "a.png");
        QCOMPARE(execute<Loading>(option(path, 0, "3"), nullptr), QString());
        QCOMPARE(QByteArray(Loading::execute(nullptr, m_cStore.get())), QByteArray());
        QVERIFY(m_cStore->requestParamDIBMap()->isEmpty());
    }

    void tenTasksLoadTheirOwnPicturesAtOnce()
    {
        QStringList paths;
        for (int task = 0; task < 10; ++task)
            paths += m_cFolder.save(plainPicture(31 + task, 17, qRgb(task, 100, 200)), QString("t%1.png").arg(task));
        std::atomic<int> wrong{0};
        runAtOnce(10, [&](int task) {
            const Store store = makeStore();
            for (int pass = 0; pass < 20; ++pass) {
                wrong += execute<Loading>(option(paths.at(task), pass % 2, "1"), store.get()).isEmpty() ? 0 : 1;
                wrong += execute<Loading>(option(paths.at(task), 0, "2"), store.get()).isEmpty() ? 0 : 1;
                const ParamDIB* record = store->findParamDIB(2);
                wrong += record->getWidth() == 31 + task && record->getDIB()[0] == task ? 0 : 1;
            }
        });
        QCOMPARE(wrong.load(), 0);
    }

    void resultBufferGrowsByHalvesAndNeverShrinks()
    {
        // On a thread of its own, whose buffer is new.
        std::vector<int> capacities;
        bool isWhole = false;
        std::thread([&] {
            QString text(1023, QLatin1Char('a'));
            Loading::transConfigStr(text);
            capacities.push_back(Loading::s_nBuffLen);
            text += QLatin1Char('b');
            Loading::transConfigStr(text);
            capacities.push_back(Loading::s_nBuffLen);
            text = QString(1000, QChar(0x4E2D));
            isWhole = QString::fromUtf8(Loading::transConfigStr(text)) == text;
            capacities.push_back(Loading::s_nBuffLen);
            text.clear();
            isWhole = isWhole && *Loading::transConfigStr(text) == '\0';
            capacities.push_back(Loading::s_nBuffLen);
        }).join();
        QCOMPARE(capacities, (std::vector<int>{1024, 1536, 3456, 3456}));
        QVERIFY(isWhole);
    }
};

QTEST_GUILESS_MAIN(TestLoading)
#include "testLoading.moc"

#include "pictureFiles.h"

#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QSet>
#include <QTemporaryDir>
#include <QtTest>

#include <pthread.h>

#include <ctime>
#include <limits>
#include <thread>

/// The data source "Picture Folder" through its C interface, on files that the tests write.
class TestPictureFolder : public QObject, private PictureFiles
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void isCalledPictureFolder();
    void deliversEveryFormat_data();
    void deliversEveryFormat();
    void filesOfManyReadsAreWhole_data();
    void filesOfManyReadsAreWhole();
    void redObjectHasBlueGreenRedBytesAndPaddedRows();
    void grayPicturesHaveOneByteAPixel();
    void transparentAndIndexedPicturesAreDelivered();
    void playsInNaturalOrderOfNames();
    void otherFilesAndFoldersAreIgnored();
    void loopStartsAgainAndSeesNewFiles();
    void onceEndsAfterTheLastPicture();
    void startAfterStopBeginsWithTheFirstPicture();
    void typeMayChangeWhilePlaying();
    void decodesAheadButNotBeyondItsQueue();
    void threadThatCannotStartIsReportedAndTriedAgain();
    void slowestRateIsNotNoLimit();
    void rateIsKept();
    void missingFolderIsReportedAndLookedForAgain();
    void noFolderChosenIsReported();
    void emptyFolderIsReportedAndWaitsInsideTheRequest();
    void unreadableFilesAreReportedAndSkipped_data();
    void unreadableFilesAreReportedAndSkipped();
    void folderOfUnreadableFilesNeverBurnsTheProcessor();
    void hugeHeaderIsRefusedBeforeDecoding();
    void relativeFolderFollowsTheWorkingDirectory();
    void configurationWithLineFeedsIsAccepted();
    void newFolderWhilePlayingIsPlayed();
    void requestBeforeStartWaitsAndGivesNothing();
    void stopWakesAWaitingRequest();
    void steadyPlayingUsesItsBuffersAgain();
    void instancesPlayApart();
    void operationsInAnyOrderFromTwoThreadsAreSafe();
    void removingAPlayingInstanceEndsIt();

private:
    void writeBytes(const QString& name, const QByteArray& bytes)
    {
        QFile file(m_pcDir->filePath(name));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QString config(double rate = 0, bool loop = true) const
    {
        return QStringLiteral("<Folder>%1</Folder><Loop>%2</Loop><Rate>%3</Rate>")
            .arg(m_pcDir->path())
            .arg(loop ? 1 : 0)
            .arg(rate);
    }
};

void TestPictureFolder::init()
{
    m_pcDir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_pcDir->isValid());
}

void TestPictureFolder::cleanup()
{
    m_pcDir.reset();
}

void TestPictureFolder::isCalledPictureFolder()
{
    QCOMPARE(QByteArray(m_cLibrary.getDataSourceName()), QByteArray("Picture Folder"));
}

void TestPictureFolder::deliversEveryFormat_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"a.png", "a.PNG", "a.bmp", "a.Bmp", "a.jpg", "a.jpeg", "a.JPG", "a.tif", "a.tiff"})
        QTest::newRow(name) << name;
}

void TestPictureFolder::deliversEveryFormat()
{
    QFETCH(QString, name);
    write(name, QColor(200, 100, 50), QSize(17, 9));
    SourceInstance source(m_cLibrary, config());
    source.start();
    const Picture picture = source.waitFor("RGB");
    QCOMPARE(QSize(picture.width, picture.height), QSize(17, 9));
    const int tolerance = name.contains(".jp", Qt::CaseInsensitive) ? 4 : 0;
    QVERIFY(qAbs(picture.byteAt(0) - 50) <= tolerance);
    QVERIFY(qAbs(picture.byteAt(1) - 100) <= tolerance);
    QVERIFY(qAbs(picture.byteAt(2) - 200) <= tolerance);
    QCOMPARE(source.lastError(), QString());
}

void TestPictureFolder::filesOfManyReadsAreWhole_data()
{
    QTest::addColumn<QString>("name");
    for (const char* name : {"1.png", "1.bmp", "1.jpg", "1.tif"})
        QTest::newRow(name) << name;
}

void TestPictureFolder::filesOfManyReadsAreWhole()
{
    QFETCH(QString, name);
    QImage noise(160, 180, QImage::Format_RGB32);  // small enough that Qt converts it on the thread that asks
    quint32 state = 1;
    for (int y = 0; y < noise.height(); ++y) {
        for (int x = 0; x < noise.width(); ++x) {
            state = state * 1664525 + 1013904223;
            noise.setPixel(x, y, 0xFF000000 | state >> 8);
        }
    }
    QVERIFY(noise.save(m_pcDir->filePath(name), nullptr, 95));
    QVERIFY(QFileInfo(m_pcDir->filePath(name)).size() > 3 * 4096);
    SourceInstance source(m_cLibrary, config());
    source.start();

    const Picture picture = source.waitFor("RGB");

    QCOMPARE(QSize(picture.width, picture.height), noise.size());
    QCOMPARE(source.lastError(), QString());
    if (name.endsWith(QLatin1String("jpg")))
        return;
    const QImage shown(reinterpret_cast<const uchar*>(picture.bytes.constData()), 160, 180, 480, QImage::Format_BGR888);
    for (int y = 0; y < noise.height(); ++y) {
        for (int x = 0; x < noise.width(); ++x)
            QCOMPARE(shown.pixel(x, y), noise.pixel(x, y));
    }
}

void TestPictureFolder::redObjectHasBlueGreenRedBytesAndPaddedRows()
{
    QImage image(5, 2, QImage::Format_RGB32);
    image.fill(Qt::white);
    image.setPixelColor(4, 1, QColor(255, 0, 0));
    QVERIFY(image.save(m_pcDir->filePath("a.png")));
    SourceInstance source(m_cLibrary, config());
    source.start();
    const Picture picture = source.waitFor("RGB");
    QCOMPARE(picture.bytes.size(), 2 * 16);
    QByteArray expected(15, '\xff');
    expected += '\0';
    expected += QByteArray(12, '\xff') + QByteArray("\x00\x00\xff\x00", 4);
    QCOMPARE(picture.bytes, expected);
}

void TestPictureFolder::grayPicturesHaveOneByteAPixel()
{
    QImage image(4, 1, QImage::Format_RGB32);
    image.setPixelColor(0, 0, QColor(0, 0, 255));
    image.setPixelColor(1, 0, QColor(0, 255, 0));
    image.setPixelColor(2, 0, QColor(255, 0, 0));
    image.setPixelColor(3, 0, QColor(77, 77, 77));
    QVERIFY(image.save(m_pcDir->filePath("a.bmp")));
    SourceInstance source(m_cLibrary, config());
    source.start();
    for (int i = 0; i < 5; ++i)
        QCOMPARE(source.waitFor("Gray8").bytes, QByteArray("\x1d\x96\x4c\x4d", 4));
}

void TestPictureFolder::transparentAndIndexedPicturesAreDelivered()
{
    write("1.png", QColor(10, 20, 30, 128), QSize(3, 3), QImage::Format_ARGB32);
    write("2.png", QColor(40, 40, 40), QSize(3, 3), QImage::Format_Grayscale8);
    QImage indexed(3, 3, QImage::Format_Indexed8);
    indexed.setColorTable({qRgb(70, 80, 90)});
    indexed.fill(0);
    QVERIFY(indexed.save(m_pcDir->filePath("3.png")));
    SourceInstance source(m_cLibrary, config());
    source.start();
    QCOMPARE(nextReds(source, 3), (QVector<int>{10, 40, 70}));
}

void TestPictureFolder::playsInNaturalOrderOfNames()
{
    const QStringList ordered{"1.png", "2.bmp", "10.png", "A3.png", "a3.png", "a20.png", "b1.png"};
    // Written in another order, so that the order of the folder itself does not help.
    for (int i = ordered.size() - 1; i >= 0; --i)
        write(ordered[i], QColor(10 + i, 0, 0));
    SourceInstance source(m_cLibrary, config());
    source.start();
    QCOMPARE(nextReds(source, 7), (QVector<int>{10, 11, 12, 13, 14, 15, 16}));
}

void TestPictureFolder::otherFilesAndFoldersAreIgnored()
{
    write("1.png", QColor(1, 0, 0));
    QVERIFY(QDir(m_pcDir->path()).mkdir("0.png"));
    QFile text(m_pcDir->filePath("0.txt"));
    QVERIFY(text.open(QIODevice::WriteOnly));
    SourceInstance source(m_cLibrary, config());
    source.start();
    QCOMPARE(nextReds(source, 3), (QVector<int>{1, 1, 1}));
    QCOMPARE(source.lastError(), QString());
}

void TestPictureFolder::loopStartsAgainAndSeesNewFiles()
{
    write("1.png", QColor(1, 0, 0));
    write("2.png", QColor(2, 0, 0));
    SourceInstance source(m_cLibrary, config());
    source.start();
    QCOMPARE(nextReds(source, 5), (QVector<int>{1, 2, 1, 2, 1}));
    write("3.png", QColor(3, 0, 0));
    int tries = 0;
    while (nextReds(source, 1).first() != 3 && tries < 100)
        ++tries;
    QVERIFY(tries < 100);
}

void TestPictureFolder::onceEndsAfterTheLastPicture()
{
    write("1.png", QColor(1, 0, 0));
    write("2.png", QColor(2, 0, 0));
    SourceInstance source(m_cLibrary, config(0, false));
    source.start();
    QCOMPARE(nextReds(source, 2), (QVector<int>{1, 2}));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(source.request("RGB").isNull());
    QVERIFY(source.request("RGB").isNull());
    QVERIFY(timer.elapsed() >= 380);
    QCOMPARE(source.lastError(), QString());
}

void TestPictureFolder::startAfterStopBeginsWithTheFirstPicture()
{
    for (int i = 1; i <= 3; ++i)
        write(QStringLiteral("%1.png").arg(i), QColor(i, 0, 0));
    SourceInstance source(m_cLibrary, config(0, false));
    for (int round = 0; round < 3; ++round) {
        source.start();
        QCOMPARE(nextReds(source, 2), (QVector<int>{1, 2}));
        source.stop();
    }
}

void TestPictureFolder::typeMayChangeWhilePlaying()
{
    write("1.png", QColor(255, 0, 0), QSize(4, 1));
    SourceInstance source(m_cLibrary, config());
    source.start();
    for (int i = 0; i < 10; ++i) {
        QCOMPARE(source.waitFor("Gray8").bytes, QByteArray(4, '\x4c'));
        QCOMPARE(source.waitFor("RGB").bytes.left(3), QByteArray("\x00\x00\xff", 3));
    }
}

void TestPictureFolder::decodesAheadButNotBeyondItsQueue()
{
    constexpr int fileNum = 20;
    constexpr int mostDecoded = 5;  // the one handed out, three that wait, one that is ready for the queue
    int delivered = 0;
    // How long the thread takes to decode ahead is unknown: it is given more time until it has.
    for (int patienceMs = 100; delivered < 4 && patienceMs < 60000; patienceMs *= 4) {
        for (int i = 1; i <= fileNum; ++i)
            write(QStringLiteral("%1.png").arg(i), QColor(i, 0, 0));
        SourceInstance source(m_cLibrary, config(0, false));
        source.start();
        QCOMPARE(nextReds(source, 1), (QVector<int>{1}));
        QThread::msleep(static_cast<unsigned long>(patienceMs));
        for (int i = 1; i <= fileNum; ++i)
            QVERIFY(QFile::remove(m_pcDir->filePath(QStringLiteral("%1.png").arg(i))));
        delivered = 1;
        for (Picture picture = source.request("RGB"); !picture.isNull(); picture = source.request("RGB"))
            QCOMPARE(picture.byteAt(2), ++delivered);
        QVERIFY2(delivered <= mostDecoded, qPrintable(QString::number(delivered)));
    }
    QVERIFY2(delivered >= 4, qPrintable(QString::number(delivered)));
}

void TestPictureFolder::threadThatCannotStartIsReportedAndTriedAgain()
{
    write("1.png", QColor(7, 0, 0));
    SourceInstance source(m_cLibrary, config());
    // No thread has room for such a stack, with 4 GiB of addresses neither.
    pthread_attr_t usual;
    pthread_attr_t greedy;
    QCOMPARE(pthread_getattr_default_np(&usual), 0);
    QCOMPARE(pthread_getattr_default_np(&greedy), 0);
    QCOMPARE(pthread_attr_setstacksize(&greedy, std::numeric_limits<std::size_t>::max() / 16 * 15 / 65536 * 65536), 0);
    QCOMPARE(pthread_setattr_default_np(&greedy), 0);

    source.start();

    QCOMPARE(pthread_setattr_default_np(&usual), 0);
    pthread_attr_destroy(&greedy);
    pthread_attr_destroy(&usual);
    QCOMPARE(source.lastError(), QStringLiteral("无法启动读取图片的线程."));
    QElapsedTimer timer;
    timer.start();
    QVERIFY(source.request("RGB").isNull());
    QVERIFY(timer.elapsed() >= 190);
    source.stop();
    source.start();
    QCOMPARE(nextReds(source, 1), (QVector<int>{7}));
    QCOMPARE(source.lastError(), QString());
}

void TestPictureFolder::slowestRateIsNotNoLimit()
{
    write("1.png", QColor(1, 0, 0));
    for (const double rate : {0.004, 1e-10, 1e-300}) {
        SourceInstance source(m_cLibrary, config(rate));
        source.start();
        QVERIFY(!source.waitFor().isNull());
        QVERIFY(source.request("RGB").isNull());
    }
}

void TestPictureFolder::rateIsKept()
{
    write("1.png", QColor(1, 0, 0));
    SourceInstance source(m_cLibrary, config(20));
    source.start();
    QVERIFY(!source.waitFor().isNull());
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(nextReds(source, 5), QVector<int>(5, 1));
    QVERIFY(timer.elapsed() >= 4 * 50);
    // A slow rate: a request gives up after its longest wait instead of waiting for the picture.
    source.setConfig(config(0.01));
    QVERIFY(!source.waitFor().isNull());
    timer.restart();
    QVERIFY(source.request("RGB").isNull());
    QVERIFY(timer.elapsed() >= 190);
}

void TestPictureFolder::missingFolderIsReportedAndLookedForAgain()
{
    const QString folder = m_pcDir->filePath("later");
    SourceInstance source(m_cLibrary, QStringLiteral("<Folder>%1</Folder><Rate>0</Rate>").arg(folder));
    source.start();
    QVERIFY(source.request("RGB").isNull());
    QTRY_COMPARE(source.lastError(), QStringLiteral("文件夹不存在: ") + folder);
    QVERIFY(QDir().mkdir(folder));
    write("later/1.png", QColor(9, 0, 0));
    QCOMPARE(nextReds(source, 1), (QVector<int>{9}));
}

void TestPictureFolder::noFolderChosenIsReported()
{
    SourceInstance source(m_cLibrary, QString());
    source.start();
    QVERIFY(source.request("RGB").isNull());
    QTRY_COMPARE(source.lastError(), QStringLiteral("没有选择图片文件夹."));
}

void TestPictureFolder::emptyFolderIsReportedAndWaitsInsideTheRequest()
{
    SourceInstance source(m_cLibrary, config());
    source.start();
    QElapsedTimer timer;
    timer.start();
    for (int i = 0; i < 3; ++i)
        QVERIFY(source.request("RGB").isNull());
    QVERIFY(timer.elapsed() >= 570);
    QTRY_COMPARE(source.lastError(), QStringLiteral("文件夹中没有图片: ") + m_pcDir->path());
}

void TestPictureFolder::unreadableFilesAreReportedAndSkipped_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("length");  // of the file that is left; -1: garbage
    for (const char* name : {"2.png", "2.bmp", "2.jpg", "2.tif"}) {
        QTest::addRow("%s, empty", name) << name << 0;
        QTest::addRow("%s, cut in its header", name) << name << 12;
        QTest::addRow("%s, garbage", name) << name << -1;
    }
    QTest::newRow("2.png, cut in its pixels") << "2.png" << 60;
    // What Qt decodes without an error: the missing rows would be black, the missing blocks grey.
    QTest::newRow("2.bmp, cut in its pixels") << "2.bmp" << 6000;
    QTest::newRow("2.bmp, cut by one byte") << "2.bmp" << 64 * 64 * 3 + 54 - 1;
    QTest::newRow("2.jpg, cut in its pixels") << "2.jpg" << 640;
}

void TestPictureFolder::unreadableFilesAreReportedAndSkipped()
{
    QFETCH(QString, name);
    QFETCH(int, length);
    write("1.png", QColor(1, 0, 0));
    write("3.png", QColor(3, 0, 0));
    write(name, QColor(2, 0, 0), QSize(64, 64));
    if (length >= 0)
        QVERIFY(QFile::resize(m_pcDir->filePath(name), length));
    else
        writeBytes(name, QByteArray(500, 'x'));
    SourceInstance source(m_cLibrary, config());
    source.start();
    QCOMPARE(nextReds(source, 4), (QVector<int>{1, 3, 1, 3}));
    QCOMPARE(source.lastError(), QStringLiteral("无法读取图片: ") + name);
}

void TestPictureFolder::folderOfUnreadableFilesNeverBurnsTheProcessor()
{
    writeBytes("1.png", QByteArray());
    SourceInstance source(m_cLibrary, config());
    source.start();
    const std::clock_t before = std::clock();
    for (int i = 0; i < 5; ++i)  // A second of waiting; a busy loop would have used all of it.
        QVERIFY(source.request("RGB").isNull());
    QVERIFY(double(std::clock() - before) / CLOCKS_PER_SEC < 0.5);
    QCOMPARE(source.lastError(), QStringLiteral("无法读取图片: 1.png"));
}

void TestPictureFolder::hugeHeaderIsRefusedBeforeDecoding()
{
    write("2.png", QColor(2, 0, 0));
    const auto bitmap = [](const QByteArray& side, const QByteArray& bits) {
        return "424d36000000000000003600000028000000" + side + side + "0100" + bits + QByteArray(48, '0');
    };
    const QVector<QPair<QByteArray, QString>> headers{
        {bitmap("10270000", "1800"), "图片太大: 1.bmp"},
        {bitmap("ffffff7f", "ffff"), "无法读取图片: 1.bmp"},
        // A GIF of one pixel on a canvas of 9000x9000: Qt tells the one and decodes the other.
        {"47494638396128232823800100000000ffffff2c00000000010001000002024401003b", "无法读取图片: 1.bmp"}};
    for (const auto& [header, error] : headers) {
        writeBytes("1.bmp", QByteArray::fromHex(header));
        SourceInstance source(m_cLibrary, config());
        source.start();
        QCOMPARE(nextReds(source, 2), QVector<int>(2, 2));
        QCOMPARE(source.lastError(), error);
    }
}

void TestPictureFolder::relativeFolderFollowsTheWorkingDirectory()
{
    QVERIFY(QDir(m_pcDir->path()).mkdir("pictures"));
    write("pictures/1.png", QColor(8, 0, 0));
    const QString before = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_pcDir->path()));
    SourceInstance source(m_cLibrary, QStringLiteral("<Folder>pictures</Folder><Rate>0</Rate>"));
    source.start();
    const QVector<int> reds = nextReds(source, 2);
    source.stop();
    QVERIFY(QDir::setCurrent(before));
    QCOMPARE(reds, (QVector<int>{8, 8}));
}

void TestPictureFolder::configurationWithLineFeedsIsAccepted()
{
    write("1.png", QColor(5, 0, 0));
    SourceInstance source(m_cLibrary, QStringLiteral("\r\n") + config() + QStringLiteral("\n\n"));
    source.start();
    QCOMPARE(nextReds(source, 1), (QVector<int>{5}));
}

void TestPictureFolder::newFolderWhilePlayingIsPlayed()
{
    write("1.png", QColor(1, 0, 0));
    QVERIFY(QDir(m_pcDir->path()).mkdir("b"));
    write("b/1.png", QColor(2, 0, 0));
    SourceInstance source(m_cLibrary, config());
    source.start();
    QCOMPARE(nextReds(source, 2), (QVector<int>{1, 1}));
    source.setConfig(QStringLiteral("<Folder>%1/b</Folder><Rate>0</Rate>").arg(m_pcDir->path()));
    QCOMPARE(nextReds(source, 2), (QVector<int>{2, 2}));
}

void TestPictureFolder::requestBeforeStartWaitsAndGivesNothing()
{
    write("1.png", QColor(1, 0, 0));
    SourceInstance source(m_cLibrary, config());
    QElapsedTimer timer;
    timer.start();
    QVERIFY(source.request("RGB").isNull());
    QVERIFY(timer.elapsed() >= 190);
}

void TestPictureFolder::stopWakesAWaitingRequest()
{
    SourceInstance source(m_cLibrary, config());  // an empty folder: the request finds nothing
    qint64 shortest = 1000000;
    for (int round = 0; round < 20; ++round) {
        source.start();
        QElapsedTimer timer;
        timer.start();
        Picture late;
        std::thread waiting([&] { late = source.request("RGB"); });
        QThread::msleep(20);
        source.stop();
        waiting.join();
        QVERIFY(late.isNull());
        shortest = qMin(shortest, timer.elapsed());
    }
    QVERIFY(shortest < 190);  // one that is not woken takes its whole 200 ms
}

void TestPictureFolder::steadyPlayingUsesItsBuffersAgain()
{
    for (int i = 1; i <= 3; ++i)
        write(QStringLiteral("%1.bmp").arg(i), QColor(i, 0, 0), QSize(640, 480));
    SourceInstance source(m_cLibrary, config());
    source.start();
    QSet<const void*> buffers;
    for (int i = 0; i < 100; ++i) {
        int width = 0, height = 0;
        buffers.insert(m_cLibrary.requestPicture(source.number(), "RGB", &width, &height));
        m_cLibrary.releasePicture(source.number());
    }
    buffers.remove(nullptr);
    // Three wait, one is handed out, one is being decoded.
    QVERIFY2(buffers.size() <= 5, qPrintable(QString::number(buffers.size())));
}

void TestPictureFolder::instancesPlayApart()
{
    write("1.png", QColor(1, 0, 0));
    QVERIFY(QDir(m_pcDir->path()).mkdir("b"));
    write("b/1.png", QColor(2, 0, 0));
    SourceInstance first(m_cLibrary, config());
    SourceInstance second(m_cLibrary, QStringLiteral("<Folder>%1/b</Folder><Rate>0</Rate>").arg(m_pcDir->path()));
    first.start();
    second.start();
    QVector<int> reds;
    std::thread other([&] { reds = nextReds(second, 50); });
    QCOMPARE(nextReds(first, 50), QVector<int>(50, 1));
    other.join();
    QCOMPARE(reds, QVector<int>(50, 2));
}

void TestPictureFolder::operationsInAnyOrderFromTwoThreadsAreSafe()
{
    write("1.png", QColor(1, 0, 0));
    SourceInstance source(m_cLibrary, config());
    int delivered = 0;
    std::thread requesting([&] {
        for (int i = 0; i < 100; ++i)
            delivered += source.request("RGB").isNull() ? 0 : 1;
    });
    for (int i = 0; i < 30; ++i) {
        source.start();
        source.setConfig(config(i % 2 ? 0 : 500));
        source.lastError();
        source.stop();
        source.stop();
        source.start();
    }
    requesting.join();
    QVERIFY(delivered > 0);
}

void TestPictureFolder::removingAPlayingInstanceEndsIt()
{
    write("1.png", QColor(1, 0, 0));
    int number = 0;
    {
        SourceInstance source(m_cLibrary, config());
        number = source.number();
        source.start();
        QCOMPARE(nextReds(source, 1), (QVector<int>{1}));
    }
    int width = 0, height = 0;
    QVERIFY(!m_cLibrary.requestPicture(number, "RGB", &width, &height));
}

QTEST_GUILESS_MAIN(TestPictureFolder)
#include "tst_pictureFolder.moc"

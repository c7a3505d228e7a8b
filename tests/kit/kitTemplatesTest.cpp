#include "paramStore/arithmParamMgr.h"

#include <QElapsedTimer>
#include <QLibrary>
#include <QtTest>

#include <cstring>
#include <thread>

namespace {

/// The entry points of the algorithm template, as the workbench would resolve them.
struct Algorithm
{
    Algorithm() : library(QStringLiteral(INVERT_GRAY))
    {
        library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        if (!library.load())
            return;
        getID = reinterpret_cast<const char* (*)()>(library.resolve("getID"));
        getArithmClass = reinterpret_cast<const char* (*)()>(library.resolve("getArithmClass"));
        getArithmName = reinterpret_cast<const char* (*)()>(library.resolve("getArithmName"));
        showConfigWindow =
            reinterpret_cast<char* (*)(char*, ArithmParamMgr*, bool)>(library.resolve("showConfigWindow"));
        execute = reinterpret_cast<char* (*)(char*, ArithmParamMgr*)>(library.resolve("execute"));
    }

    QString run(QByteArray option, ArithmParamMgr* store) const
    {
        return QString::fromUtf8(execute(option.data(), store));
    }

    QLibrary library;
    const char* (*getID)() = nullptr;
    const char* (*getArithmClass)() = nullptr;
    const char* (*getArithmName)() = nullptr;
    char* (*showConfigWindow)(char*, ArithmParamMgr*, bool) = nullptr;
    char* (*execute)(char*, ArithmParamMgr*) = nullptr;
};

/// A picture that a source handed out.
struct Shot
{
    const unsigned char* pixels = nullptr;  // Not owned.
    int width = 0;
    int height = 0;
};

/// The entry points of the data source template.
struct Source
{
    Source() : library(QStringLiteral(GRAY_RAMP))
    {
        library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
        if (!library.load())
            return;
        getDataSourceName = reinterpret_cast<const char* (*)()>(library.resolve("getDataSourceName"));
        requestPicture =
            reinterpret_cast<unsigned char* (*)(int, const char*, int*, int*)>(library.resolve("requestPicture"));
        releasePicture = reinterpret_cast<void (*)(int)>(library.resolve("releasePicture"));
        showConfigDlg = reinterpret_cast<char* (*)(char*, bool)>(library.resolve("showConfigDlg"));
        setConfig = reinterpret_cast<void (*)(int, char*)>(library.resolve("setConfig"));
        start = reinterpret_cast<void (*)(int)>(library.resolve("start"));
        stop = reinterpret_cast<void (*)(int)>(library.resolve("stop"));
        removeInstance = reinterpret_cast<void (*)(int)>(library.resolve("removeInstance"));
        getLastError = reinterpret_cast<char* (*)(int)>(library.resolve("getLastError"));
    }

    void configure(int instance, QByteArray config) const { setConfig(instance, config.data()); }

    /// Asks until a picture comes, as a task does.
    Shot nextPicture(int instance, const char* type) const
    {
        Shot shot;
        while (!shot.pixels)
            shot.pixels = requestPicture(instance, type, &shot.width, &shot.height);
        return shot;
    }

    QLibrary library;
    const char* (*getDataSourceName)() = nullptr;
    unsigned char* (*requestPicture)(int, const char*, int*, int*) = nullptr;
    void (*releasePicture)(int) = nullptr;
    char* (*showConfigDlg)(char*, bool) = nullptr;
    void (*setConfig)(int, char*) = nullptr;
    void (*start)(int) = nullptr;
    void (*stop)(int) = nullptr;
    void (*removeInstance)(int) = nullptr;
    char* (*getLastError)(int) = nullptr;
};

}  // namespace

/// The two templates of the kit, built by the kit alone, loaded and called as the workbench does.
class KitTemplatesTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { m_pcStore = ArithmParamMgr::newInstance(); }
    void cleanup() { ArithmParamMgr::deleteInstance(m_pcStore); }

    void algorithmSaysWhoItIs();
    void configuringMakesTheOutputRecord();
    void configuringAgainKeepsTheOutputRecord();
    void configuringNeverWritesOntoTheInput();
    void configuringWithoutPicturesGivesNoOption();
    void executeInvertsThePicture();
    void executeSaysWhatIsMissing();
    void textsOfTwoThreadsDoNotMeet();

    void sourceSaysWhoItIs();
    void sourceThatIsNotStartedWaitsAndGivesNothing();
    void rampMovesOnePixelWithEveryPicture();
    void colourRowsArePadded();
    void configSurroundedByLineFeedsIsRead();
    void instancesAreIndependent();
    void unknownPictureTypeIsAnError();

private:
    Algorithm m_cAlgorithm;
    Source m_cSource;
    ArithmParamMgr* m_pcStore = nullptr;  ///< Owned; one for each test.
};

void KitTemplatesTest::initTestCase()
{
    QVERIFY2(m_cAlgorithm.execute, qPrintable(m_cAlgorithm.library.errorString()));
    QVERIFY2(m_cSource.getLastError, qPrintable(m_cSource.library.errorString()));
}

void KitTemplatesTest::algorithmSaysWhoItIs()
{
    QCOMPARE(QByteArray(m_cAlgorithm.getID()), QByteArray("Template_InvertGray"));
    QCOMPARE(QString::fromUtf8(m_cAlgorithm.getArithmClass()), QStringLiteral("模板"));
    QCOMPARE(QString::fromUtf8(m_cAlgorithm.getArithmName()), QStringLiteral("灰度取反"));
}

void KitTemplatesTest::configuringMakesTheOutputRecord()
{
    m_pcStore->getParamGray8(4);
    QByteArray option("");

    const QByteArray kept = m_cAlgorithm.showConfigWindow(option.data(), m_pcStore, true);

    QCOMPARE(kept, QByteArray("<InputID>4</InputID><OutputID>1</OutputID>"));
    QVERIFY(m_pcStore->findParamGray8(1));
    QCOMPARE(m_pcStore->findParamGray8(1)->getName(), QStringLiteral("灰度取反"));
}

void KitTemplatesTest::configuringAgainKeepsTheOutputRecord()
{
    m_pcStore->getParamGray8(4);
    QByteArray option("<InputID>4</InputID><OutputID>9</OutputID>");

    const QByteArray kept = m_cAlgorithm.showConfigWindow(option.data(), m_pcStore, true);

    QCOMPARE(kept, QByteArray("<InputID>4</InputID><OutputID>9</OutputID>"));
}

void KitTemplatesTest::configuringNeverWritesOntoTheInput()
{
    m_pcStore->getParamGray8(4);
    QByteArray option("<InputID>4</InputID><OutputID>4</OutputID>");

    const QByteArray kept = m_cAlgorithm.showConfigWindow(option.data(), m_pcStore, true);

    QCOMPARE(kept, QByteArray("<InputID>4</InputID><OutputID>1</OutputID>"));
}

void KitTemplatesTest::configuringWithoutPicturesGivesNoOption()
{
    QByteArray option("");

    QCOMPARE(QByteArray(m_cAlgorithm.showConfigWindow(option.data(), m_pcStore, true)), QByteArray());
}

void KitTemplatesTest::executeInvertsThePicture()
{
    ParamGray8* input = m_pcStore->getParamGray8(4);
    input->resize(3, 2);
    std::memcpy(input->getGray8(), "\x00\x01\x7f\x80\xfe\xff", 6);

    QCOMPARE(m_cAlgorithm.run("<InputID>4</InputID><OutputID>9</OutputID>", m_pcStore), QString());

    const ParamGray8* output = m_pcStore->findParamGray8(9);
    QVERIFY(output);
    QCOMPARE(output->getWidth(), 3);
    QCOMPARE(output->getHeight(), 2);
    QCOMPARE(output->getName(), QStringLiteral("灰度取反"));
    QCOMPARE(output->getDescribe(), QStringLiteral("灰度取反的结果"));
    QCOMPARE(QByteArray(reinterpret_cast<const char*>(output->getGray8()), 6),
             QByteArray("\xff\xfe\x80\x7f\x01\x00", 6));
}

void KitTemplatesTest::executeSaysWhatIsMissing()
{
    m_pcStore->getParamGray8(4)->resize(1, 1);
    m_pcStore->getParamGray8(5);

    const QString noInput = QStringLiteral("没有输入图像.");
    QCOMPARE(m_cAlgorithm.run("", m_pcStore), noInput);
    QCOMPARE(m_cAlgorithm.run("<InputID>5</InputID><OutputID>9</OutputID>", m_pcStore), noInput);
    QCOMPARE(m_cAlgorithm.run("<InputID>6</InputID><OutputID>9</OutputID>", m_pcStore), noInput);
    QCOMPARE(m_cAlgorithm.run("<InputID>4</InputID>", m_pcStore), QStringLiteral("没有输出图像."));
}

void KitTemplatesTest::textsOfTwoThreadsDoNotMeet()
{
    QByteArray option("");
    const char* ours = m_cAlgorithm.execute(option.data(), m_pcStore);

    std::thread([&] {
        ArithmParamMgr* store = ArithmParamMgr::newInstance();
        store->getParamGray8(1)->resize(1, 1);
        QByteArray theirOption("<InputID>1</InputID><OutputID>2</OutputID>");
        m_cAlgorithm.execute(theirOption.data(), store);
        ArithmParamMgr::deleteInstance(store);
    }).join();

    QCOMPARE(QString::fromUtf8(ours), QStringLiteral("没有输入图像."));
}

void KitTemplatesTest::sourceSaysWhoItIs()
{
    QCOMPARE(QByteArray(m_cSource.getDataSourceName()), QByteArray("Gray Ramp"));
    QByteArray config("");
    QCOMPARE(QByteArray(m_cSource.showConfigDlg(config.data(), true)),
             QByteArray("<Width>640</Width><Height>480</Height>"));
}

void KitTemplatesTest::sourceThatIsNotStartedWaitsAndGivesNothing()
{
    m_cSource.configure(1, "");
    int width = 7;
    int height = 7;
    QElapsedTimer timer;
    timer.start();

    QVERIFY(!m_cSource.requestPicture(1, "Gray8", &width, &height));

    QVERIFY(timer.elapsed() >= 150);
    QCOMPARE(QString::fromUtf8(m_cSource.getLastError(1)), QStringLiteral("没有启动."));
    m_cSource.releasePicture(1);
    m_cSource.removeInstance(1);
}

void KitTemplatesTest::rampMovesOnePixelWithEveryPicture()
{
    m_cSource.configure(1, "<Width>300</Width><Height>2</Height>");
    m_cSource.start(1);

    for (int shift = 0; shift < 3; ++shift) {
        const Shot shot = m_cSource.nextPicture(1, "Gray8");
        QCOMPARE(shot.width, 300);
        QCOMPARE(shot.height, 2);
        QCOMPARE(int(shot.pixels[0]), shift);
        QCOMPARE(int(shot.pixels[255]), (255 + shift) % 256);
        QCOMPARE(int(shot.pixels[300]), shift);
        m_cSource.releasePicture(1);
    }
    QCOMPARE(QByteArray(m_cSource.getLastError(1)), QByteArray());
    m_cSource.stop(1);
    m_cSource.removeInstance(1);
}

void KitTemplatesTest::colourRowsArePadded()
{
    m_cSource.configure(1, "<Width>5</Width><Height>2</Height>");
    m_cSource.start(1);

    const Shot shot = m_cSource.nextPicture(1, "RGB");

    QCOMPARE(shot.width, 5);
    QCOMPARE(shot.height, 2);
    for (int x = 0; x < 5; ++x) {
        QCOMPARE(int(shot.pixels[x * 3]), x);
        QCOMPARE(int(shot.pixels[16 + x * 3 + 2]), x);
    }
    m_cSource.removeInstance(1);
}

void KitTemplatesTest::configSurroundedByLineFeedsIsRead()
{
    m_cSource.configure(1, "\n<Width>12</Width><Height>3</Height>\n");
    m_cSource.start(1);

    const Shot shot = m_cSource.nextPicture(1, "Gray8");

    QCOMPARE(shot.width, 12);
    QCOMPARE(shot.height, 3);
    m_cSource.removeInstance(1);
}

void KitTemplatesTest::instancesAreIndependent()
{
    m_cSource.configure(1, "<Width>10</Width><Height>1</Height>");
    m_cSource.configure(2, "<Width>20</Width><Height>1</Height>");
    const auto widths = [this](int instance, int* wrong) {
        m_cSource.start(instance);
        for (int pictures = 0; pictures < 3; ++pictures)
            *wrong += m_cSource.nextPicture(instance, "Gray8").width == instance * 10 ? 0 : 1;
        m_cSource.stop(instance);
    };
    int wrongOfOne = 0;
    int wrongOfTwo = 0;

    std::thread other(widths, 2, &wrongOfTwo);
    widths(1, &wrongOfOne);
    other.join();

    QCOMPARE(wrongOfOne, 0);
    QCOMPARE(wrongOfTwo, 0);
    m_cSource.removeInstance(1);
    m_cSource.removeInstance(2);
}

void KitTemplatesTest::unknownPictureTypeIsAnError()
{
    m_cSource.configure(1, "");
    m_cSource.start(1);
    int width = 0;
    int height = 0;

    QVERIFY(!m_cSource.requestPicture(1, "Gray12", &width, &height));

    QCOMPARE(QString::fromUtf8(m_cSource.getLastError(1)), QStringLiteral("不支持的图像类型."));
    m_cSource.removeInstance(1);
}

QTEST_GUILESS_MAIN(KitTemplatesTest)
#include "kitTemplatesTest.moc"

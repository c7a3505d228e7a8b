#include "../window/windowFixture.h"
#include "pluginFolders.h"

#include <QtTest>

/// The window is closed while tasks of all kinds run: all of them end, and the window closes soon.
class tstCloseWhileRunning : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void windowClosesWhileSixteenTasksRun_data();
    void windowClosesWhileSixteenTasksRun();
};

namespace {

constexpr int TaskNum = 16;

int threadNum()
{
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size();
}

QByteArray optionStep(const QByteArray& id, const QByteArray& option)
{
    return "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->" + id + "</-ArithmID-><-OptionStr->" + option +
           "</-OptionStr-></-TaskItem->";
}

QByteArray cameraTask(int number, const QByteArray& steps)
{
    return "<=TaskInfo=><-TaskName->t</-TaskName-><-View->" + QByteArray::number(number % 4) +
           "</-View-><-DataSource-><DSName>Test Scripted</DSName><OutputName>p</OutputName><OutputDescribe>"
           "</OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID><Config>wait=3;size=320x200</Config>"
           "</-DataSource->" +
           steps + "</=TaskInfo=>";
}

QByteArray taskOf(int number)
{
    const QByteArray drawing = optionStep("KW_Drawing", "<DataType>0</DataType><DataID>1</DataID>");
    const QByteArray disk = QByteArray::number(number / 4 % 6);
    switch (number % 4) {
    case 0:  // fills a memory disk that nobody empties fast enough
        return cameraTask(number, optionStep("KW_MemoryDisk", "<MemDisk>" + disk +
                                                                  "</MemDisk><InputID>1</InputID>"
                                                                  "<InputType>RGB</InputType>"));
    case 1:
        return cameraTask(number, drawing);
    case 2:
        return cameraTask(number, optionStep("Test.Slow", "20;<CMD>print:here I am</CMD>") + drawing);
    default:  // waits for the pictures of the first
        return taskOnDisk("reader", number / 4 % 6, optionStep("Test.Slow", "50") + drawing);
    }
}

}  // namespace

void tstCloseWhileRunning::initTestCase()
{
    PluginFolders::clear();
    PluginFolders::addBase(QStringLiteral("algorithmSlow"));
    PluginFolders::addSource(QStringLiteral("sourceScripted"));
}

void tstCloseWhileRunning::windowClosesWhileSixteenTasksRun_data()
{
    QTest::addColumn<int>("afterMs");
    QTest::newRow("at once") << 0;
    QTest::newRow("while the first pictures come") << 50;
    QTest::newRow("in full swing") << 700;
}

void tstCloseWhileRunning::windowClosesWhileSixteenTasksRun()
{
    QFETCH(int, afterMs);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("p.lmv"));
    QByteArray project;
    for (int number = 0; number < TaskNum; ++number)
        project += taskOf(number);
    writeFile(path, project);
    auto fixture = std::make_unique<WindowFixture>();
    QVERIFY(fixture->open(path));
    const int threadsBefore = threadNum();
    fixture->press("btnStartAll");
    QTRY_COMPARE(threadNum(), threadsBefore + TaskNum);
    QTest::qWait(afterMs);
    ModalDriver driver;
    driver.box(QMessageBox::Yes);
    QElapsedTimer timer;
    timer.start();

    QVERIFY(fixture->m_pcWindow->close());

    // A pass takes a good second at most, and all are asked before the first is waited for.
    QVERIFY2(timer.elapsed() < 10000, qPrintable(QString::number(timer.elapsed())));
    QVERIFY(driver.done());
    QVERIFY(!fixture->m_pcWindow->isVisible());
    QVERIFY(TaskMgr::s_pcInstance.load() == nullptr);
    QTRY_COMPARE(threadNum(), threadsBefore);
    fixture.reset();
    QCoreApplication::processEvents();
}

QTEST_MAIN(tstCloseWhileRunning)
#include "tstCloseWhileRunning.moc"

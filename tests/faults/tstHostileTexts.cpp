#include "../window/windowFixture.h"
#include "arithm/arithmMgr.h"
#include "pluginFolders.h"

#include <QScreen>
#include <QtTest>

/// Libraries that return texts of tens of megabytes, bytes that are no UTF-8, or nothing at all.
class tstHostileTexts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void textsOfTheLibraryAreReadAsFarAsTheyAreText();
    void hugeErrorIsShownInABoxThatFitsTheScreen();
    void errorOfManyLinesIsShownAsThirtyOfThem();
    void hugePrintsLeaveTheWindowAlive();
    void hugeStopTextEndsTheTask();
    void errorThatIsNoTextIsShownAsFarAsItIs();
    void librariesThatAnswerNullRunForever();

private:
    static QByteArray taskText(const QByteArray& source, const QByteArray& id, const QByteArray& option);
    static void open(WindowFixture& fixture, const QByteArray& task);

    static inline QTemporaryDir* s_pcFolder = nullptr;
};

namespace {

constexpr int Huge = 32 * 1024 * 1024;
constexpr int PatienceMs = 300000;  // A sanitizer on a busy machine takes minutes for such texts.

QByteArray hugeOption(const char* kind)
{
    return QByteArray(kind) + ';' + QByteArray::number(Huge);
}

}  // namespace

void tstHostileTexts::initTestCase()
{
    static QTemporaryDir folder;
    s_pcFolder = &folder;
    PluginFolders::clear();
    PluginFolders::addBase(QStringLiteral("algorithmHostile"));
    PluginFolders::addBase(QStringLiteral("algorithmNull"));
    PluginFolders::addBase(QStringLiteral("algorithmEcho"));
    PluginFolders::addSource(QStringLiteral("sourceScripted"));
    PluginFolders::addSource(QStringLiteral("sourceNull"));
}

QByteArray tstHostileTexts::taskText(const QByteArray& source, const QByteArray& id, const QByteArray& option)
{
    return "<=TaskInfo=><-TaskName->t</-TaskName-><-DataSource-><DSName>" + source +
           "</DSName><OutputName>p</OutputName><OutputDescribe></OutputDescribe><OutputType>RGB</OutputType>"
           "<OutputID>1</OutputID><Config>wait=5</Config></-DataSource-><-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes->"
           "<-ArithmID->" +
           id + "</-ArithmID-><-OptionStr->" + option +
           "</-OptionStr-><-ArithmName->short</-ArithmName-></-TaskItem-></=TaskInfo=>";
}

void tstHostileTexts::open(WindowFixture& fixture, const QByteArray& task)
{
    const QString path = s_pcFolder->filePath(QStringLiteral("hostile.lmv"));
    writeFile(path, task);
    QVERIFY(fixture.open(path));
    QCOMPARE(fixture.tabs()->count(), 1);
}

void tstHostileTexts::textsOfTheLibraryAreReadAsFarAsTheyAreText()
{
    const QStringList classes = ArithmMgr::getInstance()->getArithmClassNames();
    QCOMPARE(classes.size(), 4);  // 系统, Test of the echo, that of the hostile one, the empty one of null
    const QString hostile = classes.filter(QStringLiteral(" class")).value(0);
    QVERIFY(hostile.endsWith(QStringLiteral(" class")));
    QCOMPARE(ArithmMgr::getInstance()->getArithmNames(hostile).value(0).size(), 2 * 1024 * 1024);
}

void tstHostileTexts::hugeErrorIsShownInABoxThatFitsTheScreen()
{
    WindowFixture fixture;
    open(fixture, taskText("Test Scripted", "Test.Hostile", hugeOption("error")));
    ModalDriver driver;
    QString text;
    QSize size;
    driver.dialog([&](QWidget* widget) {
        auto* const box = qobject_cast<QMessageBox*>(widget);
        if (box == nullptr)
            return false;
        text = box->text();
        size = box->size();
        ModalDriver::press(box->button(QMessageBox::Ok));
        return true;
    });

    fixture.runButton(0)->click();
    QTRY_VERIFY_WITH_TIMEOUT(driver.done(), PatienceMs);

    QVERIFY(text.startsWith(QStringLiteral("算法\"short\"出错, 错误信息:HHHH")));
    const QSize screen = QGuiApplication::primaryScreen()->size();
    QVERIFY2(size.width() <= screen.width() && size.height() <= screen.height(),
             qPrintable(QStringLiteral("%1 x %2").arg(size.width()).arg(size.height())));
    QTRY_VERIFY(!TaskMgr::getInstance()->getTask(0)->IsRunning());
}

void tstHostileTexts::errorOfManyLinesIsShownAsThirtyOfThem()
{
    QByteArray lines;
    for (int i = 1; i <= 100; ++i)
        lines += QByteArray::number(i) + '\n';
    QString shown = QStringLiteral("算法\"short\"出错, 错误信息:1");
    for (int i = 2; i <= 30; ++i)
        shown += QStringLiteral("\n%1").arg(i);
    shown += QChar(0x2026);
    WindowFixture fixture;
    open(fixture, taskText("Test Scripted", "Test.Echo", lines));
    ModalDriver driver;
    driver.box(QMessageBox::Ok);

    fixture.runButton(0)->click();
    QTRY_VERIFY(driver.done());

    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, shown);
}

void tstHostileTexts::hugePrintsLeaveTheWindowAlive()
{
    WindowFixture fixture;
    open(fixture, taskText("Test Scripted", "Test.Hostile", hugeOption("print")));
    const int width = fixture.m_pcWindow->width();

    fixture.runButton(0)->click();
    QTRY_VERIFY_WITH_TIMEOUT(TaskMgr::getInstance()->getTask(0)->getPassNum() > 3, PatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(fixture.output()->text().startsWith(QStringLiteral("HHHH")), PatienceMs);
    fixture.runButton(0)->click();

    QVERIFY(!TaskMgr::getInstance()->getTask(0)->IsRunning());
    QCOMPARE(fixture.m_pcWindow->width(), width);
}

void tstHostileTexts::hugeStopTextEndsTheTask()
{
    WindowFixture fixture;
    open(fixture, taskText("Test Scripted", "Test.Hostile", hugeOption("stop")));

    fixture.runButton(0)->click();

    QTRY_VERIFY_WITH_TIMEOUT(!TaskMgr::getInstance()->getTask(0)->IsRunning(), PatienceMs);
    QTRY_VERIFY_WITH_TIMEOUT(fixture.output()->text().startsWith(QStringLiteral("HHHH")), PatienceMs);
}

void tstHostileTexts::errorThatIsNoTextIsShownAsFarAsItIs()
{
    WindowFixture fixture;
    open(fixture, taskText("Test Scripted", "Test.Hostile", "bytes;0"));
    ModalDriver driver;
    driver.box(QMessageBox::Ok);

    fixture.runButton(0)->click();
    QTRY_VERIFY(driver.done());

    QVERIFY(driver.m_lstBoxes.at(0).m_strText.startsWith(QStringLiteral("算法\"short\"出错, 错误信息:")));
    QVERIFY(driver.m_lstBoxes.at(0).m_strText.endsWith(QStringLiteral(" bytes")));
}

void tstHostileTexts::librariesThatAnswerNullRunForever()
{
    WindowFixture fixture;
    // The source that answers null has no name, too, and so cannot be found: the algorithm gets pictures of another.
    open(fixture, taskText("Test Scripted", "", ""));

    fixture.runButton(0)->click();

    QTRY_VERIFY(TaskMgr::getInstance()->getTask(0)->getPassNum() > 20);
    fixture.runButton(0)->click();
    QVERIFY(!TaskMgr::getInstance()->getTask(0)->IsRunning());
}

QTEST_MAIN(tstHostileTexts)
#include "tstHostileTexts.moc"

#include "../faults/childProcess.h"
#include "forms/drawnIcons.h"
#include "startUp.h"
#include "steadyPages.h"
#include "windowFixture.h"

#include <QScreen>

/// The two programs, each started whole in a process of its own, and what it is like once its event loop runs.
class TestPrograms : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void bothAreReadyToWork_data();
    void bothAreReadyToWork();
    void workbenchShowsItsProjectAndWaits();
    void workbenchFillsAScreenThatIsTooSmallForIt();
    void kioskFillsTheScreenAndRunsItsProject();
    void kioskEndsTidilyWhenAsked();
    void workbenchWithoutAProjectIsEmpty();

private:
    /// What a program says of itself by name; nothing when it did not end as it should.
    QHash<QString, QString> reportOf(const QString& program, const QStringList& more = {}) const;

    std::unique_ptr<QTemporaryDir> m_pcFolder;
    QString m_strOldFolder;
};

namespace {

/// Tells all about the program, once its event loop runs.
void report()
{
    QFile file(QStringLiteral("report.txt"));
    file.open(QIODevice::WriteOnly);
    const auto tell = [&file](const char* name, const QString& value) {
        file.write(name + QByteArray("=") + value.toUtf8() + "\n");
    };
    const auto tellIf = [&tell](const char* name, bool holds) { tell(name, holds ? "yes" : "no"); };
    for (const QWidget* const widget : QApplication::topLevelWidgets()) {
        if (const auto* const found = qobject_cast<const MainWindow*>(widget)) {
            const QRect all = QApplication::primaryScreen()->geometry();
            tellIf("shown", found->isVisible());
            tell("title", found->windowTitle());
            tellIf("frameless", found->windowFlags().testFlag(Qt::FramelessWindowHint));
            tellIf("fills the screen", found->geometry() == all);
            tellIf("maximised", found->isMaximized());
        }
    }
    tellIf("scales", QCoreApplication::testAttribute(Qt::AA_EnableHighDpiScaling));
    tellIf("dense icons", QCoreApplication::testAttribute(Qt::AA_UseHighDpiPixmaps));
    tellIf("drawn icons", dynamic_cast<DrawnIcons::Style*>(QApplication::style()) != nullptr);
    tell("cancel", QCoreApplication::translate("QPlatformTheme", "Cancel"));
    tell("dpi", qEnvironmentVariable("QT_FONT_DPI"));
    tell("tasks", QString::number(TaskMgr::getInstance()->getTaskNum()));
    const TaskInfo* const task = TaskMgr::getInstance()->getTask(0);
    tellIf("runs", task != nullptr && task->IsRunning());
    tell("pages of a step", QString::number(SteadyPages::ofOneMoreStep()));
}

void reportAndQuit()
{
    report();
    QCoreApplication::quit();
}

void reportAndAskForTheEnd()
{
    report();
    ::raise(SIGTERM);
}

void watchWorkbench()
{
    QTimer::singleShot(0, reportAndQuit);
}

void watchKiosk()
{
    QTimer::singleShot(0, reportAndAskForTheEnd);
}

/// The part of a child; -1 for none.
int play(int argc, char* argv[])
{
    if (argc < 2 || (qstrcmp(argv[1], "workbench") != 0 && qstrcmp(argv[1], "kiosk") != 0))
        return -1;
    const bool isKiosk = qstrcmp(argv[1], "kiosk") == 0;
    qAddPreRoutine(isKiosk ? watchKiosk : watchWorkbench);
    argv[1] = argv[0];
    return StartUp::run(isKiosk ? StartUp::Program::Kiosk : StartUp::Program::Workbench, argc - 1, argv + 1);
}

}  // namespace

void TestPrograms::init()
{
    m_pcFolder = std::make_unique<QTemporaryDir>();
    m_strOldFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_pcFolder->path()));
}

void TestPrograms::cleanup()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QVERIFY(QDir::setCurrent(m_strOldFolder));
}

QHash<QString, QString> TestPrograms::reportOf(const QString& program, const QStringList& more) const
{
    ChildProcess child(QStringList{program} + more);
    const int status = child.wait();
    QHash<QString, QString> said;
    QFile file(m_pcFolder->filePath("report.txt"));
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || !file.open(QIODevice::ReadOnly))
        return said;
    for (const QString& line : QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts))
        said.insert(line.section('=', 0, 0), line.section('=', 1));
    return said;
}

void TestPrograms::bothAreReadyToWork_data()
{
    QTest::addColumn<int>("unused");
    QTest::newRow("workbench") << 0;
    QTest::newRow("kiosk") << 0;
}

void TestPrograms::bothAreReadyToWork()
{
    // A platform of that name does not exist; what comes behind it is taken.
    qputenv("QT_QPA_PLATFORM", "linuxfbOfNoKind;offscreen");
    const QHash<QString, QString> said = reportOf(QLatin1String(QTest::currentDataTag()));
    QCOMPARE(said.value("shown"), QStringLiteral("yes"));
    QCOMPARE(said.value("scales"), QStringLiteral("yes"));
    QCOMPARE(said.value("dense icons"), QStringLiteral("yes"));
    QCOMPARE(said.value("drawn icons"), QStringLiteral("yes"));
    QCOMPARE(said.value("cancel"), QStringLiteral("取消"));
    QCOMPARE(said.value("dpi"), QStringLiteral("96"));  // a frame buffer's texts keep their size
#if defined(LUMIVANT_MALLOC_KEEPS)
    QVERIFY2(said.value("pages of a step").toInt() < 64, qPrintable(said.value("pages of a step")));
#endif
}

void TestPrograms::workbenchShowsItsProjectAndWaits()
{
    writeFile("a.lmv", taskWithoutSource("第一") + taskWithoutSource("b"));
    const QHash<QString, QString> said = reportOf("workbench", {"a.lmv"});
    QCOMPARE(said.value("title"), QStringLiteral("Lumivant - ") + QFileInfo("a.lmv").absoluteFilePath());
    QCOMPARE(said.value("tasks"), QStringLiteral("2"));
    QCOMPARE(said.value("runs"), QStringLiteral("no"));
    QCOMPARE(said.value("frameless"), QStringLiteral("no"));
}

void TestPrograms::workbenchFillsAScreenThatIsTooSmallForIt()
{
    const MainWindow window;
    QVERIFY(window.width() > QApplication::primaryScreen()->geometry().width());
    QCOMPARE(reportOf("workbench").value("maximised"), QStringLiteral("yes"));
}

void TestPrograms::kioskFillsTheScreenAndRunsItsProject()
{
    writeFile("a.lmv", taskOnDisk("第一", 0) + taskOnDisk("b", 1));
    const QHash<QString, QString> said = reportOf("kiosk", {"a.lmv"});
    QCOMPARE(said.value("title"), QStringLiteral("Lumivant - ") + QFileInfo("a.lmv").absoluteFilePath());
    QCOMPARE(said.value("tasks"), QStringLiteral("2"));
    QCOMPARE(said.value("runs"), QStringLiteral("yes"));
    QCOMPARE(said.value("frameless"), QStringLiteral("yes"));
    QCOMPARE(said.value("fills the screen"), QStringLiteral("yes"));
}

// Otherwise the request would end the process, which counts as no report.
void TestPrograms::kioskEndsTidilyWhenAsked()
{
    QVERIFY(!reportOf("kiosk").isEmpty());
}

void TestPrograms::workbenchWithoutAProjectIsEmpty()
{
    const QHash<QString, QString> said = reportOf("workbench");
    QCOMPARE(said.value("title"), QStringLiteral("Lumivant"));
    QCOMPARE(said.value("tasks"), QStringLiteral("0"));
}

int main(int argc, char* argv[])
{
    const int ended = play(argc, argv);
    if (ended >= 0)
        return ended;
    QApplication application(argc, argv);
    TestPrograms test;
    return QTest::qExec(&test, argc, argv);
}
#include "testPrograms.moc"

#include "../faults/childProcess.h"
#include "startUp.h"
#include "windowFixture.h"

#include <QScreen>

#include <csignal>

/// What the programs do between the start of their process and the event loop.
class TestStartUp : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void projectNamedFirstIsOpenedAndFurtherArgumentsAreIgnored();
    void withoutANameNothingIsOpened_data();
    void withoutANameNothingIsOpened();
    void missingProjectIsToldInABoxAndChangesNothing();
    void windowFillsTheScreenWithoutAWindowManager();
    void requestToEndLetsTasksRunTheirEndSteps_data();
    void requestToEndLetsTasksRunTheirEndSteps();
    void requestToEndWhileABoxIsOpenEndsTheLoopThatFollows();

private:
    QString at(const char* name) const { return m_pcFolder->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_pcFolder;
    QString m_strOldFolder;
};

namespace {

constexpr int EndedTidily = 7;

/// The saved form of a task that runs until it is stopped and then saves its view as end.png in a folder.
QByteArray taskThatSavesAtItsEnd(const QByteArray& folder)
{
    QByteArray step = stepOf("KW_Saving", "保存图像", "999999999");
    step.replace("<A>1</A>", "<BasePath>" + folder + "</BasePath><StringID>end</StringID><IsStringID>0</IsStringID>" +
                                 "<Identity>2</Identity><Format>1</Format><Exg>0</Exg><Wnd>0</Wnd>");
    return taskOnDisk("t", 0, step);
}

void sayReady()
{
    static_cast<void>(!::write(STDOUT_FILENO, "r", 1));
}

/// The child of the tests: what the program of a board does, with a sign once its event loop runs.
int runBoard(const QString& project)
{
    MainWindow window;
    StartUp::showOverScreen(window);
    StartUp::quitOnEndSignals();
    StartUp::openNamedProject(window, {QString(), project});
    window.on_btnStartAll_clicked();
    QTimer::singleShot(0, sayReady);
    return QApplication::exec() == 0 ? EndedTidily : 1;
}

}  // namespace

void TestStartUp::init()
{
    m_pcFolder = std::make_unique<QTemporaryDir>();
    m_strOldFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_pcFolder->path()));
}

void TestStartUp::cleanup()
{
    QVERIFY(QDir::setCurrent(m_strOldFolder));
}

void TestStartUp::projectNamedFirstIsOpenedAndFurtherArgumentsAreIgnored()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), taskWithoutSource("第一") + taskWithoutSource("b"));

    StartUp::openNamedProject(*fixture.m_pcWindow, {"lumivant", "a.lmv", "c.lmv"});

    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("a.lmv"));
    QCOMPARE(fixture.tabs()->count(), 2);
    QCOMPARE(fixture.tabs()->tabText(0), QStringLiteral("第一"));
}

void TestStartUp::withoutANameNothingIsOpened_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("no arguments at all") << QStringList();
    QTest::newRow("the program's name alone") << QStringList{"lumivant"};
    QTest::newRow("an empty name") << QStringList{"lumivant", ""};
}

void TestStartUp::withoutANameNothingIsOpened()
{
    QFETCH(QStringList, arguments);
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));

    StartUp::openNamedProject(*fixture.m_pcWindow, arguments);

    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
    QCOMPARE(fixture.tabs()->count(), 1);
}

void TestStartUp::missingProjectIsToldInABoxAndChangesNothing()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    ModalDriver driver;
    driver.box(QMessageBox::Ok);

    StartUp::openNamedProject(*fixture.m_pcWindow, {"lumivant", "missing.lmv"});

    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, QStringLiteral("打开文件失败."));
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
    QCOMPARE(fixture.tabs()->count(), 1);
}

void TestStartUp::windowFillsTheScreenWithoutAWindowManager()
{
    MainWindow window;
    StartUp::showOverScreen(window);
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.frameGeometry(), QApplication::primaryScreen()->geometry());
    // On a bare X server the window has the size it was given: nobody there makes it full-screen.
    QCOMPARE(window.normalGeometry(), QApplication::primaryScreen()->geometry());
    QVERIFY(window.windowFlags().testFlag(Qt::FramelessWindowHint));
}

void TestStartUp::requestToEndLetsTasksRunTheirEndSteps_data()
{
    QTest::addColumn<int>("request");
    QTest::newRow("as a service manager asks") << SIGTERM;
    QTest::newRow("as a user at the terminal asks") << SIGINT;
    QTest::newRow("as a display that goes away asks") << SIGHUP;
}

void TestStartUp::requestToEndLetsTasksRunTheirEndSteps()
{
    QFETCH(int, request);
    writeFile(at("a.lmv"), taskThatSavesAtItsEnd(at("out").toUtf8()));
    ChildProcess child({"board", at("a.lmv")});
    QVERIFY(child.waitForSign());

    child.send(request);

    const int status = child.wait();
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), EndedTidily);
    QVERIFY(QFile::exists(at("out/end.png")));
}

void TestStartUp::requestToEndWhileABoxIsOpenEndsTheLoopThatFollows()
{
    ChildProcess child({"boardWithBox", at("missing.lmv")});
    QVERIFY(child.waitForSign());

    child.send(SIGTERM);

    const int status = child.wait();
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), EndedTidily);
}

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc == 3 && qstrcmp(argv[1], "board") == 0)
        return runBoard(QFile::decodeName(argv[2]));
    if (argc == 3 && qstrcmp(argv[1], "boardWithBox") == 0) {
        QTimer::singleShot(0, sayReady);
        return runBoard(QFile::decodeName(argv[2]));
    }
    TestStartUp test;
    return QTest::qExec(&test, argc, argv);
}
#include "testStartUp.moc"

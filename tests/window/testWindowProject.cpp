#include "windowFixture.h"

#include <QDir>

#include <csignal>

#include <sys/resource.h>

/// The project commands with the real file dialogs: new, open, save, save as.
class TestWindowProject : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void newAnsweredNoKeepsEverything();
    void newAnsweredYesClearsTasksTabsAndPath();
    void openDialogLooksForProjectsInTheCurrentFolder();
    void cancelledOpenChangesNothing();
    void openShowsTasksStepsAndTitle();
    void openReplacesWhatWasThere();
    void openingFillsTheTableWithoutEditingTheSteps();
    void unreadableFileChangesNothing();
    void oddProjectsLoadWhatIsThere_data();
    void oddProjectsLoadWhatIsThere();
    void missingSourceAndAlgorithmLoadAndAreToldByTheRun();
    void saveWithoutAPathAsksForAName();
    void savingAsProjWritesProjLmv_data();
    void savingAsProjWritesProjLmv();
    void cancelledSaveWritesNothing();
    void saveAsksBeforeItOverwritesAndDoes();
    void saveAnsweredNoAsksForAnotherName();
    void saveAsAlwaysAsksForAName();
    void dialogAsksBeforeAnotherProjectIsReplacedByANameWithoutEnd();
    void openSaveOpenKeepsTheProject();
    void projectWithoutTasksSavesAsAnEmptyFile();
    void failedSavesKeepPathTitleAndTasks_data();
    void failedSavesKeepPathTitleAndTasks();
    void aFolderInPlaceOfTheFileIsAFailedSave();
    void diskThatTakesOnlyAPartKeepsTheOldProject();

private:
    QString at(const char* name) const { return m_pcFolder->filePath(QString::fromUtf8(name)); }

    std::unique_ptr<QTemporaryDir> m_pcFolder;
    QString m_strOldFolder;
};

namespace {

const QString Warning = QStringLiteral("警告");
const QString Failed = QStringLiteral("打开文件失败.");

}  // namespace

void TestWindowProject::init()
{
    m_pcFolder = std::make_unique<QTemporaryDir>();
    m_strOldFolder = QDir::currentPath();
    QVERIFY(QDir::setCurrent(m_pcFolder->path()));
}

void TestWindowProject::cleanup()
{
    QVERIFY(QDir::setCurrent(m_strOldFolder));
}

void TestWindowProject::newAnsweredNoKeepsEverything()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), taskWithoutSource("a"));
    QVERIFY(fixture.open(at("a.lmv")));
    ModalDriver driver;
    driver.box(QMessageBox::No);
    fixture.trigger("newOption");
    QVERIFY(driver.done());
    QVERIFY(driver.m_lstBoxes.at(0).asks(QStringLiteral("当前所有任务将被清除, 是否确定?")));
    QCOMPARE(fixture.tabs()->count(), 1);
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("a.lmv"));
}

void TestWindowProject::newAnsweredYesClearsTasksTabsAndPath()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), taskWithoutSource("a"));
    QVERIFY(fixture.open(at("a.lmv")));
    const QPointer<QWidget> page = fixture.tabs()->widget(0);
    QVERIFY(page);
    ModalDriver driver;
    driver.box(QMessageBox::Yes);
    fixture.trigger("newOption");
    QCOMPARE(fixture.tabs()->count(), 0);
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 0);
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));

    // The path is forgotten: saving asks for a name, not whether to overwrite.
    driver.file(QString());
    fixture.trigger("saveOption");
    QVERIFY(driver.done());
    QTRY_VERIFY(!page);
}

void TestWindowProject::openDialogLooksForProjectsInTheCurrentFolder()
{
    const WindowFixture fixture;
    ModalDriver driver;
    driver.file(QString());
    fixture.trigger("openOption");
    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstFiles.at(0).m_strTitle, QStringLiteral("打开文件"));
    QCOMPARE(driver.m_lstFiles.at(0).m_lstFilters, QStringList{QStringLiteral("项目文件(*.lmv)")});
    QCOMPARE(driver.m_lstFiles.at(0).m_strFolder, QDir::currentPath());
    QCOMPARE(driver.m_lstFiles.at(0).m_strName, QString());
    QCOMPARE(driver.m_lstFiles.at(0).m_nMode, QFileDialog::AcceptOpen);
    QCOMPARE(driver.m_lstFiles.at(0).m_nFileMode, QFileDialog::ExistingFile);
    QVERIFY(driver.m_lstFiles.at(0).m_bQtsOwn);
}

void TestWindowProject::cancelledOpenChangesNothing()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    QVERIFY(fixture.open(QString()));
    QCOMPARE(fixture.tabs()->count(), 1);
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
}

void TestWindowProject::openShowsTasksStepsAndTitle()
{
    const WindowFixture fixture;
    QByteArray second = taskWithoutSource("第二", stepOf("X", "滤波", "999999999"));
    second.replace("<-Kernel->0<", "<-Kernel->1<").replace("<-View->0<", "<-View->3<");
    writeFile(at("two.lmv"), taskWithoutSource("first", stepOf("KW_Drawing", "绘图", "-1", "画")) + second);

    QVERIFY(fixture.open(QStringLiteral("two.lmv")));

    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("two.lmv"));
    QCOMPARE(fixture.tabs()->count(), 2);
    QCOMPARE(fixture.tabs()->tabText(0), QStringLiteral("first"));
    QCOMPARE(fixture.tabs()->tabText(1), QStringLiteral("第二"));
    const auto combos = fixture.tabs()->widget(1)->findChildren<QComboBox*>();
    QCOMPARE(combos.at(0)->currentIndex(), 1);
    QCOMPARE(combos.at(1)->currentIndex(), 3);

    const QTableWidget* const table = fixture.table(0);
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(table->item(0, 0)->text(), QStringLiteral("画"));
    QCOMPARE(table->item(0, 0)->toolTip(), QStringLiteral("绘图"));
    QCOMPARE(table->item(0, 1)->text(), QStringLiteral("-1"));
    QCOMPARE(table->item(0, 2)->text(), QString());
    QVERIFY(!table->item(0, 2)->flags().testFlag(Qt::ItemIsEditable));
    QVERIFY(table->item(0, 1)->flags().testFlag(Qt::ItemIsEditable));
    QCOMPARE(fixture.table(1)->item(0, 0)->text(), QStringLiteral("滤波"));
    QCOMPARE(fixture.table(1)->item(0, 1)->text(), QStringLiteral("999999999"));
}

void TestWindowProject::openReplacesWhatWasThere()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("old")));
    const QPointer<TaskInfo> old = TaskMgr::getInstance()->getTask(0);
    writeFile(at("a.lmv"), taskWithoutSource("a") + taskWithoutSource("b"));
    QVERIFY(fixture.open(at("a.lmv")));
    QVERIFY(old.isNull());
    QCOMPARE(fixture.tabs()->count(), 2);
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 2);
}

void TestWindowProject::openingFillsTheTableWithoutEditingTheSteps()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), taskWithoutSource("a", stepOf("X", "滤波", "7")));
    QVERIFY(fixture.open(at("a.lmv")));
    const TaskItem step = TaskMgr::getInstance()->getTask(0)->getTaskItem().at(0);
    QCOMPARE(step.m_strDescribe, QString());
    QCOMPARE(step.m_nMaxExeTimes, 7);

    fixture.table(0)->item(0, 0)->setText(QStringLiteral("mine"));
    QCOMPARE(TaskMgr::getInstance()->getTask(0)->getTaskItem().at(0).m_strDescribe, QStringLiteral("mine"));
}

void TestWindowProject::unreadableFileChangesNothing()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    // Opens, but its first read fails.
    const QString path = at("mem.lmv");
    QVERIFY(QFile::link(QStringLiteral("/proc/self/mem"), path));
    ModalDriver driver;
    driver.file(path).box(QMessageBox::Ok);
    fixture.trigger("openOption");
    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(0).m_strTitle, Warning);
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, Failed);
    QCOMPARE(fixture.tabs()->count(), 1);
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 1);
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
}

void TestWindowProject::oddProjectsLoadWhatIsThere_data()
{
    const QByteArray two = taskWithoutSource("a", stepOf("X", "x")) + taskWithoutSource("b", stepOf("Y", "y"));
    QByteArray random;
    for (int i = 1; i < 20000; ++i)
        random.append(static_cast<char>(i * 131 % 255 + 1));
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("tasks");
    QTest::newRow("empty") << QByteArray() << 0;
    QTest::newRow("text of another kind") << QByteArray("hello\nworld\n") << 0;
    QTest::newRow("binary") << random << 0;
    QTest::newRow("zero bytes") << QByteArray(5000, '\0') << 0;
    QTest::newRow("cut within the second task") << two.left(two.size() - 40) << 1;
    QTest::newRow("cut within the first task") << two.left(30) << 0;
    QTest::newRow("NUL between the tasks")
        << taskWithoutSource("a") + QByteArray(1, '\0') + taskWithoutSource("b") << 1;
    QTest::newRow("NUL in front") << QByteArray(1, '\0') + two << 0;
    QTest::newRow("bytes that are no UTF-8 around tasks") << QByteArray("\xff\xfe") + two + "\xc3" << 2;
    QTest::newRow("carriage returns") << QByteArray(two).replace("\n", "\r\n") << 2;
}

void TestWindowProject::oddProjectsLoadWhatIsThere()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, tasks);
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("old")));
    writeFile(at("odd.lmv"), bytes);
    QVERIFY(fixture.open(at("odd.lmv")));
    QCOMPARE(fixture.tabs()->count(), tasks);
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), tasks);
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("odd.lmv"));
}

void TestWindowProject::missingSourceAndAlgorithmLoadAndAreToldByTheRun()
{
    const WindowFixture fixture;
    QByteArray task = taskOnDisk("a", 0, stepOf("Nobody", "没有"));
    task.replace("Memory Disk 0", "No Such Source");
    writeFile(at("a.lmv"), task);
    QVERIFY(fixture.open(at("a.lmv")));
    QCOMPARE(fixture.tabs()->count(), 1);
    QCOMPARE(fixture.table(0)->rowCount(), 1);
    QVERIFY(TaskMgr::getInstance()->getTask(0)->getDataSourceInstance() == nullptr);

    ModalDriver driver;
    driver.box(QMessageBox::Ok);
    fixture.press("btnStartAll");
    QTRY_COMPARE(driver.m_lstBoxes.size(), 1);
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, QStringLiteral("No datasource assigned."));
}

void TestWindowProject::saveWithoutAPathAsksForAName()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    ModalDriver driver;
    driver.file(at("p.lmv"));
    fixture.trigger("saveOption");
    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstFiles.at(0).m_strTitle, QStringLiteral("保存文件"));
    QCOMPARE(driver.m_lstFiles.at(0).m_lstFilters, QStringList{QStringLiteral("项目文件(*.lmv)")});
    QCOMPARE(driver.m_lstFiles.at(0).m_strFolder, QDir::currentPath());
    QCOMPARE(driver.m_lstFiles.at(0).m_nMode, QFileDialog::AcceptSave);
    QCOMPARE(driver.m_lstFiles.at(0).m_nFileMode, QFileDialog::AnyFile);
    QVERIFY(driver.m_lstFiles.at(0).m_bQtsOwn);
    QCOMPARE(readFile(at("p.lmv")), QByteArray("<=TaskInfo=>\n<-TaskName->a</-TaskName->\n<-Kernel->-1</-Kernel->\n"
                                               "<-View->0</-View->\n</=TaskInfo=>\n"));
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("p.lmv"));
}

void TestWindowProject::savingAsProjWritesProjLmv_data()
{
    QTest::addColumn<QString>("typed");
    QTest::addColumn<QString>("written");
    QTest::newRow("without the end") << QStringLiteral("proj") << QStringLiteral("proj.lmv");
    QTest::newRow("with the end") << QStringLiteral("proj.lmv") << QStringLiteral("proj.lmv");
    QTest::newRow("another end") << QStringLiteral("proj.txt") << QStringLiteral("proj.txt.lmv");
    QTest::newRow("the end in capitals") << QStringLiteral("proj.LMV") << QStringLiteral("proj.LMV.lmv");
    QTest::newRow("a Chinese name") << QStringLiteral("项目") << QStringLiteral("项目.lmv");
}

void TestWindowProject::savingAsProjWritesProjLmv()
{
    QFETCH(QString, typed);
    QFETCH(QString, written);
    const WindowFixture fixture;
    QVERIFY(fixture.saveAs(typed));
    QCOMPARE(QDir(m_pcFolder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{written});
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + m_pcFolder->filePath(written));
}

void TestWindowProject::cancelledSaveWritesNothing()
{
    const WindowFixture fixture;
    ModalDriver driver;
    driver.file(QString()).file(QString());
    fixture.trigger("saveOption");
    fixture.trigger("saveOptionAs");
    QVERIFY(driver.done());
    QVERIFY(QDir(m_pcFolder->path()).isEmpty());
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
}

void TestWindowProject::saveAsksBeforeItOverwritesAndDoes()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), "garbage");
    QVERIFY(fixture.open(at("a.lmv")));
    ModalDriver driver;
    driver.box(QMessageBox::Yes);
    fixture.trigger("saveOption");
    QVERIFY(driver.done());
    QVERIFY(driver.m_lstBoxes.at(0).asks(QStringLiteral("是否覆盖当前文件?")));
    QCOMPARE(readFile(at("a.lmv")), QByteArray());
}

void TestWindowProject::saveAnsweredNoAsksForAnotherName()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), "garbage");
    QVERIFY(fixture.open(at("a.lmv")));
    ModalDriver driver;
    driver.box(QMessageBox::No).file(QStringLiteral("b"));
    fixture.trigger("saveOption");
    QVERIFY(driver.done());
    QCOMPARE(readFile(at("a.lmv")), QByteArray("garbage"));
    QCOMPARE(readFile(at("b.lmv")), QByteArray());
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("b.lmv"));
}

void TestWindowProject::saveAsAlwaysAsksForAName()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), "garbage");
    QVERIFY(fixture.open(at("a.lmv")));
    ModalDriver driver;
    driver.file(QStringLiteral("c.lmv"));
    fixture.trigger("saveOptionAs");
    QVERIFY(driver.done());
    QVERIFY(driver.m_lstBoxes.isEmpty());
    QCOMPARE(readFile(at("a.lmv")), QByteArray("garbage"));
    QCOMPARE(readFile(at("c.lmv")), QByteArray());
}

void TestWindowProject::dialogAsksBeforeAnotherProjectIsReplacedByANameWithoutEnd()
{
    const WindowFixture fixture;
    writeFile(at("other.lmv"), "precious");
    ModalDriver driver;
    driver.file(QStringLiteral("other")).box(QMessageBox::No).dialog([](QWidget* widget) {
        auto* const dialog = qobject_cast<QFileDialog*>(widget);
        if (dialog != nullptr)
            dialog->reject();
        return dialog != nullptr;
    });
    fixture.trigger("saveOptionAs");
    QVERIFY(driver.done());
    QCOMPARE(readFile(at("other.lmv")), QByteArray("precious"));
}

void TestWindowProject::openSaveOpenKeepsTheProject()
{
    const WindowFixture fixture;
    const QByteArray text =
        taskOnDisk("一", 3, stepOf("KW_Drawing", "绘图", "-1", "画") + stepOf("N", "n", "999999999")) +
        taskWithoutSource("二", stepOf("M", "m", "0"));
    writeFile(at("a.lmv"), text);
    QVERIFY(fixture.open(at("a.lmv")));
    QVERIFY(fixture.saveAs(QStringLiteral("b")));
    QCOMPARE(readFile(at("b.lmv")), text);

    QVERIFY(fixture.open(at("b.lmv")));
    QCOMPARE(fixture.tabs()->count(), 2);
    QCOMPARE(fixture.table(0)->rowCount(), 2);
    QCOMPARE(fixture.table(0)->item(1, 1)->text(), QStringLiteral("999999999"));
    QVERIFY(TaskMgr::getInstance()->getTask(0)->getDataSourceInstance() != nullptr);
    QVERIFY(TaskMgr::getInstance()->getTask(1)->getDataSourceInstance() == nullptr);
}

void TestWindowProject::projectWithoutTasksSavesAsAnEmptyFile()
{
    const WindowFixture fixture;
    QVERIFY(fixture.saveAs(QStringLiteral("empty")));
    QCOMPARE(readFile(at("empty.lmv")), QByteArray());
    QVERIFY(fixture.open(at("empty.lmv")));
    QCOMPARE(fixture.tabs()->count(), 0);
}

void TestWindowProject::failedSavesKeepPathTitleAndTasks_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("a folder that does not exist") << QStringLiteral("/proc/nowhere/p.lmv");
    QTest::newRow("a folder that takes no files") << QStringLiteral("/proc/p.lmv");
}

void TestWindowProject::failedSavesKeepPathTitleAndTasks()
{
    QFETCH(QString, name);
    const WindowFixture fixture;
    writeFile(at("a.lmv"), taskWithoutSource("a"));
    QVERIFY(fixture.open(at("a.lmv")));
    ModalDriver driver;
    driver.file(name).box(QMessageBox::Ok);
    fixture.trigger("saveOptionAs");
    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(0).m_strTitle, Warning);
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, Failed);
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("a.lmv"));
    QCOMPARE(fixture.tabs()->count(), 1);
    QCOMPARE(readFile(at("a.lmv")), taskWithoutSource("a"));
}

void TestWindowProject::aFolderInPlaceOfTheFileIsAFailedSave()
{
    const WindowFixture fixture;
    writeFile(at("a.lmv"), taskWithoutSource("a"));
    QVERIFY(fixture.open(at("a.lmv")));
    QVERIFY(QFile::remove(at("a.lmv")));
    QVERIFY(QDir(m_pcFolder->path()).mkdir(QStringLiteral("a.lmv")));
    ModalDriver driver;
    driver.box(QMessageBox::Yes).box(QMessageBox::Ok);
    fixture.trigger("saveOption");
    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(1).m_strText, Failed);
    QVERIFY(QFileInfo(at("a.lmv")).isDir());
    QCOMPARE(fixture.tabs()->count(), 1);
}

void TestWindowProject::diskThatTakesOnlyAPartKeepsTheOldProject()
{
    const WindowFixture fixture;
    const QByteArray big = taskWithoutSource("a", stepOf("X", "x").repeated(500));
    writeFile(at("a.lmv"), big);
    QVERIFY(fixture.open(at("a.lmv")));
    fixture.table(0)->item(0, 0)->setText(QStringLiteral("changed"));

    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    rlimit small = old;
    small.rlim_cur = 8192;
    const auto oldHandler = std::signal(SIGXFSZ, SIG_IGN);
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    ModalDriver driver;
    driver.box(QMessageBox::Yes).box(QMessageBox::Ok);
    fixture.trigger("saveOption");
    setrlimit(RLIMIT_FSIZE, &old);
    std::signal(SIGXFSZ, oldHandler);

    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(1).m_strTitle, Warning);
    QCOMPARE(driver.m_lstBoxes.at(1).m_strText, Failed);
    QCOMPARE(readFile(at("a.lmv")), big);
    QCOMPARE(QDir(m_pcFolder->path()).entryList(QDir::Files | QDir::Hidden), QStringList{QStringLiteral("a.lmv")});
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + at("a.lmv"));
}

QTEST_MAIN(TestWindowProject)
#include "testWindowProject.moc"

#include "../window/windowFixture.h"
#include "pluginFolders.h"
#include "smallDisk.h"

#include <QApplication>
#include <QImage>
#include <QtTest>

/// Disks that are full, and folders that go away, while tasks and projects are saved.
class tstDiskFaults : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();
    void savingTaskLeavesNoHalfPictureOnAFullDiskAndGoesOnOnceThereIsRoom_data();
    void savingTaskLeavesNoHalfPictureOnAFullDiskAndGoesOnOnceThereIsRoom();
    void fullDiskKeepsTheOldProjectAndSaysSo();
    void newProjectOnAFullDiskLeavesNothing();
    void folderThatVanishesDuringARunIsMadeAgain();
    void folderWhoseParentVanishesDuringARunStaysAway();
    void projectWhoseFolderVanishedIsNotSavedAndSaysSo();

private:
    static TaskInfo* startSaving(const QString& folder, int format);
};

namespace {

const QString Warning = QStringLiteral("警告");
const QString Failed = QStringLiteral("打开文件失败.");

void waitForPasses(const TaskInfo* task, int passes)
{
    const long long before = task->getPassNum();
    QTRY_VERIFY(task->getPassNum() >= before + passes);
}

}  // namespace

void tstDiskFaults::initTestCase()
{
    PluginFolders::clear();
    PluginFolders::addSource(QStringLiteral("sourceScripted"));
}

void tstDiskFaults::cleanup()
{
    TaskMgr::deleteThis();
}

/// A running task that saves each picture, of about 60 KB, under the next number.
TaskInfo* tstDiskFaults::startSaving(const QString& folder, int format)
{
    auto* const task = new TaskInfo(QStringLiteral("saving"), nullptr);
    task->fromString(
        QStringLiteral(
            "<-DataSource-><DSName>Test Scripted</DSName><OutputName>p</OutputName><OutputDescribe></OutputDescribe>"
            "<OutputType>RGB</OutputType><OutputID>1</OutputID><Config>wait=5;size=200x100</Config></-DataSource->"
            "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->KW_Saving</-ArithmID-><-OptionStr->"
            "<BasePath>%1</BasePath><StringID>cam</StringID><IsStringID>0</IsStringID><Separator>_</Separator>"
            "<Identity>1</Identity><Format>%2</Format><Exg>0</Exg><Wnd>4</Wnd><PicType>RGB</PicType><PicID>1</PicID>"
            "</-OptionStr-></-TaskItem->")
            .arg(folder)
            .arg(format));
    TaskMgr::getInstance()->addTask(task, 0);
    task->startTask();
    return task;
}

void tstDiskFaults::savingTaskLeavesNoHalfPictureOnAFullDiskAndGoesOnOnceThereIsRoom_data()
{
    QTest::addColumn<int>("format");
    QTest::newRow("jpg") << 0;
    QTest::newRow("png") << 1;
    QTest::newRow("bmp") << 2;
}

void tstDiskFaults::savingTaskLeavesNoHalfPictureOnAFullDiskAndGoesOnOnceThereIsRoom()
{
    SKIP_WHERE_NOTHING_CAN_BE_MOUNTED();
    QFETCH(int, format);
    const SmallDisk disk(300);
    QVERIFY(disk.isMounted());
    TaskInfo* const task = startSaving(disk.path(), format);
    QTRY_VERIFY(!disk.names().isEmpty());
    disk.fill();
    waitForPasses(task, 20);

    task->stopTask();
    const QStringList full = disk.names();
    for (const QString& name : full) {
        if (name == QStringLiteral("ballast"))
            continue;
        QVERIFY2(name.startsWith(QStringLiteral("cam_")), qPrintable(name));  // no part of a picture lies about
        QCOMPARE(QImage(disk.path(name.toUtf8().constData())).size(), QSize(200, 100));
    }
    // Once there is room, pictures come again.
    disk.makeRoom();
    for (const QString& name : full)
        QFile::remove(disk.path(name.toUtf8().constData()));
    task->startTask();
    QTRY_VERIFY(!disk.names().isEmpty());
}

void tstDiskFaults::fullDiskKeepsTheOldProjectAndSaysSo()
{
    SKIP_WHERE_NOTHING_CAN_BE_MOUNTED();
    const SmallDisk disk(512);
    QVERIFY(disk.isMounted());
    const WindowFixture fixture;
    const QByteArray old = taskWithoutSource("a", stepOf("X", "x").repeated(800));
    const QString path = disk.path("a.lmv");
    writeFile(path, old);
    QVERIFY(fixture.open(path));
    disk.fill();
    {
        ModalDriver driver;
        driver.box(QMessageBox::Yes).box(QMessageBox::Ok);
        fixture.trigger("saveOption");
        QVERIFY(driver.done());
        QCOMPARE(driver.m_lstBoxes.at(1).m_strTitle, Warning);
        QCOMPARE(driver.m_lstBoxes.at(1).m_strText, Failed);
    }
    QCOMPARE(readFile(path), old);
    QCOMPARE(disk.names(), (QStringList{QStringLiteral("a.lmv"), QStringLiteral("ballast")}));
    // With room again the same command saves.
    disk.makeRoom();
    ModalDriver again;
    again.box(QMessageBox::Yes);
    fixture.trigger("saveOption");
    QVERIFY(again.done());
    QVERIFY(readFile(path).contains("<-ArithmName->x</-ArithmName->"));
    QCOMPARE(disk.names(), QStringList{QStringLiteral("a.lmv")});
}

void tstDiskFaults::newProjectOnAFullDiskLeavesNothing()
{
    SKIP_WHERE_NOTHING_CAN_BE_MOUNTED();
    const SmallDisk disk(64);
    QVERIFY(disk.isMounted());
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    disk.fill();
    ModalDriver driver;
    driver.file(disk.path("new.lmv")).box(QMessageBox::Ok);

    fixture.trigger("saveOptionAs");

    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(0).m_strText, Failed);
    QCOMPARE(disk.names(), QStringList{QStringLiteral("ballast")});
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
}

void tstDiskFaults::folderThatVanishesDuringARunIsMadeAgain()
{
    const QTemporaryDir parent;
    const QString folder = parent.filePath(QStringLiteral("pictures"));
    TaskInfo* const task = startSaving(folder, 2);
    for (int round = 0; round < 10; ++round) {
        QTRY_VERIFY(QDir(folder).entryList(QDir::Files).size() > 1);
        QDir(folder).removeRecursively();
    }
    QTRY_VERIFY(QDir(folder).entryList(QDir::Files).size() > 1);
    QVERIFY(task->IsRunning());
    task->stopTask();
    const QStringList names = QDir(folder).entryList(QDir::Files | QDir::Hidden);
    for (const QString& name : names)
        QCOMPARE(QImage(folder + '/' + name).size(), QSize(200, 100));
}

void tstDiskFaults::folderWhoseParentVanishesDuringARunStaysAway()
{
    const QTemporaryDir root;
    const QString parent = root.filePath(QStringLiteral("parent"));
    QVERIFY(QDir().mkpath(parent));
    TaskInfo* const task = startSaving(parent + QStringLiteral("/pictures"), 2);
    QTRY_VERIFY(QDir(parent + QStringLiteral("/pictures")).entryList(QDir::Files).size() > 1);

    // A picture may be on its way while the folders go: it may hold them for a moment.
    QTRY_VERIFY(QDir(parent).removeRecursively() && !QFileInfo::exists(parent));
    waitForPasses(task, 10);

    QVERIFY(task->IsRunning());
    QVERIFY(!QFileInfo::exists(parent));
}

void tstDiskFaults::projectWhoseFolderVanishedIsNotSavedAndSaysSo()
{
    const QTemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("projects"));
    QVERIFY(QDir().mkpath(folder));
    const QString path = folder + QStringLiteral("/a.lmv");
    writeFile(path, taskWithoutSource("a"));
    const WindowFixture fixture;
    QVERIFY(fixture.open(path));
    QVERIFY(QDir(folder).removeRecursively());
    ModalDriver driver;
    driver.box(QMessageBox::Yes).box(QMessageBox::Ok);

    fixture.trigger("saveOption");

    QVERIFY(driver.done());
    QCOMPARE(driver.m_lstBoxes.at(1).m_strText, Failed);
    QVERIFY(!QFileInfo::exists(folder));
    QCOMPARE(fixture.tabs()->count(), 1);
}

int main(int argc, char* argv[])
{
    SmallDisk::enterOwnView();
    QApplication application(argc, argv);
    tstDiskFaults test;
    return QTest::qExec(&test, argc, argv);
}
#include "tstDiskFaults.moc"

#include "pluginFolders.h"
#include "storyDriver.h"
#include "view/viewForm.h"

#include <QImage>

using namespace StoryDriver;

/**
 * The whole way of a user who starts from an empty window and never writes a file by hand. The functions are its
 * chapters and run in this order on one window.
 */
class TestStory : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void emptyWindowHasNoTask();
    void taskIsAddedWithTheNameThatWasTyped();
    void sourceIsChosenConfiguredAndNamed();
    void everyAlgorithmIsInTheMenuByClass();
    void loadingStepIsAdded();
    void drawingStepShowsTheRecordOfTheSource();
    void runToTheSelectedStepDrawsOntoTheView();
    void memoryDiskStepIsAdded();
    void savingStepOfARecordIsAddedWithACount();
    void savingStepOfAViewWaitsForTheEndOfTheTask();
    void stepIsInsertedBeforeTheSelectedOne();
    void reopenedDialogChangesTheStep();
    void stepIsDeletedAfterTheQuestion();
    void runFillsTheDiskAndSavesWhatWasAskedFor();
    void secondTaskTakesThePicturesOut();
    void layoutShowsOneViewAndAllAgain();
    void savedProjectHoldsAllOfIt();
    void openedProjectIsTheSameAndRuns();
    void closingAsksAndLeavesNoTaskBehind();
    void cleanupTestCase();

private:
    QTableWidget* steps() const { return m_pcFixture->table(0); }
    void addStep(const QStringList& captions, ModalDriver& driver);
    int marks() const;  ///< Runs of the step of a plug-in.
    QStringList saved(const QString& pattern) const;
    bool viewIsDrawn(int view) const;

    QTemporaryDir m_cFolder;
    QString m_strOut;
    QString m_strProbe;
    std::unique_ptr<WindowFixture> m_pcFixture;
};

namespace {

const char* const SourceConfig = "size=8x6;wait=15";

/// Which picture of the source a saved one is: every byte is known from the number alone; -1 for none. A saved colour
/// record has its first and third byte exchanged.
int numberOfSaved(const QImage& picture)
{
    if (picture.size() != QSize(8, 6))
        return -1;
    const int number = (qBlue(picture.pixel(0, 0)) + 256) % 256;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const int first = number + 7 * y + 9 * x;
            if (picture.pixel(x, y) != qRgb((first + 6) % 256, (first + 3) % 256, first % 256))
                return -1;
        }
    }
    return number;
}

}  // namespace

void TestStory::initTestCase()
{
    PluginFolders::clear();
    m_strProbe = PluginFolders::addBase(QStringLiteral("algorithmProbe"));
    const QString extension = PluginFolders::addExtension(QStringLiteral("algorithmExtProbe"));
    PluginFolders::addSource(QStringLiteral("sourceScripted"));
    QVERIFY(m_cFolder.isValid());
    m_strOut = m_cFolder.filePath(QStringLiteral("out"));
    QImage sample(12, 10, QImage::Format_RGB888);
    sample.fill(QColor(10, 20, 30));
    QVERIFY(sample.save(m_cFolder.filePath(QStringLiteral("sample.png"))));
    m_pcFixture = std::make_unique<WindowFixture>();
    for (const QString& library : {m_strProbe, extension})  // what their configuration windows answer
        PluginFolders::function<void (*)(const char*)>(library, "testReset")("mark");
}

// Every answer that was planned has to be asked for, and no other dialog may come.
void TestStory::addStep(const QStringList& captions, ModalDriver& driver)
{
    chooseFromMenu(steps(), QStringList{QStringLiteral("添加算法")} + captions);
    QVERIFY2(driver.done(), qPrintable(driver.m_lstUnexpected.join(',')));
}

int TestStory::marks() const
{
    return PluginFolders::function<int (*)(const char*)>(m_strProbe, "testTraceCount")("mark");
}

QStringList TestStory::saved(const QString& pattern) const
{
    return QDir(m_strOut).entryList({pattern}, QDir::Files, QDir::Name);
}

bool TestStory::viewIsDrawn(int view) const
{
    const QImage shown = ViewForm::s_apcViewForms[static_cast<size_t>(view)]->grab().toImage();
    // The middle: the name of the view stands in the corner.
    return qGray(shown.pixel(shown.width() / 2, shown.height() / 2)) > 0;
}

void TestStory::emptyWindowHasNoTask()
{
    QCOMPARE(m_pcFixture->m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
    QCOMPARE(m_pcFixture->tabs()->count(), 0);
    for (int view = 0; view < 4; ++view)
        QVERIFY(!viewIsDrawn(view));
}

void TestStory::taskIsAddedWithTheNameThatWasTyped()
{
    QVERIFY(m_pcFixture->addTask(QStringLiteral("数零件")));
    QCOMPARE(m_pcFixture->tabs()->count(), 1);
    QCOMPARE(m_pcFixture->tabs()->tabText(0), QStringLiteral("数零件"));
    QCOMPARE(steps()->rowCount(), 0);
}

void TestStory::sourceIsChosenConfiguredAndNamed()
{
    ModalDriver driver;
    driver.dialog(fill(QStringLiteral("Dialog"), [](QWidget& dialog) {
        auto* list = DialogDriver::child<QListWidget>(dialog, "lbSourceNames");
        QCOMPARE(list->count(), 7);
        DialogDriver::clickRow(list, 6);
        PluginFolders::setDialogResult(PluginFolders::folder() + QStringLiteral("/DataSource/sourceScripted.so"),
                                       SourceConfig);
        DialogDriver::click(dialog, "btnSetting");
        QCOMPARE(DialogDriver::child<QLineEdit>(dialog, "edtSelectedSource")->text(), QStringLiteral("Test Scripted"));
        DialogDriver::type(dialog, "edtName", QStringLiteral("camera"));
        DialogDriver::type(dialog, "edtDescribe", QStringLiteral("the belt"));
    }));
    QTest::mouseClick(m_pcFixture->tabs()->widget(0)->findChildren<QPushButton*>().at(1), Qt::LeftButton);
    QVERIFY2(driver.done(), qPrintable(driver.m_lstUnexpected.join(',')));
}

void TestStory::everyAlgorithmIsInTheMenuByClass()
{
    ModalDriver driver;
    const QPoint place(5, 5);
    QContextMenuEvent event(QContextMenuEvent::Mouse, place, steps()->viewport()->mapToGlobal(place));
    QApplication::sendEvent(steps()->viewport(), &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QStringList entries;
    for (const QAction* kind : actionOf(menu, QStringLiteral("添加算法"))->menu()->actions()) {
        for (const QAction* action : kind->menu()->actions())
            entries += kind->text() + QLatin1Char('/') + action->text();
    }
    menu->close();
    QCOMPARE(entries, (QStringList{QStringLiteral("系统/写内存盘"), QStringLiteral("系统/绘制对象"),
                                   QStringLiteral("系统/保存图像"), QStringLiteral("系统/加载图像"),
                                   QStringLiteral("Test/Probe")}));
}

void TestStory::loadingStepIsAdded()
{
    ModalDriver driver;
    driver.dialog([](QWidget* dialog) {
        ModalDriver::press(dialog->findChild<QPushButton*>(QStringLiteral("btnBrowser")));
        return dialog->windowTitle() == QStringLiteral("加载文件");
    });
    driver.file(m_cFolder.filePath(QStringLiteral("sample.png")));
    driver.dialog(fillOnceShown(QStringLiteral("加载文件"), "edtFilePath", [](QWidget& dialog) {
        DialogDriver::type(dialog, "edtOutputName", QStringLiteral("sample"));
        DialogDriver::type(dialog, "edtPicDescribe", QStringLiteral("a file"));
    }));
    addStep({QStringLiteral("系统"), QStringLiteral("加载图像")}, driver);
    QCOMPARE(stepNames(steps()), QStringList{QStringLiteral("加载图像")});
}

void TestStory::drawingStepShowsTheRecordOfTheSource()
{
    ModalDriver driver;
    driver.dialog(fill(QStringLiteral("配置绘制对象"), [](QWidget& dialog) {
        auto* table = DialogDriver::child<QTableWidget>(dialog, "tblRGB");
        QCOMPARE(DialogDriver::rowOf(table, 0), (QStringList{QStringLiteral("camera"), QStringLiteral("the belt")}));
        QCOMPARE(DialogDriver::rowOf(table, 1), (QStringList{QStringLiteral("sample"), QStringLiteral("a file")}));
        DialogDriver::clickCell(table, 0);
        DialogDriver::pick(dialog, "cbScaleModeRGB", 3);
        DialogDriver::click(dialog, "btnSelectElement");
        QCOMPARE(DialogDriver::child<QLineEdit>(dialog, "edtName")->text(), QStringLiteral("camera"));
    }));
    addStep({QStringLiteral("系统"), QStringLiteral("绘制对象")}, driver);
    QCOMPARE(steps()->rowCount(), 2);
    QVERIFY(!viewIsDrawn(0));
}

void TestStory::runToTheSelectedStepDrawsOntoTheView()
{
    ModalDriver driver;
    DialogDriver::clickCell(steps(), 1);
    chooseFromMenu(steps(), {QStringLiteral("执行到选中算法")});
    QTRY_VERIFY(viewIsDrawn(0));
    DialogDriver::clickCell(steps(), 1);
    QVERIFY(steps()->selectedItems().isEmpty());
    QVERIFY(driver.done());
}

void TestStory::memoryDiskStepIsAdded()
{
    ModalDriver driver;
    driver.dialog(fill(QStringLiteral("写内存盘配置"), [](QWidget& dialog) {
        DialogDriver::doubleClickCell(DialogDriver::child<QTableWidget>(dialog, "tblRGB"), 0);
        DialogDriver::pick(dialog, "cmbMemDisk", 4);
        QCOMPARE(DialogDriver::child<QLineEdit>(dialog, "edtType")->text(), QStringLiteral("RGB"));
    }));
    addStep({QStringLiteral("系统"), QStringLiteral("写内存盘")}, driver);
    QCOMPARE(steps()->rowCount(), 3);
}

void TestStory::savingStepOfARecordIsAddedWithACount()
{
    const QString title = QStringLiteral("保存文件");
    ModalDriver driver;
    driver.dialog([this, title](QWidget* dialog) {
        DialogDriver::type(*dialog, "edtStringID", QStringLiteral("part"));
        DialogDriver::pick(*dialog, "cmbIdentity", 1);
        DialogDriver::pick(*dialog, "cmbFormat", 1);
        DialogDriver::type(*dialog, "edtBasePath", m_strOut);
        DialogDriver::pick(*dialog, "cmbWnd", 4);
        ModalDriver::press(dialog->findChild<QPushButton*>(QStringLiteral("btnSelectPic")));
        return dialog->windowTitle() == title;
    });
    driver.dialog(fill(QStringLiteral("选择图像"), [](QWidget& dialog) {
        DialogDriver::clickCell(DialogDriver::child<QTableWidget>(dialog, "tblRGB"), 0);
    }));
    driver.dialog(fillOnceShown(title, "edtSelectedPicID", [](QWidget& dialog) {
        QCOMPARE(DialogDriver::child<QLineEdit>(dialog, "edtPicType")->text(), QStringLiteral("RGB"));
        QCOMPARE(DialogDriver::child<QLineEdit>(dialog, "edtSelectedPicID")->text(), QStringLiteral("1"));
    }));
    addStep({QStringLiteral("系统"), QStringLiteral("保存图像")}, driver);
    editCell(steps(), 3, 1, QStringLiteral("2"));
    editCell(steps(), 3, 0, QStringLiteral("keep two"));
    QCOMPARE(steps()->item(3, 1)->text(), QStringLiteral("2"));
    QCOMPARE(steps()->item(3, 0)->text(), QStringLiteral("keep two"));
}

void TestStory::savingStepOfAViewWaitsForTheEndOfTheTask()
{
    ModalDriver driver;
    driver.dialog(fill(QStringLiteral("保存文件"), [this](QWidget& dialog) {
        DialogDriver::type(dialog, "edtStringID", QStringLiteral("view"));
        DialogDriver::type(dialog, "edtSeparator", QString());
        DialogDriver::pick(dialog, "cmbIdentity", 2);
        DialogDriver::pick(dialog, "cmbFormat", 2);
        DialogDriver::type(dialog, "edtBasePath", m_strOut);
        DialogDriver::pick(dialog, "cmbWnd", 0);
    }));
    addStep({QStringLiteral("系统"), QStringLiteral("保存图像")}, driver);
    editCell(steps(), 4, 1, QStringLiteral("999999999"));
    QCOMPARE(steps()->rowCount(), 5);
}

void TestStory::stepIsInsertedBeforeTheSelectedOne()
{
    ModalDriver driver;
    DialogDriver::clickCell(steps(), 2);
    addStep({QStringLiteral("Test"), QStringLiteral("Probe")}, driver);
    steps()->clearSelection();
    QCOMPARE(stepNames(steps()),
             (QStringList{QStringLiteral("加载图像"), QStringLiteral("绘制对象"), QStringLiteral("Probe"),
                          QStringLiteral("写内存盘"), QStringLiteral("keep two"), QStringLiteral("保存图像")}));
}

void TestStory::reopenedDialogChangesTheStep()
{
    ModalDriver driver;
    driver.dialog(fill(QStringLiteral("保存文件"), [](QWidget& dialog) {
        QCOMPARE(DialogDriver::child<QLineEdit>(dialog, "edtStringID")->text(), QStringLiteral("view"));
        DialogDriver::type(dialog, "edtStringID", QStringLiteral("last"));
    }));
    DialogDriver::clickCell(steps(), 5);
    chooseFromMenu(steps(), {QStringLiteral("修改配置")});
    QVERIFY2(driver.done(), qPrintable(driver.m_lstUnexpected.join(',')));
    steps()->clearSelection();
}

void TestStory::stepIsDeletedAfterTheQuestion()
{
    ModalDriver driver;
    chooseFromMenu(steps(),
                   {QStringLiteral("添加扩展算法"), QStringLiteral("Test"), QStringLiteral("Extension Probe")});
    QCOMPARE(steps()->rowCount(), 7);
    DialogDriver::clickCell(steps(), 6);
    driver.box(QMessageBox::No);
    chooseFromMenu(steps(), {QStringLiteral("删除")});
    QCOMPARE(steps()->rowCount(), 7);
    driver.box(QMessageBox::Yes);
    chooseFromMenu(steps(), {QStringLiteral("删除")});
    QCOMPARE(steps()->rowCount(), 6);
    QCOMPARE(driver.m_lstBoxes.value(0).m_strText,
             QStringLiteral("Would you like to delete the arithm? It can not be recover after delete."));
    QVERIFY(driver.done());
}

void TestStory::runFillsTheDiskAndSavesWhatWasAskedFor()
{
    ModalDriver driver;
    QDir(m_strOut).removeRecursively();  // what the trial runs saved
    const int before = marks();
    QTest::mouseClick(m_pcFixture->runButton(0), Qt::LeftButton);
    QTRY_VERIFY(marks() > before + 2);
    QTRY_COMPARE(saved(QStringLiteral("part-*.png")).size(), 2);
    QTRY_VERIFY(viewIsDrawn(0));
    QTest::mouseClick(m_pcFixture->runButton(0), Qt::LeftButton);
    QTRY_COMPARE(m_pcFixture->runButton(0)->text(), QStringLiteral("执行任务"));

    QTRY_COMPARE(saved(QStringLiteral("last.bmp")).size(), 1);
    QCOMPARE(saved(QStringLiteral("part-*.png")).size(), 2);
    for (const QString& name : saved(QStringLiteral("part-*.png")))
        QVERIFY2(numberOfSaved(QImage(m_strOut + QLatin1Char('/') + name)) >= 0, qPrintable(name));
    QVERIFY(driver.done());
}

void TestStory::secondTaskTakesThePicturesOut()
{
    QVERIFY(m_pcFixture->addTask(QStringLiteral("receive")));
    ModalDriver driver;
    driver.dialog(fill(QStringLiteral("Dialog"), [](QWidget& dialog) {
        DialogDriver::clickRow(DialogDriver::child<QListWidget>(dialog, "lbSourceNames"), 4);
        DialogDriver::click(dialog, "btnSetting");
        DialogDriver::type(dialog, "edtName", QStringLiteral("taken"));
    }));
    QWidget* page = m_pcFixture->tabs()->widget(1);
    QTest::mouseClick(page->findChildren<QPushButton*>().at(1), Qt::LeftButton);
    auto* views = page->findChildren<QComboBox*>().at(1);
    views->setFocus();
    QTest::keyClick(views, Qt::Key_Down);
    driver.dialog(fill(QStringLiteral("配置绘制对象"), [](QWidget& dialog) {
        DialogDriver::clickCell(DialogDriver::child<QTableWidget>(dialog, "tblRGB"), 0);
        DialogDriver::pick(dialog, "cbScaleModeRGB", 3);
        DialogDriver::click(dialog, "btnSelectElement");
    }));
    chooseFromMenu(m_pcFixture->table(1),
                   {QStringLiteral("添加算法"), QStringLiteral("系统"), QStringLiteral("绘制对象")});
    QVERIFY2(driver.done(), qPrintable(driver.m_lstUnexpected.join(',')));

    m_pcFixture->press("btnStartAll");
    QTRY_VERIFY(viewIsDrawn(1));
    m_pcFixture->press("btnStopAll");
    QTRY_COMPARE(m_pcFixture->runButton(1)->text(), QStringLiteral("执行任务"));
    QTRY_COMPARE(m_pcFixture->runButton(0)->text(), QStringLiteral("执行任务"));
    QVERIFY(driver.done());
}

void TestStory::layoutShowsOneViewAndAllAgain()
{
    const auto shown = [] {
        QList<int> views;
        for (int view = 0; view < 4; ++view) {
            if (ViewForm::s_apcViewForms[static_cast<size_t>(view)]->isVisible())
                views += view + 1;
        }
        return views;
    };
    DialogDriver::pick(*m_pcFixture->m_pcWindow, "cbLayout", 2);
    QCOMPARE(shown(), QList<int>{2});
    DialogDriver::pick(*m_pcFixture->m_pcWindow, "cbLayout", 0);
    QCOMPARE(shown(), (QList<int>{1, 2, 3, 4}));
}

void TestStory::savedProjectHoldsAllOfIt()
{
    QVERIFY(m_pcFixture->saveAs(m_cFolder.filePath(QStringLiteral("story"))));
    const QString path = m_cFolder.filePath(QStringLiteral("story.lmv"));
    QCOMPARE(m_pcFixture->m_pcWindow->windowTitle(), QStringLiteral("Lumivant - ") + path);
    const QString expected =
        QStringLiteral(
            "<=TaskInfo=>\n<-TaskName->数零件</-TaskName->\n<-Kernel->-1</-Kernel->\n<-View->0</-View->\n"
            "<-DataSource->\n<DSName>Test Scripted</DSName><OutputName>camera</OutputName>"
            "<OutputDescribe>the belt</OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID>"
            "<Config>size=8x6;wait=15</Config>\n</-DataSource->\n"
            "<-TaskItem->\n<-MaxExeTimes->-1</-MaxExeTimes->\n<-ArithmID->KW_Loading</-ArithmID->\n<-OptionStr->\n"
            "<FilePath>%1/sample.png</FilePath><OutputName>sample</OutputName><Describe>a file</Describe>"
            "<BeGray>0</BeGray><PicType>0</PicType><PicID>2</PicID>\n</-OptionStr->\n"
            "<-ClassName->系统</-ClassName->\n<-ArithmName->加载图像</-ArithmName->\n<-Describe-></-Describe->\n"
            "</-TaskItem->\n"
            "<-TaskItem->\n<-MaxExeTimes->-1</-MaxExeTimes->\n<-ArithmID->KW_Drawing</-ArithmID->\n<-OptionStr->\n"
            "<DataType>0</DataType><DataID>1</DataID><Config><Scale>3</Scale><Pos>0</Pos></Config>\n</-OptionStr->\n"
            "<-ClassName->系统</-ClassName->\n<-ArithmName->绘制对象</-ArithmName->\n<-Describe-></-Describe->\n"
            "</-TaskItem->\n"
            "<-TaskItem->\n<-MaxExeTimes->-1</-MaxExeTimes->\n<-ArithmID->Test.Probe</-ArithmID->\n<-OptionStr->\n"
            "mark\n</-OptionStr->\n"
            "<-ClassName->Test</-ClassName->\n<-ArithmName->Probe</-ArithmName->\n<-Describe-></-Describe->\n"
            "</-TaskItem->\n"
            "<-TaskItem->\n<-MaxExeTimes->-1</-MaxExeTimes->\n<-ArithmID->KW_MemoryDisk</-ArithmID->\n<-OptionStr->\n"
            "<MemDisk>4</MemDisk><InputID>1</InputID><InputType>RGB</InputType>\n</-OptionStr->\n"
            "<-ClassName->系统</-ClassName->\n<-ArithmName->写内存盘</-ArithmName->\n<-Describe-></-Describe->\n"
            "</-TaskItem->\n"
            "<-TaskItem->\n<-MaxExeTimes->2</-MaxExeTimes->\n<-ArithmID->KW_Saving</-ArithmID->\n<-OptionStr->\n"
            "<BasePath>%1/out</BasePath><StringID>part</StringID><IsStringID>0</IsStringID><Separator>-</Separator>"
            "<Identity>1</Identity><Format>1</Format><Exg>0</Exg><Wnd>4</Wnd><PicType>RGB</PicType><PicID>1</PicID>\n"
            "</-OptionStr->\n<-ClassName->系统</-ClassName->\n<-ArithmName->保存图像</-ArithmName->\n"
            "<-Describe->keep two</-Describe->\n</-TaskItem->\n"
            "<-TaskItem->\n<-MaxExeTimes->999999999</-MaxExeTimes->\n<-ArithmID->KW_Saving</-ArithmID->\n"
            "<-OptionStr->\n<BasePath>%1/out</BasePath><StringID>last</StringID><IsStringID>0</IsStringID>"
            "<Identity>2</Identity><Format>2</Format><Exg>0</Exg><Wnd>0</Wnd>\n</-OptionStr->\n"
            "<-ClassName->系统</-ClassName->\n<-ArithmName->保存图像</-ArithmName->\n<-Describe-></-Describe->\n"
            "</-TaskItem->\n</=TaskInfo=>\n")
            .arg(m_cFolder.path()) +
        QStringLiteral(
            "<=TaskInfo=>\n<-TaskName->receive</-TaskName->\n<-Kernel->-1</-Kernel->\n<-View->1</-View->\n"
            "<-DataSource->\n<DSName>Memory Disk 4</DSName><OutputName>taken</OutputName>"
            "<OutputDescribe></OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID><Config></Config>\n"
            "</-DataSource->\n"
            "<-TaskItem->\n<-MaxExeTimes->-1</-MaxExeTimes->\n<-ArithmID->KW_Drawing</-ArithmID->\n<-OptionStr->\n"
            "<DataType>0</DataType><DataID>1</DataID><Config><Scale>3</Scale><Pos>0</Pos></Config>\n</-OptionStr->\n"
            "<-ClassName->系统</-ClassName->\n<-ArithmName->绘制对象</-ArithmName->\n<-Describe-></-Describe->\n"
            "</-TaskItem->\n</=TaskInfo=>\n");
    QCOMPARE(QString::fromUtf8(readFile(path)), expected);
}

void TestStory::openedProjectIsTheSameAndRuns()
{
    const QString path = m_cFolder.filePath(QStringLiteral("story.lmv"));
    {
        ModalDriver driver;
        driver.box(QMessageBox::Yes);
        m_pcFixture->trigger("newOption");
        QVERIFY(driver.done());
    }
    QCOMPARE(m_pcFixture->tabs()->count(), 0);
    QVERIFY(m_pcFixture->open(path));
    QCOMPARE(m_pcFixture->tabs()->count(), 2);
    QCOMPARE(stepNames(steps()),
             (QStringList{QStringLiteral("加载图像"), QStringLiteral("绘制对象"), QStringLiteral("Probe"),
                          QStringLiteral("写内存盘"), QStringLiteral("keep two"), QStringLiteral("保存图像")}));

    const QString again = m_cFolder.filePath(QStringLiteral("again.lmv"));
    QVERIFY(m_pcFixture->saveAs(again));
    QCOMPARE(readFile(again), readFile(path));

    QDir(m_strOut).removeRecursively();
    ModalDriver driver;
    const int before = marks();
    m_pcFixture->press("btnStartAll");
    QTRY_VERIFY(marks() > before + 2);
    QTRY_COMPARE(saved(QStringLiteral("part-*.png")).size(), 2);
    QTRY_VERIFY(viewIsDrawn(1));
    QVERIFY(driver.done());
}

void TestStory::closingAsksAndLeavesNoTaskBehind()
{
    ModalDriver driver;
    driver.box(QMessageBox::No);
    QVERIFY(!m_pcFixture->m_pcWindow->close());
    QCOMPARE(m_pcFixture->runButton(0)->text(), QStringLiteral("停止任务"));
    driver.box(QMessageBox::Yes);
    QVERIFY(m_pcFixture->m_pcWindow->close());
    QCOMPARE(driver.m_lstBoxes.value(1).m_strText, QStringLiteral("是否确认退出?"));
    QCOMPARE(TaskMgr::getInstance()->getTaskNum(), 0);
    QVERIFY(driver.done());
}

void TestStory::cleanupTestCase()
{
    m_pcFixture.reset();
    TaskMgr::deleteThis();
}

QTEST_MAIN(TestStory)
#include "testStory.moc"

#include "dlgNameInput.h"
#include "globalFunction.h"
#include "view/viewForm.h"
#include "windowFixture.h"

#include <QGridLayout>
#include <QHeaderView>
#include <QMenu>
#include <QMenuBar>
#include <QScrollBar>
#include <QSplitter>
#include <QStatusBar>
#include <QStyle>
#include <QTabBar>
#include <QTextDocumentFragment>
#include <QToolBar>
#include <QToolButton>

/// What the window shows before anybody did anything, its layout, its output line, and how it closes.
class TestWindowForm : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void titleIsTheProgramsName();
    void actionsHaveTheirTextsAndKeys_data();
    void actionsHaveTheirTextsAndKeys();
    void menuBarHoldsItsMenusInOrder();
    void menusHoldTheirActionsInOrder_data();
    void menusHoldTheirActionsInOrder();
    void toolBarShowsTheActionsWithIcons();
    void controlStripHasItsTexts_data();
    void controlStripHasItsTexts();
    void layoutComboHasFiveItemsInOrder();
    void outputLabelIsRed();
    void sampleTabIsClearedAtStart();
    void fourViewsLieInATwoByTwoGridAndAreRegistered();
    void layoutComboShowsAllOrOneView_data();
    void layoutComboShowsAllOrOneView();
    void layoutIndexBeyondTheLastIsIgnored();
    void theOneShownViewGetsAllRoom();
    void nothingIsNarrowerThanItsTextAtSmallAndUsualSizes_data();
    void nothingIsNarrowerThanItsTextAtSmallAndUsualSizes();
    void viewsGetTheRoomAndTabsKeepTheirWidth();
    void taskNamesAreShownWholeOnTheirTabs();
    void longMessageWidensNothing();
    void messageIsShownAsItIs();
    void clearButtonEmptiesTheOutputLine();
    void clearButtonRepaintsTheStripAtOnce();
    void nameInputHasItsTexts();
    void nameInputKeepsTheTextOnlyWhenAccepted();
    void closingAndAnsweringNoKeepsAllTasks();
    void closingAndAnsweringYesDeletesAllTasks();
    void nothingMakesTheTaskRegistryAgainAfterTheEnd();
    void destroyingTheWindowForgetsItsViews();
};

void TestWindowForm::titleIsTheProgramsName()
{
    const WindowFixture fixture;
    QCOMPARE(fixture.m_pcWindow->windowTitle(), QStringLiteral("Lumivant"));
    QCOMPARE(fixture.m_pcWindow->objectName(), QStringLiteral("MainWindow"));
    QVERIFY(!fixture.m_pcWindow->windowIcon().pixmap(32, 32).isNull());
    QVERIFY(fixture.child<QStatusBar>("statusBar") != nullptr);
}

void TestWindowForm::actionsHaveTheirTextsAndKeys_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("key");
    QTest::newRow("newOption") << QStringLiteral("新建") << QStringLiteral("Ctrl+N");
    QTest::newRow("openOption") << QStringLiteral("打开") << QStringLiteral("Ctrl+O");
    QTest::newRow("saveOption") << QStringLiteral("保存") << QStringLiteral("Ctrl+S");
    QTest::newRow("saveOptionAs") << QStringLiteral("另存为...") << QStringLiteral("Ctrl+Shift+S");
    QTest::newRow("addProcess") << QStringLiteral("添加") << QStringLiteral("Ctrl+T");
    QTest::newRow("delProcess") << QStringLiteral("删除") << QStringLiteral("Ctrl+W");
    QTest::newRow("viewMemoryWnd") << QStringLiteral("内存盘状态") << QString();
}

void TestWindowForm::actionsHaveTheirTextsAndKeys()
{
    QFETCH(QString, text);
    QFETCH(QString, key);
    const WindowFixture fixture;
    const auto* const action = fixture.child<QAction>(QTest::currentDataTag());
    QCOMPARE(action->text(), text);
    QCOMPARE(action->shortcut(), QKeySequence(key));
}

void TestWindowForm::menuBarHoldsItsMenusInOrder()
{
    const WindowFixture fixture;
    QStringList names;
    for (const QAction* const action : fixture.child<QMenuBar>("menuBar")->actions())
        names.append(action->menu()->objectName());
    QCOMPARE(names, (QStringList{"menuOption", "menuProcess", "menu"}));
}

void TestWindowForm::menusHoldTheirActionsInOrder_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QStringList>("actions");
    QTest::newRow("menuOption") << QStringLiteral("设定")
                                << QStringList{"newOption", "openOption", "saveOption", "saveOptionAs"};
    QTest::newRow("menuProcess") << QStringLiteral("处理过程") << QStringList{"addProcess", "delProcess"};
    QTest::newRow("menu") << QStringLiteral("视窗") << QStringList{"viewMemoryWnd"};
}

void TestWindowForm::menusHoldTheirActionsInOrder()
{
    QFETCH(QString, title);
    QFETCH(QStringList, actions);
    const WindowFixture fixture;
    auto* const menu = fixture.child<QMenuBar>("menuBar")->findChild<QMenu*>(QTest::currentDataTag());
    QCOMPARE(menu->title(), title);
    QStringList names;
    for (const QAction* const action : menu->actions())
        names.append(action->objectName());
    QCOMPARE(names, actions);
}

void TestWindowForm::toolBarShowsTheActionsWithIcons()
{
    const WindowFixture fixture;
    QStringList names;
    for (const QAction* const action : fixture.child<QToolBar>("toolBar")->actions()) {
        if (action->isSeparator())
            continue;
        names.append(action->objectName());
        QVERIFY2(!action->icon().pixmap(20, 20).isNull(), qPrintable(action->objectName()));
    }
    const QStringList expected{"newOption",  "openOption", "saveOption",   "saveOptionAs",
                               "addProcess", "delProcess", "viewMemoryWnd"};
    QCOMPARE(names, expected);
}

void TestWindowForm::controlStripHasItsTexts_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("key");
    QTest::newRow("label") << QStringLiteral("[输出提示 : ") << QString();
    QTest::newRow("lblOutputMsg") << QString() << QString();
    QTest::newRow("label_2") << QStringLiteral("]") << QString();
    QTest::newRow("btnClearMsg") << QStringLiteral("清除") << QString();
    QTest::newRow("btnStartAll") << QStringLiteral("执行所有任务") << QStringLiteral("F5");
    QTest::newRow("btnStopAll") << QStringLiteral("停止所有任务") << QStringLiteral("Shift+F5");
}

void TestWindowForm::controlStripHasItsTexts()
{
    QFETCH(QString, text);
    QFETCH(QString, key);
    const WindowFixture fixture;
    const auto* const widget = fixture.child<QWidget>("wgViewControl")->findChild<QWidget*>(QTest::currentDataTag());
    QCOMPARE(widget->property("text").toString(), text);
    if (!key.isEmpty())
        QCOMPARE(widget->property("shortcut").value<QKeySequence>(), QKeySequence(key));
}

void TestWindowForm::layoutComboHasFiveItemsInOrder()
{
    const WindowFixture fixture;
    const auto* const combo = fixture.child<QWidget>("wgViewControl")->findChild<QComboBox*>("cbLayout");
    const QStringList expected{"显示所有", "显示视窗1", "显示视窗2", "显示视窗3", "显示视窗4"};
    QCOMPARE(combo->count(), 5);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(combo->itemText(i), expected.at(i));
    QCOMPARE(combo->currentIndex(), 0);
}

void TestWindowForm::outputLabelIsRed()
{
    const WindowFixture fixture;
    QCOMPARE(fixture.output()->styleSheet(), QStringLiteral("color:rgb(255, 0, 0)"));
}

void TestWindowForm::sampleTabIsClearedAtStart()
{
    const WindowFixture fixture;
    QCOMPARE(fixture.tabs()->count(), 0);
}

void TestWindowForm::fourViewsLieInATwoByTwoGridAndAreRegistered()
{
    const WindowFixture fixture;
    auto* const grid = qobject_cast<QGridLayout*>(fixture.child<QWidget>("wgViews")->layout());
    QCOMPARE(grid->objectName(), QStringLiteral("gridLayout_2"));
    QCOMPARE(grid->count(), 4);
    for (int i = 0; i < 4; ++i) {
        QWidget* const view = grid->itemAtPosition(i / 2, i % 2)->widget();
        QCOMPARE(view, ViewForm::s_apcViewForms.at(static_cast<size_t>(i)));
        QVERIFY(ViewRecord(i));
    }
    QVERIFY(!ViewRecord(4));
}

void TestWindowForm::layoutComboShowsAllOrOneView_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QList<bool>>("shown");
    QTest::newRow("显示所有") << 0 << QList<bool>{true, true, true, true};
    QTest::newRow("显示视窗1") << 1 << QList<bool>{true, false, false, false};
    QTest::newRow("显示视窗2") << 2 << QList<bool>{false, true, false, false};
    QTest::newRow("显示视窗3") << 3 << QList<bool>{false, false, true, false};
    QTest::newRow("显示视窗4") << 4 << QList<bool>{false, false, false, true};
}

void TestWindowForm::layoutComboShowsAllOrOneView()
{
    QFETCH(int, index);
    QFETCH(QList<bool>, shown);
    const WindowFixture fixture;
    auto* const combo = fixture.child<QComboBox>("cbLayout");
    combo->setCurrentIndex(index == 0 ? 1 : 0);
    combo->setCurrentIndex(index);
    for (int i = 0; i < 4; ++i)
        QCOMPARE(ViewForm::s_apcViewForms.at(static_cast<size_t>(i))->isVisible(), shown.at(i));
}

void TestWindowForm::layoutIndexBeyondTheLastIsIgnored()
{
    const WindowFixture fixture;
    fixture.child<QComboBox>("cbLayout")->setCurrentIndex(3);
    fixture.m_pcWindow->on_cbLayout_currentIndexChanged(5);
    fixture.m_pcWindow->on_cbLayout_currentIndexChanged(-1);
    QVERIFY(ViewForm::s_apcViewForms[2]->isVisible());
    QVERIFY(!ViewForm::s_apcViewForms[0]->isVisible());
}

void TestWindowForm::theOneShownViewGetsAllRoom()
{
    const WindowFixture fixture;
    fixture.child<QComboBox>("cbLayout")->setCurrentIndex(4);
    QTRY_COMPARE(ViewForm::s_apcViewForms[3]->size(), fixture.child<QWidget>("wgViews")->size());
}

void TestWindowForm::nothingIsNarrowerThanItsTextAtSmallAndUsualSizes_data()
{
    QTest::addColumn<QSize>("size");
    QTest::newRow("1024x600") << QSize(1024, 600);
    QTest::newRow("1280x800") << QSize(1280, 800);
}

void TestWindowForm::nothingIsNarrowerThanItsTextAtSmallAndUsualSizes()
{
    QFETCH(QSize, size);
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("任务")));
    fixture.m_pcWindow->resize(size);
    QTRY_COMPARE(fixture.m_pcWindow->size(), size);
    QTRY_COMPARE(fixture.child<QWidget>("wgViewControl")->window()->size(), size);
    QCoreApplication::processEvents();

    int seen = 0;
    for (const QWidget* const widget : fixture.m_pcWindow->findChildren<QWidget*>()) {
        const bool speaks =
            qobject_cast<const QLabel*>(widget) != nullptr || qobject_cast<const QPushButton*>(widget) != nullptr ||
            qobject_cast<const QToolButton*>(widget) != nullptr || qobject_cast<const QComboBox*>(widget) != nullptr;
        if (!speaks || !widget->isVisible() || widget == fixture.output())
            continue;
        ++seen;
        const QString name = widget->objectName() + widget->property("text").toString();
        QVERIFY2(widget->width() >= widget->sizeHint().width(), qPrintable(name));
        QVERIFY2(widget->height() >= widget->fontMetrics().height(), qPrintable(name));
        const QRect inWindow(widget->mapTo(fixture.m_pcWindow.get(), QPoint(0, 0)), widget->size());
        QVERIFY2(fixture.m_pcWindow->rect().contains(inWindow), qPrintable(name));
    }
    QVERIFY(seen >= 7 + 2 + 2 + 5);  // Tool buttons, a tab's buttons and combos, the control strip.
    const auto* const more = fixture.child<QToolBar>("toolBar")->findChild<QToolButton*>("qt_toolbar_ext_button");
    QVERIFY(more == nullptr || !more->isVisible());
}

void TestWindowForm::viewsGetTheRoomAndTabsKeepTheirWidth()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("任务")));
    fixture.m_pcWindow->resize(1024, 600);
    QCoreApplication::processEvents();
    const int tabWidth = fixture.tabs()->width();
    const QTableWidget* const table = fixture.table(0);
    QVERIFY(table->viewport()->width() >= 150 + 35 + 35);
    QVERIFY(!table->horizontalScrollBar()->isVisible());
    QVERIFY(fixture.child<QWidget>("wgViews")->width() >= 1024 - tabWidth - 20);

    fixture.m_pcWindow->resize(1600, 900);
    QCoreApplication::processEvents();
    QCOMPARE(fixture.tabs()->width(), tabWidth);
    QVERIFY(fixture.child<QWidget>("wgViews")->width() >= 1600 - tabWidth - 20);
    const QSize first = ViewForm::s_apcViewForms[0]->size();
    for (const ViewForm* const view : ViewForm::s_apcViewForms) {
        QVERIFY(qAbs(view->width() - first.width()) <= 1);
        QVERIFY(qAbs(view->height() - first.height()) <= 1);
    }
}

void TestWindowForm::taskNamesAreShownWholeOnTheirTabs()
{
    const WindowFixture fixture;
    fixture.m_pcWindow->resize(1024, 600);
    for (int i = 0; i < 4; ++i)
        QVERIFY(fixture.addTask(QStringLiteral("零件计数")));
    fixture.tabs()->setCurrentIndex(0);
    QCoreApplication::processEvents();
    const QTabBar* const bar = fixture.tabs()->tabBar();
    QCOMPARE(bar->elideMode(), Qt::ElideNone);
    for (int i = 0; i < 4; ++i)
        QVERIFY(bar->tabRect(i).width() >= bar->fontMetrics().horizontalAdvance(QStringLiteral("零件计数")));
}

void TestWindowForm::longMessageWidensNothing()
{
    const WindowFixture fixture;
    fixture.m_pcWindow->resize(1024, 600);
    QCoreApplication::processEvents();
    const QRect button = fixture.child<QPushButton>("btnStopAll")->geometry();
    const int stripHeight = fixture.child<QWidget>("wgViewControl")->height();
    const QString message = QStringLiteral("很长的消息\n").repeated(2000);

    MainWindow::HavePrintMessage(message);
    QCoreApplication::processEvents();

    QCOMPARE(fixture.m_pcWindow->size(), QSize(1024, 600));
    QCOMPARE(fixture.child<QPushButton>("btnStopAll")->geometry(), button);
    QCOMPARE(fixture.child<QWidget>("wgViewControl")->height(), stripHeight);
    QCOMPARE(fixture.output()->text(), message);
    QVERIFY(fixture.output()->toolTip().contains(QStringLiteral("很长的消息")));
}

void TestWindowForm::messageIsShownAsItIs()
{
    const WindowFixture fixture;
    MainWindow::HavePrintMessage(QStringLiteral("<b>3</b> & 4"));
    QCOMPARE(fixture.output()->text(), QStringLiteral("<b>3</b> & 4"));
    QCOMPARE(fixture.output()->textFormat(), Qt::PlainText);
    QCOMPARE(QTextDocumentFragment::fromHtml(fixture.output()->toolTip()).toPlainText(),
             QStringLiteral("<b>3</b> & 4"));
}

void TestWindowForm::clearButtonEmptiesTheOutputLine()
{
    const WindowFixture fixture;
    MainWindow::HavePrintMessage(QStringLiteral("消息"));
    QCOMPARE(fixture.output()->text(), QStringLiteral("消息"));
    fixture.press("btnClearMsg");
    QCOMPARE(fixture.output()->text(), QString());
    QCOMPARE(fixture.output()->toolTip(), QString());
}

void TestWindowForm::clearButtonRepaintsTheStripAtOnce()
{
    class PaintCounter : public QObject
    {
    public:
        bool eventFilter(QObject* /*watched*/, QEvent* event) override
        {
            m_nCount += event->type() == QEvent::Paint ? 1 : 0;
            return false;
        }
        int m_nCount = 0;
    };
    const WindowFixture fixture;
    MainWindow::HavePrintMessage(QStringLiteral("消息"));
    QCoreApplication::processEvents();
    PaintCounter paints;
    fixture.child<QWidget>("wgViewControl")->installEventFilter(&paints);

    fixture.m_pcWindow->on_btnClearMsg_clicked();

    QCOMPARE(paints.m_nCount, 1);  // without a turn of the event loop
}

void TestWindowForm::nameInputHasItsTexts()
{
    const dlgNameInput dialog;
    QCOMPARE(dialog.windowTitle(), QStringLiteral("输入名称"));
    QVERIFY(dialog.isModal());
    QCOMPARE(dialog.findChildren<QLineEdit*>().size(), 1);
    QCOMPARE(dialog.findChild<QPushButton*>("btnOK")->text(), QStringLiteral("确定"));
    QCOMPARE(dialog.findChild<QPushButton*>("btnCancel")->text(), QStringLiteral("取消"));
}

void TestWindowForm::nameInputKeepsTheTextOnlyWhenAccepted()
{
    dlgNameInput dialog;
    ModalDriver driver;
    driver.name(QStringLiteral("first"), "btnCancel").name(QStringLiteral(" second"), "btnOK");
    QCOMPARE(dialog.exec(), static_cast<int>(QDialog::Rejected));
    QCOMPARE(dialog.getName(), QString());
    QCOMPARE(dialog.exec(), static_cast<int>(QDialog::Accepted));
    QCOMPARE(dialog.getName(), QStringLiteral("first second"));
    QVERIFY(driver.done());
}

void TestWindowForm::closingAndAnsweringNoKeepsAllTasks()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const TaskInfo* const task = TaskMgr::getInstance()->getTask(0);
    ModalDriver driver;
    driver.box(QMessageBox::No);

    QVERIFY(!fixture.m_pcWindow->close());

    QVERIFY(driver.done());
    QVERIFY(driver.m_lstBoxes.at(0).asks(QStringLiteral("是否确认退出?")));
    QVERIFY(fixture.m_pcWindow->isVisible());
    QCOMPARE(TaskMgr::getInstance()->getTask(0), task);
    QCOMPARE(fixture.tabs()->count(), 1);
}

void TestWindowForm::closingAndAnsweringYesDeletesAllTasks()
{
    const WindowFixture fixture;
    QVERIFY(fixture.addTask(QStringLiteral("a")));
    const QPointer<TaskInfo> task = TaskMgr::getInstance()->getTask(0);
    ModalDriver driver;
    driver.box(QMessageBox::Yes);

    QVERIFY(fixture.m_pcWindow->close());

    QVERIFY(driver.done());
    QVERIFY(!fixture.m_pcWindow->isVisible());
    QVERIFY(task.isNull());
    QVERIFY(TaskMgr::s_pcInstance.load() == nullptr);
}

void TestWindowForm::nothingMakesTheTaskRegistryAgainAfterTheEnd()
{
    {
        const WindowFixture fixture;
        ModalDriver driver;
        driver.box(QMessageBox::Yes);
        QVERIFY(fixture.m_pcWindow->close());
        MainWindow::HavePrintMessage(QStringLiteral("late"));
        QCoreApplication::processEvents();
        QVERIFY(TaskMgr::s_pcInstance.load() == nullptr);
    }
    MainWindow::HavePrintMessage(QStringLiteral("later"));
    QCoreApplication::processEvents();
    QVERIFY(TaskMgr::s_pcInstance.load() == nullptr);
}

void TestWindowForm::destroyingTheWindowForgetsItsViews()
{
    {
        const WindowFixture fixture;
        QVERIFY(ViewForm::s_apcViewForms[0] != nullptr);
    }
    for (const ViewForm* const view : ViewForm::s_apcViewForms)
        QVERIFY(view == nullptr);
}

QTEST_MAIN(TestWindowForm)
#include "testWindowForm.moc"

// The operations of the soak's user.
#include "mainwindow.h"
#include "memoryDisk/dlgMemoryDiskStatus.h"
#include "soakDriver.h"
#include "soakLibraries.h"
#include "taskMgr/taskMgr.h"
#include "view/viewForm.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QSplitter>
#include <QTableWidget>

namespace {

const QString StartText = QStringLiteral("执行任务");

QPushButton* runButton(QWidget* page)
{
    return page->findChildren<QPushButton*>().constFirst();
}

void sendMouse(QWidget* widget, QEvent::Type type, QPoint place)
{
    const Qt::MouseButtons held = type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton;
    QMouseEvent event(type, place, type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held, Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

}  // namespace

const QVector<SoakDriver::Operation>& SoakDriver::operations()
{
    static const QVector<Operation> all{
        {"press a run button", 30, &SoakDriver::clickRun},
        {"start all", 4, &SoakDriver::startAll},
        {"stop all", 1, &SoakDriver::stopAll},
        {"add a task", 4, &SoakDriver::addTask},
        {"delete a task", 3, &SoakDriver::deleteTask},
        {"choose a view", 6, &SoakDriver::chooseView},
        {"choose a processor", 6, &SoakDriver::chooseProcessor},
        {"resize the window", 5, &SoakDriver::resizeWindow},
        {"hide or show the window", 2, &SoakDriver::hideOrShowWindow},
        {"change the layout", 5, &SoakDriver::changeLayout},
        {"move the splitter", 3, &SoakDriver::moveSplitter},
        {"drag on a view", 5, &SoakDriver::dragOnView},
        {"show the memory disks", 2, &SoakDriver::showMemoryWindow},
        {"clear a memory disk", 4, &SoakDriver::clearDisk},
        {"clear the message", 2, &SoakDriver::clearMessage},
        {"save the project", 2, &SoakDriver::saveProject},
        {"open the project again", 1, &SoakDriver::reopenProject},
    };
    return all;
}

// ---- Tasks ----------------------------------------------------------------------------------------------------------

void SoakDriver::clickRun()
{
    if (QWidget* const page = anyPage())
        press(runButton(page));
}

void SoakDriver::startAll()
{
    m_cTally.m_nStarted += TaskMgr::getInstance()->getTaskNum() - runningNum();
    child<QPushButton>("btnStartAll")->click();
}

void SoakDriver::stopAll()
{
    child<QPushButton>("btnStopAll")->click();
}

void SoakDriver::addTask()
{
    constexpr int MostAdded = 8;  // of a round: tasks that lose their id live on until all go
    if (m_nAdded >= MostAdded)
        return;
    const QString text =
        SoakProject::taskText(QStringLiteral("added"), m_cChance.below(SoakProject::KindNum), m_cChance);
    ++m_nAdded;
    trigger("addProcess");
    TaskInfo* const task = TaskMgr::getInstance()->getTask(tabs()->count() - 1);
    if (!task || tabs()->tabText(tabs()->count() - 1) != QStringLiteral("added%1").arg(m_nAdded)) {
        m_strProblem = QStringLiteral("a task that was added is not there");
        return;
    }
    task->fromString(text);
}

void SoakDriver::deleteTask()
{
    constexpr int FewestTabs = 20;
    if (tabs()->count() <= FewestTabs)
        return;
    m_bYes = !m_cChance.oneIn(4);
    tabs()->setCurrentIndex(m_cChance.below(tabs()->count()));
    trigger("delProcess");
    m_bYes = true;
}

/// Combos can be used while their task is idle: a running task is stopped, moved and started again.
void SoakDriver::chooseInCombo(int which)
{
    QWidget* const page = anyPage();
    if (!page)
        return;
    auto* const combo = page->findChildren<QComboBox*>().at(which);
    const bool wasRunning = !combo->isEnabled();
    if (wasRunning)
        press(runButton(page));
    combo->setCurrentIndex(m_cChance.below(combo->count()));
    if (wasRunning)
        press(runButton(page));
}

void SoakDriver::chooseProcessor()
{
    chooseInCombo(0);
}

void SoakDriver::chooseView()
{
    chooseInCombo(1);
}

// ---- Window and views -----------------------------------------------------------------------------------------------

void SoakDriver::resizeWindow()
{
    m_cWindow.resize(500 + m_cChance.below(900), 350 + m_cChance.below(600));
}

void SoakDriver::hideOrShowWindow()
{
    m_cWindow.setVisible(!m_cWindow.isVisible());
}

void SoakDriver::changeLayout()
{
    auto* const layout = child<QComboBox>("cbLayout");
    layout->setCurrentIndex(m_cChance.below(layout->count()));
}

void SoakDriver::moveSplitter()
{
    const int tabsWidth = m_cChance.below(m_cWindow.width());
    child<QSplitter>("splitter")->setSizes({tabsWidth, m_cWindow.width() - tabsWidth});
}

void SoakDriver::dragOnView()
{
    ViewForm* const view = ViewForm::s_apcViewForms[static_cast<std::size_t>(m_cChance.below(ViewForm::ViewNum))];
    const QPoint from(m_cChance.below(200), m_cChance.below(200));
    const QPoint to(m_cChance.below(200), m_cChance.below(200));
    sendMouse(view, QEvent::MouseButtonPress, from);
    sendMouse(view, QEvent::MouseMove, to);
    if (!m_cChance.oneIn(5))
        sendMouse(view, QEvent::MouseButtonRelease, to);
}

void SoakDriver::showMemoryWindow()
{
    trigger("viewMemoryWnd");
}

void SoakDriver::clearDisk()
{
    trigger("viewMemoryWnd");
    const int group = m_cChance.below(3);
    const int disk = m_cChance.below(6);
    const bool grey = m_cChance.oneIn(3);
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        auto* const status = qobject_cast<DlgMemoryDiskStatus*>(widget);
        if (!status)
            continue;
        const auto named = [group](const char* name) { return QLatin1String(name) + QString::number(group); };
        status->findChild<QComboBox*>(named("cmbMemDisk"))->setCurrentIndex(disk);
        status->findChild<QComboBox*>(named("cmbDataType"))->setCurrentIndex(grey ? 1 : 0);
        status->findChild<QPushButton*>(named("btnClear"))->click();
        SoakLibraries::excuse(disk, !grey);
        if (m_cChance.oneIn(2))
            status->hide();
        return;
    }
    m_strProblem = QStringLiteral("the window of the memory disks did not open");
}

void SoakDriver::clearMessage()
{
    child<QPushButton>("btnClearMsg")->click();
}

/// Canvases and Qt's own pictures of the window have one size whenever memory is counted.
void SoakDriver::restoreWindow()
{
    m_cWindow.show();
    m_cWindow.resize(1000, 700);
    child<QComboBox>("cbLayout")->setCurrentIndex(0);
    child<QSplitter>("splitter")->setSizes({300, 700});
    for (QWidget* const widget : QApplication::topLevelWidgets()) {
        if (qobject_cast<DlgMemoryDiskStatus*>(widget))
            widget->hide();
    }
}

// ---- Projects -------------------------------------------------------------------------------------------------------

void SoakDriver::saveProject()
{
    m_strFileName = m_strFolder + QStringLiteral("/kept.lmv");
    m_bYes = true;  // also to the question of the file dialog itself
    trigger("saveOptionAs");
    if (!QFile::exists(m_strFileName))
        m_strProblem = QStringLiteral("the saved project is not there");
}

void SoakDriver::reopenProject()
{
    m_strFileName = m_strFolder + QStringLiteral("/kept.lmv");
    if (!QFile::exists(m_strFileName))
        return;
    trigger("openOption");
    if (!m_cWindow.windowTitle().endsWith(QStringLiteral("kept.lmv")))
        m_strProblem = QStringLiteral("the saved project did not open");
    startAll();
}

// ---- What the operations share --------------------------------------------------------------------------------------

template <typename Widget>
Widget* SoakDriver::child(const char* name) const
{
    return m_cWindow.findChild<Widget*>(QString::fromLatin1(name));
}

QTabWidget* SoakDriver::tabs() const
{
    return child<QTabWidget>("tabWidget");
}

QWidget* SoakDriver::anyPage()
{
    return tabs()->count() > 0 ? tabs()->widget(m_cChance.below(tabs()->count())) : nullptr;
}

void SoakDriver::trigger(const char* action)
{
    child<QAction>(action)->trigger();
}

void SoakDriver::press(QPushButton* button)
{
    m_cTally.m_nStarted += button->text() == StartText ? 1 : 0;
    button->click();
}

int SoakDriver::runningNum()
{
    TaskMgr* const tasks = TaskMgr::getInstance();
    int running = 0;
    for (int id = 0; id < tasks->getTaskNum(); ++id) {
        const TaskInfo* const task = tasks->getTask(id);
        running += task && task->IsRunning() ? 1 : 0;
    }
    return running;
}

#pragma once

#include <QMainWindow>
#include <QString>

#include <memory>

class DlgMemoryDiskStatus;
class OutputLine;
class TaskInfo;
class ViewForm;

QT_BEGIN_NAMESPACE
namespace Ui {
class MainWindow;
}
QT_END_NAMESPACE

/**
 * Message callback of the tasks: shows the message in a box. Window's thread.
 *
 * While a box is open, further messages wait and follow it one by one.
 */
void HaveErrorMessage(QString message);

/**
 * The window: task tabs, four views, project and task commands, output line.
 *
 * Owns the tasks' widgets, not the tasks: those belong to the task registry, which the window empties and deletes when
 * it is closed or destroyed. Window's thread only, but HavePrintMessage.
 */
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /**
     * Print callback of the tasks: shows the message in the output line. Any thread; from a task thread the newest
     * message arrives with the next turn of the event loop.
     */
    static void HavePrintMessage(QString message);

    /// Replaces the tasks by those of a project file; a file that cannot be read is told in a box and changes nothing.
    void openProject(const QString& path);

public Q_SLOTS:
    // ---- Project commands (mainwindowProject.cpp) -------------------------------------------------------------------
    void on_newOption_triggered();
    void on_openOption_triggered();
    void on_saveOption_triggered();
    void on_saveOptionAs_triggered();

    // ---- Task commands (mainwindowTasks.cpp) ------------------------------------------------------------------------
    void on_addProcess_triggered();
    void on_delProcess_triggered();
    void on_btnStartAll_clicked();
    void on_btnStopAll_clicked();

    // ---- Views and output line (mainwindow.cpp) ---------------------------------------------------------------------
    void on_cbLayout_currentIndexChanged(int index);
    void on_btnClearMsg_clicked();
    void on_viewMemoryWnd_triggered();  ///< Made on first use, then shown again.

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void setIcons();
    void addViews();
    bool confirmed(const QString& question);

    void saveProject(const QString& target);
    void saveUnderChosenName();
    void setProjectPath(const QString& path);
    QString chooseFile(const QString& caption, bool forSaving);
    void showFileError();

    int addTaskTab(TaskInfo* task);
    void clearTabs();

    static int s_nProcessorNum;  ///< Configured processors; read when a window is made.

    std::unique_ptr<Ui::MainWindow> m_pcUi;
    std::unique_ptr<OutputLine> m_pcOutputLine;
    std::unique_ptr<DlgMemoryDiskStatus> m_pcMemoryWnd;  ///< Null until first used; a window of its own.
    QString m_strPath;                                   ///< File of the current project; empty when it has none.
};

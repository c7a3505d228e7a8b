#pragma once

#include <QMainWindow>
#include <QString>

#include <memory>

class TaskInfo;
class ViewForm;

QT_BEGIN_NAMESPACE
namespace Ui {
class MainWindow;
}
QT_END_NAMESPACE

/// Message callback of the tasks: shows the message in a box. Window's thread.
void HaveErrorMessage(QString message);

/// The window: task tabs, four views, project and task commands, output line.
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

public Q_SLOTS:
    void on_newOption_triggered();
    void on_openOption_triggered();
    void on_saveOption_triggered();
    void on_saveOptionAs_triggered();
    void on_addProcess_triggered();
    void on_delProcess_triggered();
    void on_cbLayout_currentIndexChanged(int index);
    void on_btnStartAll_clicked();
    void on_btnStopAll_clicked();
    void on_btnClearMsg_clicked();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    std::unique_ptr<Ui::MainWindow> m_pcUi;
    QString m_strPath;  ///< File of the current project; empty when it has none.
};

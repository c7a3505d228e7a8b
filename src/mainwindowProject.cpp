// The project commands of the main window: new, open, save, save as.
#include "mainwindow.h"

#include "safeFile.h"
#include "taskMgr/taskMgr.h"
#include "windowMessages.h"

#include <QFileDialog>

void MainWindow::on_newOption_triggered()
{
    if (!confirmed(WindowMessages::askNew()))
        return;
    TaskMgr::getInstance()->clear();
    clearTabs();
    setProjectPath(QString());
}

void MainWindow::on_openOption_triggered()
{
    const QString path = chooseFile(WindowMessages::openCaption(), false);
    if (!path.isEmpty())
        openProject(path);
}

void MainWindow::on_saveOption_triggered()
{
    if (!m_strPath.isEmpty() && confirmed(WindowMessages::askOverwrite()))
        saveProject(m_strPath);
    else
        saveUnderChosenName();
}

void MainWindow::on_saveOptionAs_triggered()
{
    saveUnderChosenName();
}

void MainWindow::openProject(const QString& path)
{
    QByteArray bytes;
    if (!SafeFile::readUpToNul(path, bytes)) {
        showFileError();
        return;
    }
    TaskMgr* const tasks = TaskMgr::getInstance();
    tasks->fromString(QString::fromUtf8(bytes));
    setProjectPath(path);
    clearTabs();
    for (int id = 0; id < tasks->getTaskNum(); ++id) {
        if (TaskInfo* const task = tasks->getTask(id))
            addTaskTab(task);
    }
}

void MainWindow::saveUnderChosenName()
{
    const QString path = chooseFile(WindowMessages::saveCaption(), true);
    if (!path.isEmpty())
        saveProject(path);
}

void MainWindow::saveProject(const QString& target)
{
    const QString suffix = WindowMessages::projectSuffix();
    const QString path = target.endsWith(suffix) ? target : target + suffix;
    const auto write = [](const SafeFile::Sink& sink) { return TaskMgr::getInstance()->save(sink); };
    if (!SafeFile::replaceFile(path, write)) {
        showFileError();
        return;
    }
    setProjectPath(path);
}

void MainWindow::setProjectPath(const QString& path)
{
    m_strPath = path;
    setWindowTitle(path.isEmpty() ? WindowMessages::programName() : WindowMessages::titleOfProject(path));
}

QString MainWindow::chooseFile(const QString& caption, bool forSaving)
{
    QFileDialog dialog(this, caption, QStringLiteral("."), WindowMessages::projectFilter());
    // Qt's own dialog looks and works the same on the board and on every desktop.
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    dialog.setAcceptMode(forSaving ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(forSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    // So that the dialog asks before it replaces a project whose name was typed without its end.
    dialog.setDefaultSuffix(WindowMessages::projectSuffix());
    if (dialog.exec() != QDialog::Accepted)
        return QString();
    return dialog.selectedFiles().value(0);
}

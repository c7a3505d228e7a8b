#include "mainwindow.h"

#include "forms/drawnIcons.h"
#include "globalFunction.h"
#include "memoryDisk/dlgMemoryDiskStatus.h"
#include "outputLine.h"
#include "taskMgr/taskMgr.h"
#include "ui_mainwindow.h"
#include "view/viewForm.h"
#include "windowMessages.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMessageBox>
#include <QStringList>

#include <unistd.h>

namespace {

/// An "about" box whose text is shown as it is, markup and all.
void showAbout(const QString& message)
{
    constexpr int MostCharacters = 2000;
    constexpr int MostLines = 30;
    const QString text = WindowMessages::readable(message, MostCharacters, MostLines);
    QWidget* const parent = QApplication::activeWindow();
    auto* const box = new QMessageBox(QMessageBox::NoIcon, WindowMessages::warning(), text, QMessageBox::Ok, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);  // Not on the stack: its parent may take it along.
    box->setTextFormat(Qt::PlainText);
    if (parent != nullptr)
        box->setIconPixmap(parent->windowIcon().pixmap(48, 48));
    box->exec();
}

}  // namespace

int MainWindow::s_nProcessorNum = 0;

void HaveErrorMessage(QString message)
{
    static QStringList s_lstWaiting;
    static bool s_bShowing = false;
    s_lstWaiting.append(message);
    if (s_bShowing)
        return;
    s_bShowing = true;
    while (!s_lstWaiting.isEmpty())
        showAbout(s_lstWaiting.takeFirst());
    s_bShowing = false;
}

void MainWindow::HavePrintMessage(QString message)
{
    OutputLine::print(message);
}

MainWindow::MainWindow(QWidget* parent) : QMainWindow(parent), m_pcUi(std::make_unique<Ui::MainWindow>())
{
    m_pcUi->setupUi(this);
    // The sample of a task's page goes before anything measures it; what the form knows of it is gone from here on.
    delete m_pcUi->tab;
    setIcons();
    // The tabs take what four short names need, the views all the rest.
    constexpr int TabWidth = 316;
    m_pcUi->splitter->setSizes({TabWidth, width() - TabWidth});
    m_pcUi->splitter->setStretchFactor(0, 0);
    m_pcUi->splitter->setStretchFactor(1, 1);
    m_pcOutputLine = std::make_unique<OutputLine>(m_pcUi->lblOutputMsg);
    addViews();

    s_nProcessorNum = static_cast<int>(sysconf(_SC_NPROCESSORS_CONF));
    setProjectPath(QString());
    TaskMgr::getInstance()->setMssageCallBack(HaveErrorMessage);
    TaskMgr::getInstance()->setPrintCallBack(MainWindow::HavePrintMessage);
}

void MainWindow::setIcons()
{
    setWindowIcon(DrawnIcons::workbench());
    m_pcUi->newOption->setIcon(DrawnIcons::newProject());
    m_pcUi->openOption->setIcon(DrawnIcons::openProject());
    m_pcUi->saveOption->setIcon(DrawnIcons::saveProject());
    m_pcUi->saveOptionAs->setIcon(DrawnIcons::saveProjectAs());
    m_pcUi->addProcess->setIcon(DrawnIcons::addTask());
    m_pcUi->delProcess->setIcon(DrawnIcons::deleteTask());
    m_pcUi->viewMemoryWnd->setIcon(DrawnIcons::memoryDisks());
}

MainWindow::~MainWindow()
{
    // The tasks use widgets, views and the output line until they are gone. A view that goes takes itself out of the
    // list.
    TaskMgr::deleteThis();
    m_pcOutputLine.reset();
}

void MainWindow::addViews()
{
    for (int i = 0; i < ViewForm::ViewNum; ++i) {
        auto* const view = new ViewForm(i, m_pcUi->wgViews);
        // All panes that are shown share the room evenly, whatever they show.
        view->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Ignored);
        m_pcUi->gridLayout_2->addWidget(view, i / 2, i % 2);
        ViewForm::s_apcViewForms[static_cast<size_t>(i)] = view;
        GlobalFunction::getInstance()->addView(i, view);
    }
}

bool MainWindow::confirmed(const QString& question)
{
    return QMessageBox::question(this, WindowMessages::warning(), question, QMessageBox::Yes | QMessageBox::No,
                                 QMessageBox::No) == QMessageBox::Yes;
}

void MainWindow::showFileError()
{
    showAbout(WindowMessages::fileFailed());
}

void MainWindow::on_cbLayout_currentIndexChanged(int index)
{
    if (index < 0 || index > ViewForm::ViewNum)
        return;
    for (int i = 0; i < ViewForm::ViewNum; ++i)
        ViewForm::s_apcViewForms[static_cast<size_t>(i)]->setVisible(index == 0 || index == i + 1);
}

void MainWindow::on_btnClearMsg_clicked()
{
    m_pcOutputLine->show(QString());
    m_pcUi->wgViewControl->repaint();
}

void MainWindow::on_viewMemoryWnd_triggered()
{
    if (!m_pcMemoryWnd) {
        m_pcMemoryWnd = std::make_unique<DlgMemoryDiskStatus>();
        m_pcMemoryWnd->setAttribute(Qt::WA_QuitOnClose, false);  // It has no parent, and must not outlive the window.
        m_pcMemoryWnd->adjustSize();
        m_pcMemoryWnd->move(x() + width() - m_pcMemoryWnd->width(), y());
    }
    m_pcMemoryWnd->show();
}

void MainWindow::closeEvent(QCloseEvent* event)
{
    if (!confirmed(WindowMessages::askExit())) {
        event->ignore();
        return;
    }
    TaskMgr::deleteThis();
    event->accept();
}

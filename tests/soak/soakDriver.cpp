#include "soakDriver.h"

#include "mainwindow.h"
#include "soakDisks.h"
#include "soakLibraries.h"
#include "taskMgr/taskMgr.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int TurnMs = 10;
constexpr int LookMs = 3;
constexpr int TaskNum = 31;      ///< And one without a source.
constexpr int QuietMs = 300;     ///< For what is deleted later.
constexpr int GiveUpMs = 10000;  ///< Until threads that have ended are gone.

qint64 roundMs(qint64 durationMs)
{
    return std::clamp<qint64>(durationMs / 30, 1000, 15000);
}

}  // namespace

SoakDriver::SoakDriver(MainWindow& window, SoakWatchdog& watchdog, const QString& folder, quint64 seed,
                       qint64 durationMs)
    : m_cWindow(window), m_cWatchdog(watchdog), m_strFolder(folder), m_cChance(seed), m_nDurationMs(durationMs)
{
    SoakProject::setScratchFolder(folder + QStringLiteral("/saved"));
    connect(&m_cTimer, &QTimer::timeout, this, &SoakDriver::turn);
    m_cTimer.start(TurnMs);
    connect(&m_cLook, &QTimer::timeout, this, &SoakDriver::look);
    m_cLook.start(LookMs);
    m_cSinceBegin.start();
    m_cInPhase.start();
}

void SoakDriver::turn()
{
    if (m_bOperating || m_ePhase == Phase::Over || QApplication::activeModalWidget())
        return;
    m_bOperating = true;
    operate();
    m_bOperating = false;
    m_cWatchdog.windowIsBack("waiting for a turn");
    if (m_strProblem.isEmpty())
        m_strProblem = SoakLibraries::problems();
    if (m_strProblem.isEmpty() && m_ePhase != Phase::Over)
        return;
    m_ePhase = Phase::Over;
    Q_EMIT done();
}

/// Answers dialogs, which an operation or a task has opened, from their own loops.
void SoakDriver::look()
{
    m_cWatchdog.windowIsBack(m_bOperating ? "waiting for an answer" : "waiting for a turn");
    QWidget* const dialog = QApplication::activeModalWidget();
    if (!dialog || !dialog->isVisible() || dialog == m_pcAnswered)
        return;
    m_pcAnswered = dialog;
    connect(static_cast<QDialog*>(dialog), &QDialog::finished, this, [this] { m_pcAnswered = nullptr; });
    // Not from here: what the click opens is to be answered, too, and a timer is not called again before it returns.
    QAbstractButton* const button = buttonFor(dialog);
    QTimer::singleShot(0, button, [button] { button->click(); });
}

QAbstractButton* SoakDriver::buttonFor(QWidget* dialog)
{
    if (auto* const box = qobject_cast<QMessageBox*>(dialog)) {
        m_cTally.m_nBoxes += box->button(QMessageBox::Yes) ? 0 : 1;
        QAbstractButton* const chosen = box->button(m_bYes ? QMessageBox::Yes : QMessageBox::No);
        return chosen ? chosen : box->buttons().constFirst();
    }
    if (auto* const files = qobject_cast<QFileDialog*>(dialog)) {
        files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(m_strFileName);
        const bool saves = files->acceptMode() == QFileDialog::AcceptSave;
        return files->findChild<QDialogButtonBox*>()->button(saves ? QDialogButtonBox::Save : QDialogButtonBox::Open);
    }
    dialog->findChild<QLineEdit*>()->setText(QStringLiteral("added%1").arg(m_nAdded));
    return dialog->findChild<QPushButton*>(QStringLiteral("btnOK"));
}

void SoakDriver::note(const char* operation)
{
    constexpr int Kept = 30;
    m_cWatchdog.windowIsBack(operation);
    ++m_cTally.m_nOperations;
    m_lstLast.append(QString::fromLatin1(operation));
    if (m_lstLast.size() > Kept)
        m_lstLast.removeFirst();
}

void SoakDriver::operate()
{
    switch (m_ePhase) {
    case Phase::Opening:
        openRound();
        return;
    case Phase::Quiet:
        if (isQuiet())
            closeBooks();
        return;
    case Phase::Working:
        break;
    case Phase::Over:
        return;
    }
    // Each once at first, so that what is made when it is needed first does not count as growth.
    const bool everyOnce = m_nTried < operations().size();
    if (!everyOnce && m_cInPhase.elapsed() > roundMs(m_nDurationMs)) {
        endRound();
        return;
    }
    const Operation& operation = everyOnce ? operations().at(m_nTried++) : anyOperation();
    note(operation.m_pchName);
    (this->*operation.m_pfnDo)();
}

const SoakDriver::Operation& SoakDriver::anyOperation()
{
    int weight = 0;
    for (const Operation& operation : operations())
        weight += operation.m_nWeight;
    int chosen = m_cChance.below(weight);
    const auto* operation = operations().constBegin();
    for (; chosen >= operation->m_nWeight; ++operation)
        chosen -= operation->m_nWeight;
    return *operation;
}

// ---- Rounds ---------------------------------------------------------------------------------------------------------

void SoakDriver::openRound()
{
    note("open a round");
    m_strFileName = m_strFolder + QStringLiteral("/round.lmv");
    QFile file(m_strFileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(SoakProject::projectText(TaskNum, m_cChance)) < 0)
        qFatal("cannot write %s", qPrintable(m_strFileName));
    file.close();
    QFile::remove(m_strFolder + QStringLiteral("/kept.lmv"));
    m_bYes = true;
    m_nAdded = 0;
    trigger("openOption");
    if (tabs()->count() != TaskNum + 1)
        m_strProblem =
            QStringLiteral("opening a project of %1 tasks made %2 tabs").arg(TaskNum + 1).arg(tabs()->count());
    startAll();
    m_ePhase = Phase::Working;
    m_cInPhase.start();
}

void SoakDriver::endRound()
{
    note("end the round");
    m_bYes = true;
    trigger("newOption");
    restoreWindow();
    m_ePhase = Phase::Quiet;
    m_cInPhase.start();
}

bool SoakDriver::isQuiet() const
{
    if (m_cInPhase.elapsed() < QuietMs)
        return false;
    const QVector<SoakSample>& samples = m_cGrowth.samples();
    return samples.isEmpty() || SoakSample::threadNum() <= samples.first().m_nThreads ||
           m_cInPhase.elapsed() > GiveUpMs;
}

void SoakDriver::closeBooks()
{
    ++m_cTally.m_nRounds;
    QString problem = SoakDisks::drain();
    if (problem.isEmpty())
        problem = SoakDisks::fillAndEmpty();
    if (m_strProblem.isEmpty())
        m_strProblem = problem;
    SoakLibraries::close();
    if (m_strProblem.isEmpty() && SoakLibraries::sourceInstances() != 0)
        m_strProblem = QStringLiteral("sources outlive their tasks");
    m_cGrowth.add(SoakSample::take());
    std::fprintf(stderr, "round %d: %s\n", m_cTally.m_nRounds, qPrintable(m_cGrowth.samples().last().toString()));
    if (m_cSinceBegin.elapsed() < m_nDurationMs || m_cTally.m_nRounds < SoakGrowth::FewestSamples) {
        m_ePhase = Phase::Opening;
        return;
    }
    if (m_strProblem.isEmpty())
        m_strProblem = QString::fromStdString(SoakLibraries::counts().problem());
    if (m_strProblem.isEmpty())
        m_strProblem = m_cGrowth.problem();
    m_ePhase = Phase::Over;
}

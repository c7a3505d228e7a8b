#pragma once

#include "soakProject.h"
#include "soakWatch.h"

#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QPushButton>
#include <QStringList>
#include <QTabWidget>
#include <QTimer>

class DlgMemoryDiskStatus;
class MainWindow;
class TaskInfo;

/// What a soak did, for its last lines.
struct SoakTally
{
    long long m_nOperations = 0;
    long long m_nStarted = 0;
    long long m_nBoxes = 0;  ///< Messages of tasks that were answered.
    int m_nRounds = 0;
};

/**
 * The user of the soak: one operation a turn, by chance, through the window's own widgets and commands.
 *
 * A round opens a project, works on it for a while and ends with the command for a new one; between rounds, while no
 * task exists, the books are closed and memory, threads and files are counted. Window's thread.
 */
class SoakDriver : public QObject
{
    Q_OBJECT

public:
    SoakDriver(MainWindow& window, SoakWatchdog& watchdog, const QString& folder, quint64 seed, qint64 durationMs);

    QString m_strProblem;  ///< Empty as long as all is well.
    SoakTally m_cTally;
    SoakGrowth m_cGrowth;

    QString lastOperations() const { return m_lstLast.join(QStringLiteral("; ")); }

Q_SIGNALS:
    void done();

private:
    enum class Phase
    {
        Opening,
        Working,
        Quiet,
        Over,
    };

    void turn();
    void look();
    QAbstractButton* buttonFor(QWidget* dialog);
    void operate();
    void note(const char* operation);

    // ---- Rounds -----------------------------------------------------------------------------------------------------
    void openRound();
    void endRound();
    void restoreWindow();
    void closeBooks();
    bool isQuiet() const;

    // ---- Operations (soakOperations.cpp) ----------------------------------------------------------------------------
    struct Operation
    {
        const char* m_pchName;
        int m_nWeight;
        void (SoakDriver::*m_pfnDo)();
    };
    static const QVector<Operation>& operations();
    const Operation& anyOperation();
    void clickRun();
    void startAll();
    void stopAll();
    void addTask();
    void deleteTask();
    void chooseView();
    void chooseProcessor();
    void resizeWindow();
    void hideOrShowWindow();
    void changeLayout();
    void moveSplitter();
    void dragOnView();
    void showMemoryWindow();
    void clearDisk();
    void clearMessage();
    void saveProject();
    void reopenProject();

    template <typename Widget>
    Widget* child(const char* name) const;
    QTabWidget* tabs() const;
    QWidget* anyPage();
    void trigger(const char* action);
    void press(QPushButton* button);
    static int runningNum();
    void chooseInCombo(int which);

    MainWindow& m_cWindow;
    SoakWatchdog& m_cWatchdog;
    const QString m_strFolder;
    SoakChance m_cChance;
    const qint64 m_nDurationMs;
    QTimer m_cTimer;  ///< Of the operations.
    QTimer m_cLook;   ///< Of the answers.
    QElapsedTimer m_cSinceBegin;
    QElapsedTimer m_cInPhase;
    Phase m_ePhase = Phase::Opening;
    bool m_bOperating = false;
    bool m_bYes = true;     ///< What a question is answered with.
    QString m_strFileName;  ///< What is typed into a file dialog.
    QPointer<QWidget> m_pcAnswered;
    QStringList m_lstLast;
    int m_nAdded = 0;
    int m_nTried = 0;  ///< Operations that were done once, in their order.
};

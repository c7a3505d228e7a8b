// Weeks in minutes: 32 tasks of all kinds under a user who does everything that the window offers, in random order.
//     lumivantSoak MINUTES SEED
#include "folderThread.h"
#include "mainwindow.h"
#include "memoryArenas.h"
#include "soakDisks.h"
#include "soakDriver.h"
#include "soakLibraries.h"

#include <QApplication>
#include <QDir>
#include <QMessageBox>
#include <QTemporaryDir>

#include <cstdio>
#include <cstdlib>

namespace {

constexpr int WatchdogMs = 30000;

void printTally(const SoakDriver& driver, const SoakWatchdog& watchdog, quint64 seed, double minutes)
{
    const SoakTally& tally = driver.m_cTally;
    const SoakLedger::Counts counts = SoakLibraries::counts();
    std::printf("seed %llu, %.1f minutes, %d rounds, %lld operations, %lld tasks started, %lld messages answered\n",
                static_cast<unsigned long long>(seed), minutes, tally.m_nRounds, tally.m_nOperations, tally.m_nStarted,
                tally.m_nBoxes);
    std::printf(
        "pictures handed over: %lld; cleared by the user %lld at most, refused by a full disk %lld and perhaps %lld, "
        "ended with one of %lld runs %lld at most\n",
        counts.m_nTaken, counts.m_nCleared, counts.m_nRefused, counts.m_nDoubtful, counts.m_nWriters,
        counts.m_nUnknown);
    std::printf("longest absence of the window: %d ms, in: %s\n", watchdog.longestMs(), watchdog.longestIn());
    if (driver.m_cGrowth.samples().isEmpty())
        return;
    std::printf("at the start: %s\n", qPrintable(driver.m_cGrowth.samples().first().toString()));
    std::printf("at the end:   %s\n", qPrintable(driver.m_cGrowth.samples().last().toString()));
}

/// Closes the window through its question, as a user does.
bool closeWindow(MainWindow& window)
{
    QTimer answer;
    QObject::connect(&answer, &QTimer::timeout, [] {
        if (auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            (box->button(QMessageBox::Yes) ? box->button(QMessageBox::Yes) : box->buttons().constFirst())->click();
    });
    answer.start(10);
    return window.close();
}

int soak(double minutes, quint64 seed)
{
    SoakLibraries::install();
    QTemporaryDir folder;
    QDir(folder.path()).mkdir(QStringLiteral("saved"));
    SoakWatchdog watchdog(WatchdogMs);
    MainWindow window;
    window.show();
    // The largest buffers at once: what grows afterwards is no warm-up.
    if (const QString problem = SoakDisks::fillAndEmpty(); !problem.isEmpty()) {
        std::printf("FAILED: %s\n", qPrintable(problem));
        return EXIT_FAILURE;
    }
    const SoakDiskWatch diskWatch;
    SoakDriver driver(window, watchdog, folder.path(), seed, static_cast<qint64>(minutes * 60000));
    QObject::connect(&driver, &SoakDriver::done, qApp, &QApplication::quit);
    QApplication::exec();

    printTally(driver, watchdog, seed, minutes);
    if (!driver.m_strProblem.isEmpty()) {
        std::printf("FAILED: %s\nthe last operations: %s\n", qPrintable(driver.m_strProblem),
                    qPrintable(driver.lastOperations()));
        return EXIT_FAILURE;
    }
    return closeWindow(window) ? EXIT_SUCCESS : EXIT_FAILURE;
}

}  // namespace

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    if (argc != 3 || std::atof(argv[1]) <= 0) {
        std::fprintf(stderr, "usage: %s MINUTES SEED\n", argv[0]);
        return 2;
    }
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    return soak(std::atof(argv[1]), std::strtoull(argv[2], nullptr, 10));
}

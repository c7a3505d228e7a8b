#pragma once

#include <QStringList>

class MainWindow;
class QWidget;

/// What the programs do from the start of their process on.
namespace StartUp {

enum class Program
{
    Workbench,  ///< A window like others; opens the project that its arguments name.
    Kiosk       ///< Fills the screen, runs all tasks of its project, and ends as services do.
};

/// All of a program; gives what its main function gives back. Once per process.
int run(Program program, int argc, char* argv[]);

/// Before the application object is made: how memory is kept, and how large things are on dense and on bare screens.
void prepare(int argc, const char* const* argv);

/// With an application object, before the first window: Qt's texts in Chinese, and what a bar asks the style for as it
/// is made is drawn, not read from a file.
void dress();

/**
 * Opens the project file that the first argument behind the program's name names, as the open command does.
 *
 * Nothing happens without one; further arguments are ignored. May show a box, so the window should be shown before.
 */
void openNamedProject(MainWindow& window, const QStringList& arguments);

/// Shows a window over the whole primary screen, without the help of a window manager.
void showOverScreen(QWidget& window);

/**
 * From now on a request to end (SIGTERM, SIGINT, SIGHUP) ends the event loop instead of the process, so that tasks run
 * their end-of-task steps and stop their sources. Once per process, with an application object.
 */
void quitOnEndSignals();

}  // namespace StartUp

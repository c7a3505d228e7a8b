#pragma once

#include <QStringList>

class MainWindow;
class QWidget;

/// What the programs do between the start of their process and the event loop.
namespace StartUp {

/// Before the application object is made: how it treats dense screens.
void preparePixels();

/// With an application object, before the first window: what a bar asks the style for as it is made is drawn, not read.
void useDrawnIcons();

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

#pragma once

#include <QString>

/**
 * Tells the user in a box why a library did not load, and waits until he has answered.
 *
 * Without a window system, or on any thread but the window's, the reason goes to the debug output instead.
 */
void showLoadWarning(const QString& reason);

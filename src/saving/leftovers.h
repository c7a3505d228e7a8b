#pragma once

#include <QString>

/**
 * The hidden files that pictures are written into before they get their name, where a killed program or a power cut
 * left them behind. Any thread.
 */
namespace Leftovers {

/// ".lumivant-<process>-<count>.part": a picture folder's reader passes over it.
QString nameOf(int process, unsigned count);

/**
 * Removes what lies in the folder of a file that was just made and will surely never be completed: written to for the
 * last time more than an hour before that file was made, by the folder's own clock, and by no process that lives now.
 * Folders that other machines write to, whose processes are unknown here, are thus safe as well.
 *
 * A folder is looked through when its first picture is saved, not at every one.
 * @param made path of the file that was just made
 */
void removeBeside(const QString& made);

}  // namespace Leftovers

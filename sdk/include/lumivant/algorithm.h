#pragma once

/**
 * The C interface of an algorithm library.
 *
 * A library placed in "baseArithm" or "extArithm" beside the workbench is loaded once at start when its name ends in
 * ".so". It must export all five functions below; one that lacks any is ignored.
 *
 * Text. All text is UTF-8 and ends with a zero byte. A returned text stays owned by the library and must stay valid
 * until the library's next call on the same thread; the workbench copies it at once. A null text counts as empty.
 *
 * Threads. execute is called on the thread of the task that runs the step; several tasks may call it at the same time,
 * each with its own store. showConfigWindow is called on the window's thread. getArithmClass and getArithmName are
 * called once, at load time.
 */

class ArithmParamMgr;

#define LUMIVANT_EXPORT extern "C" __attribute__((visibility("default")))

/// The identifier by which steps and project files name the algorithm; unique among all algorithms.
LUMIVANT_EXPORT const char* getID();

/// The menu group to list the algorithm under.
LUMIVANT_EXPORT const char* getArithmClass();

/// The name shown to the user.
LUMIVANT_EXPORT const char* getArithmName();

/**
 * Shows the modal configuration dialog of a step.
 *
 * @param option the step's current option text, empty for a new step; valid during the call only
 * @param store the store of the task, filled by the steps before this one; not owned
 * @param reserved always true
 * @return the option text to keep; empty when the user cancelled
 */
LUMIVANT_EXPORT char* showConfigWindow(char* option, ArithmParamMgr* store, bool reserved);

/**
 * Runs the algorithm once: reads its inputs from the store, writes its outputs into it.
 *
 * @param option the step's option text; the buffer may be written to, and is valid during the call only
 * @param store the store of the task; not owned
 * @return the result text. Empty means success. Commands may stand in it, each between <CMD> and </CMD>:
 *         "skip:n" makes the step n places on the next one to run, "stop:text" ends the task, "print:text" shows the
 *         text in the window. What is left beside the commands is reported as an error and ends the task.
 */
LUMIVANT_EXPORT char* execute(char* option, ArithmParamMgr* store);

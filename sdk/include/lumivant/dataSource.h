#pragma once

/**
 * The C interface of a data source library.
 *
 * A library placed in "DataSource" beside the workbench is loaded once, on first use, when its name ends in ".so". It
 * must export all nine functions below; one that lacks any is ignored.
 *
 * Instances. Every configured source of a task has a number, handed out by the workbench; a library learns of a new one
 * through its first setConfig call and forgets it in removeInstance.
 *
 * Text. All text but the name is UTF-8 and ends with a zero byte. A returned text stays owned by the library and must
 * stay valid until its next call on the same thread; the workbench copies it at once.
 *
 * Threads. requestPicture, releasePicture, start and stop of one instance are called on the thread of its task (start
 * and stop also on the window's thread while the task is idle); the others on the window's thread while the task is
 * idle. Different instances are used from different threads at the same time.
 */

#define LUMIVANT_EXPORT extern "C" __attribute__((visibility("default")))

/// The name of the kind, in the local 8-bit encoding: use ASCII.
LUMIVANT_EXPORT const char* getDataSourceName();

/**
 * Hands out the next picture.
 *
 * Where no picture is due the library waits inside this call, at most about 200 ms at a time, so that the task neither
 * burns a processor nor delays its stop.
 *
 * @param instance the instance number
 * @param type "RGB": 3 bytes a pixel in the order blue, green, red, rows padded to a multiple of 4 bytes;
 *             "Gray8": one byte a pixel, rows not padded
 * @param width, height receive the size in pixels
 * @return the pixels, owned by the library and valid until releasePicture; null when there is no picture
 */
LUMIVANT_EXPORT unsigned char* requestPicture(int instance, const char* type, int* width, int* height);

/// Ends the use of the buffer handed out last; called after every request, whether a picture came or not.
LUMIVANT_EXPORT void releasePicture(int instance);

/**
 * Shows the modal configuration dialog of the kind.
 *
 * @param config the current configuration text, empty for a new instance; valid during the call only
 * @param reserved always true
 * @return the configuration text to keep
 */
LUMIVANT_EXPORT char* showConfigDlg(char* config, bool reserved);

/// Applies a configuration text to an instance; leading and trailing line feeds must be accepted.
LUMIVANT_EXPORT void setConfig(int instance, char* config);

LUMIVANT_EXPORT void start(int instance);           ///< Begin delivering pictures.
LUMIVANT_EXPORT void stop(int instance);            ///< Stop delivering pictures.
LUMIVANT_EXPORT void removeInstance(int instance);  ///< Release everything kept for the instance.

/// The instance's last error; null or empty for none.
LUMIVANT_EXPORT char* getLastError(int instance);

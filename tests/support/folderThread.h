#pragma once

// The thread with which Qt's file dialog reads folders, under the thread sanitizer; nothing otherwise. For every
// program that opens the dialog.
#if defined(__SANITIZE_THREAD__)
#include "threadGuards.h"

#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <cstdarg>
#include <cstring>

/**
 * Every thread of Qt's says its name by this call as its first act. The one with which the file dialog reads folders
 * runs no code of ours and works under locks that the thread sanitizer does not see: from here to its end it looks
 * away. All other threads it watches, that of the window too, while the dialog is open and afterwards.
 */
extern "C" __attribute__((weak, visibility("default"))) int prctl(int option, ...)
{
    va_list list;
    va_start(list, option);
    unsigned long arguments[4];
    for (unsigned long& argument : arguments)
        argument = va_arg(list, unsigned long);
    va_end(list);
    if (option == PR_SET_NAME && std::strcmp(reinterpret_cast<const char*>(arguments[0]), "QFileInfoGatherer") == 0)
        static thread_local const ThreadGuards::PostingScope s_cUnseen;
    return static_cast<int>(::syscall(SYS_prctl, option, arguments[0], arguments[1], arguments[2], arguments[3]));
}
#endif

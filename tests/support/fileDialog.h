#pragma once

#include "dialogDriver.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>

/**
 * Qt's file dialog, answered as a user does.
 *
 * It reads folders on a thread of its own and posts events from there, under locks that the thread sanitizer does not
 * see; what it then reports names no function that a suppression could name. Tests that open one leave it out there.
 */
namespace FileDialog {

#if defined(__SANITIZE_THREAD__)
constexpr bool IsSeenRightly = false;
#else
constexpr bool IsSeenRightly = true;
#endif

/// Types a path and presses one of the dialog's buttons.
inline void answer(QFileDialog& dialog, const QString& path, QDialogButtonBox::StandardButton button)
{
    DialogDriver::child<QLineEdit>(dialog, "fileNameEdit")->setText(path);
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
}

}  // namespace FileDialog

#define SKIP_WHERE_FILE_DIALOG_IS_NOT_SEEN_RIGHTLY()                                  \
    do {                                                                              \
        if (!FileDialog::IsSeenRightly)                                               \
            QSKIP("the thread sanitizer does not see the locks of Qt's file dialog"); \
    } while (false)

#pragma once

#include "dialogDriver.h"
#include "folderThread.h"

#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>

/// Qt's file dialog, answered as a user does.
namespace FileDialog {

/// Types a path and presses one of the dialog's buttons.
inline void answer(QFileDialog& dialog, const QString& path, QDialogButtonBox::StandardButton button)
{
    DialogDriver::child<QLineEdit>(dialog, "fileNameEdit")->setText(path);
    QTest::mouseClick(dialog.findChild<QDialogButtonBox*>()->button(button), Qt::LeftButton);
}

}  // namespace FileDialog

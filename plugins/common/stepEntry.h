#pragma once

#include "guarded.h"
#include "resultBuffer.h"

#include <QDialog>

class ArithmParamMgr;

/// What the exported functions of the algorithms share.
namespace StepEntry {

using Run = QString (*)(const QString& option, ArithmParamMgr& store);

/// Runs a step; whatever OpenCV or the library throws becomes a result text, nothing passes the C interface.
char* execute(char* option, ArithmParamMgr* store, Run run);

/// The option text as a text; empty for null.
QString optionText(const char* option);

/// Shows a step's dialog on its option text; the new text, empty when cancelled, null when something was thrown.
template <typename Dialog>
char* showDialog(char* option, ArithmParamMgr* store)
{
    return guarded([&] {
        if (!store)
            return keepText(QString());
        Dialog dialog(optionText(option), *store);
        return keepText(dialog.exec() == QDialog::Accepted ? dialog.acceptedOption() : QString());
    });
}

}  // namespace StepEntry

#pragma once

#include <QDialog>
#include <QString>

class ArithmParamMgr;

/// How every built-in algorithm shows its configuration dialog. Window's thread.
namespace ConfigDialog {

/// Runs a dialog modally, kept inside the screen; true when it was accepted.
bool accepted(QDialog& dialog);

/**
 * Runs a configuration dialog on an option text.
 *
 * @tparam Dialog made from (option text, store, parent); gives the new text by getConfigString()
 * @param option UTF-8; null counts as empty
 * @param store borrowed; may be null
 * @return the dialog's text when it was accepted, else the empty text
 */
template <typename Dialog>
QString textOf(const char* option, ArithmParamMgr* store)
{
    Dialog dialog(QString::fromUtf8(option), store, nullptr);
    return accepted(dialog) ? dialog.getConfigString() : QString();
}

}  // namespace ConfigDialog

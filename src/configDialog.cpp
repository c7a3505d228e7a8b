#include "configDialog.h"

#include <QGuiApplication>
#include <QScreen>

bool ConfigDialog::accepted(QDialog& dialog)
{
    QWidget* const firstField = dialog.focusWidget();
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (firstField)
        firstField->setFocus();  // new flags take the focus away
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        dialog.resize(dialog.size().boundedTo(screen->availableSize()));
    return dialog.exec() == QDialog::Accepted;
}

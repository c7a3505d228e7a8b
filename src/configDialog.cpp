#include "configDialog.h"

#include <QGuiApplication>
#include <QScreen>

bool ConfigDialog::accepted(QDialog& dialog)
{
    dialog.setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        dialog.resize(dialog.size().boundedTo(screen->availableSize()));
    return dialog.exec() == QDialog::Accepted;
}

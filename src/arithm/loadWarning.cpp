#include "arithm/loadWarning.h"

#include <QApplication>
#include <QDebug>
#include <QMessageBox>
#include <QThread>

void showLoadWarning(const QString& reason)
{
    const auto* application = qobject_cast<QApplication*>(QCoreApplication::instance());
    if (!application || application->thread() != QThread::currentThread()) {
        qDebug().noquote() << reason;
        return;
    }
    QMessageBox::about(nullptr, QStringLiteral("Warning"), reason);
}

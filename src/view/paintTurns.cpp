#include "view/paintTurns.h"

#include <QCoreApplication>

PaintTurns::PaintTurns(QObject* parent) : QObject(parent)
{
    connect(&m_cTurn, &QTimer::timeout, this, &PaintTurns::paintNext);
}

void PaintTurns::ask(QWidget* view)
{
    // A child of the application, because a timer must not outlive it.
    static QPointer<PaintTurns> s_pcInstance;
    if (!s_pcInstance)
        s_pcInstance = new PaintTurns(QCoreApplication::instance());
    s_pcInstance->queue(view);
}

void PaintTurns::queue(QWidget* view)
{
    if (m_lstWaiting.contains(view))
        return;
    m_lstWaiting.append(view);
    if (!m_cTurn.isActive())
        m_cTurn.start(0);
}

void PaintTurns::paintNext()
{
    if (QWidget* const view = m_lstWaiting.isEmpty() ? nullptr : m_lstWaiting.takeFirst().data())
        view->update();
    if (m_lstWaiting.isEmpty())
        m_cTurn.stop();
}

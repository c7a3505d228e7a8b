#include "outputLine.h"

#include "threadAnnotations.h"
#include "threadGuards.h"
#include "windowMessages.h"

#include <QLabel>
#include <QTextDocument>

#include <thread>

namespace {

constexpr int PauseMs = 16;
constexpr int MostCharacters = 64 * 1024;  ///< Far more than a line shows.

/// Where the threads leave their newest message.
struct Relay
{
    Mutex m_cMutex;                                        ///< While it is held the current line cannot go.
    OutputLine* m_pcLine GUARDED_BY(m_cMutex) = nullptr;   ///< Not owned; null without a window.
    std::thread::id m_cWindowThread GUARDED_BY(m_cMutex);  ///< The thread that shows.
    QString m_strNewest GUARDED_BY(m_cMutex);              ///< Of no account unless it is fresh.
    bool m_bFresh GUARDED_BY(m_cMutex) = false;            ///< The newest message was not shown yet.
    bool m_bBusy GUARDED_BY(m_cMutex) = false;             ///< A call to the line is on its way, or its pause runs.

    void reset(OutputLine* line) REQUIRES(m_cMutex)
    {
        m_pcLine = line;
        m_cWindowThread = std::this_thread::get_id();
        m_bFresh = false;
        m_bBusy = false;
    }
};

Relay& relay()
{
    static Relay* const s_pcRelay = new Relay;  // Never deleted: threads may print until the process ends.
    return *s_pcRelay;
}

// Functions of their own, since clang does not check the locks of constructors.

void makeCurrent(OutputLine* line)
{
    Relay& state = relay();
    const Guard guard(state.m_cMutex);
    state.reset(line);
}

void forget(const OutputLine* line)
{
    Relay& state = relay();
    const Guard guard(state.m_cMutex);
    if (state.m_pcLine == line)
        state.reset(nullptr);
}

}  // namespace

OutputLine::OutputLine(QLabel* label, QObject* parent) : QObject(parent), m_pcLabel(label)
{
    m_cPause.setSingleShot(true);
    connect(&m_cPause, &QTimer::timeout, this, &OutputLine::showNewest);
    makeCurrent(this);
}

OutputLine::~OutputLine()
{
    forget(this);
}

void OutputLine::print(const QString& message)
{
    Relay& state = relay();
    Guard guard(state.m_cMutex);
    if (state.m_pcLine == nullptr)
        return;
    if (state.m_cWindowThread == std::this_thread::get_id()) {
        OutputLine* const line = state.m_pcLine;
        guard.unlock();
        line->show(message);
        return;
    }
    // A copy: the two threads never share a text, and a flood reuses the memory.
    state.m_strNewest.setUnicode(message.constData(), qMin(message.size(), MostCharacters + 1));
    state.m_bFresh = true;
    if (state.m_bBusy)
        return;
    state.m_bBusy = true;
    // By name and with the lock held: nothing of the event is touched by two threads without the lock between them.
    const ThreadGuards::PostingScope posting;
    QMetaObject::invokeMethod(state.m_pcLine, "showNewest", Qt::QueuedConnection);
}

void OutputLine::show(const QString& message)
{
    {
        Relay& state = relay();
        const Guard guard(state.m_cMutex);
        state.m_bFresh = false;
    }
    setLabel(message);
}

void OutputLine::showNewest()
{
    QString message;
    {
        Relay& state = relay();
        const Guard guard(state.m_cMutex);
        if (state.m_pcLine != this)
            return;
        // Busy until a whole pause brought nothing: Qt would deliver calls that arrive meanwhile in the same turn.
        state.m_bBusy = state.m_bFresh;
        if (!state.m_bFresh)
            return;
        message.swap(state.m_strNewest);
        state.m_bFresh = false;
    }
    setLabel(message);
    m_cPause.start(PauseMs);
}

void OutputLine::setLabel(const QString& newest)
{
    if (m_pcLabel.isNull())
        return;
    const QString message = WindowMessages::readable(newest, MostCharacters, MostCharacters);
    m_pcLabel->setText(message);
    m_pcLabel->setToolTip(message.isEmpty() ? QString() : Qt::convertFromPlainText(message));
}

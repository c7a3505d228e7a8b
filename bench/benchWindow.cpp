// How long is the window's event loop away while four tasks draw full HD pictures as fast as they can, two more save,
// and the user drags, resizes and edits?
#include "mainwindow.h"
#include "memoryArenas.h"
#include "taskMgr/taskMgr.h"
#include "view/viewForm.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QTabWidget>
#include <QTemporaryDir>
#include <QTimer>

#include <pthread.h>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <thread>
#include <vector>

namespace {

constexpr int WarmUpMs = 1000;  // starting threads and first allocations are not what is asked about
constexpr int MeasuredMs = 6000;
constexpr int UserPeriodMs = 20;
constexpr int DrawingTasks = 4;

QString step(const char* algorithm, const QString& option)
{
    return QStringLiteral(
               "<-TaskItem-><-MaxExeTimes->-1</-MaxExeTimes-><-ArithmID->%1</-ArithmID->"
               "<-OptionStr->%2</-OptionStr-></-TaskItem->")
        .arg(QLatin1String(algorithm), option);
}

void addTask(int number, int view, const QString& steps)
{
    auto* task = new TaskInfo(QStringLiteral("task %1").arg(number), nullptr);
    task->fromString(
        QStringLiteral("<-View->%1</-View-><-DataSource-><DSName>Bench Still</DSName><OutputName>p</OutputName>"
                       "<OutputDescribe></OutputDescribe><OutputType>RGB</OutputType><OutputID>1</OutputID>"
                       "<Config>1920x1080</Config></-DataSource->%2")
            .arg(view)
            .arg(steps));
    TaskMgr::getInstance()->addTask(task, number);
}

/// Four that draw, one that saves its picture, one that saves a view.
void addTasks(const QString& folder)
{
    for (int view = 0; view < DrawingTasks; ++view)
        addTask(view, view,
                step("KW_Drawing", QStringLiteral("<DataType>0</DataType><DataID>1</DataID>"
                                                  "<Config><Scale>1</Scale></Config>")));
    const QString name = QStringLiteral(
                             "<BasePath>%1</BasePath><StringID>%2</StringID><IsStringID>0</IsStringID>"
                             "<Identity>2</Identity><Exg>0</Exg>")
                             .arg(folder);
    addTask(
        4, 0,
        step("KW_Saving", name.arg(QStringLiteral("picture")) +
                              QStringLiteral("<Format>0</Format><Wnd>4</Wnd><PicType>RGB</PicType><PicID>1</PicID>")));
    addTask(5, 0,
            step("KW_Saving", name.arg(QStringLiteral("view")) + QStringLiteral("<Format>1</Format><Wnd>1</Wnd>")));
}

/// Acts on the window as somebody in a hurry does: drags over the views, changes the window's size, edits.
class User
{
public:
    explicit User(MainWindow& window) : m_cWindow(window) {}

    void act()
    {
        ++m_nAct;
        drag();
        if (m_nAct % 5 == 0)
            m_cWindow.resize(1900 - m_nAct % 40, 1060 - m_nAct % 24);
        if (auto* tabs = m_cWindow.findChild<QTabWidget*>(); tabs && tabs->count() > 0 && m_nAct % 15 == 0)
            tabs->setCurrentIndex(m_nAct / 15 % tabs->count());
        if (auto* edit = m_cWindow.findChild<QLineEdit*>())
            edit->setText(QString::number(m_nAct));
    }

private:
    void drag()
    {
        ViewForm* view = ViewForm::s_apcViewForms[static_cast<std::size_t>(m_nAct / 40 % ViewForm::ViewNum)];
        const int place = m_nAct % 40;
        const QPointF at(40 + 8 * place, 30 + 5 * place);
        const QEvent::Type type = place == 0    ? QEvent::MouseButtonPress
                                  : place == 39 ? QEvent::MouseButtonRelease
                                                : QEvent::MouseMove;
        QMouseEvent event(type, at, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(view, &event);
    }

    MainWindow& m_cWindow;
    int m_nAct = 0;
};

double millisecondsOf(clockid_t clock)
{
    timespec time{};
    clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/**
 * Knocks at the window's event loop every millisecond, from a thread of its own, and notes how long each knock waits:
 * what a user meets who acts at a random moment. Beside that, how long the window's thread itself worked meanwhile,
 * which other programs do not change.
 */
class Knocker : public QObject
{
public:
    explicit Knocker()
    {
        pthread_getcpuclockid(pthread_self(), &m_nWindowClock);
        m_cThread = std::thread([this] {
            while (!m_bStop) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
                QCoreApplication::postEvent(this,
                                            new Knock(millisecondsOf(CLOCK_MONOTONIC), millisecondsOf(m_nWindowClock)));
            }
        });
    }
    ~Knocker() override
    {
        m_bStop = true;
        m_cThread.join();
    }
    bool event(QEvent* event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        const auto* knock = static_cast<const Knock*>(event);
        m_vecWaited.push_back(millisecondsOf(CLOCK_MONOTONIC) - knock->m_fTime);
        m_vecWorked.push_back(millisecondsOf(m_nWindowClock) - knock->m_fWindowTime);
        return true;
    }
    std::vector<double> sortedWaits() const { return sorted(m_vecWaited); }
    std::vector<double> sortedWork() const { return sorted(m_vecWorked); }

private:
    struct Knock : QEvent
    {
        Knock(double time, double windowTime) : QEvent(User), m_fTime(time), m_fWindowTime(windowTime) {}
        double m_fTime;
        double m_fWindowTime;
    };
    static std::vector<double> sorted(std::vector<double> values)
    {
        std::sort(values.begin(), values.end());
        return values;
    }

    std::vector<double> m_vecWaited;  ///< Milliseconds.
    std::vector<double> m_vecWorked;
    clockid_t m_nWindowClock{};
    std::atomic<bool> m_bStop{false};
    std::thread m_cThread;
};

double percentile(const std::vector<double>& sorted, double share)
{
    return sorted[static_cast<std::size_t>(share * static_cast<double>(sorted.size() - 1))];
}

long long passesSoFar()
{
    long long passes = 0;
    for (int id = 0; id < DrawingTasks; ++id)
        passes += TaskMgr::getInstance()->getTask(id)->getPassNum();
    return passes;
}

}  // namespace

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();
    QApplication application(argc, argv);
    const QTemporaryDir folder;
    MainWindow window;
    window.resize(1900, 1060);
    window.show();
    addTasks(folder.path());

    User user(window);
    QTimer acting;
    QObject::connect(&acting, &QTimer::timeout, [&user] { user.act(); });
    acting.start(UserPeriodMs);
    window.findChild<QPushButton*>(QStringLiteral("btnStartAll"))->click();
    std::unique_ptr<Knocker> knocker;
    long long passes = 0;
    QTimer::singleShot(WarmUpMs, &window, [&] {
        passes = -passesSoFar();
        knocker = std::make_unique<Knocker>();
    });
    QTimer::singleShot(WarmUpMs + MeasuredMs, &application, &QApplication::quit);
    QApplication::exec();
    passes += passesSoFar();
    const std::vector<double> waits = knocker->sortedWaits();
    const std::vector<double> work = knocker->sortedWork();
    knocker.reset();
    acting.stop();
    window.findChild<QPushButton*>(QStringLiteral("btnStopAll"))->click();

    if (waits.empty() || passes <= 0) {
        std::fprintf(stderr, "The window never answered or no task made a pass.\n");
        return 1;
    }
    std::printf("passes %lld\nmedian_ms %.2f\np99_ms %.2f\nlongest_ms %.2f\nwork_p99_ms %.2f\nwork_longest_ms %.2f\n",
                passes, percentile(waits, 0.5), percentile(waits, 0.99), waits.back(), percentile(work, 0.99),
                work.back());
    return 0;
}

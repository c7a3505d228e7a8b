#include <QWidget>
#include <QtTest>

#include <climits>
#include <thread>
#include <vector>

static char* volatile s_pchLast = nullptr;  ///< Only what was allocated last stays within reach.

/// Not in a namespace without a name, or a report would leave its own name out.
class LeakingWidget : public QWidget
{
public:
    void paintEvent(QPaintEvent*) override
    {
        for (int i = 0; i < 100; ++i)
            s_pchLast = new char[1000];
    }
};

/// Deliberate faults, one a function: each has to end the program with the report of the sanitizer that is built in.
class SanitizerControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void heapOverflowOfOneByteIsReported();
    void leakIsReported();
    void leakInAPaintEventIsReported();
    void signedOverflowIsReported();
    void raceWithinATestFunctionIsReported();

private:
    static inline volatile int s_nShared = 0;
};

void SanitizerControl::heapOverflowOfOneByteIsReported()
{
    const volatile std::size_t size = 13;  // not a multiple of what the allocator rounds up to
    const std::vector<char> bytes(size);
    const volatile char* const behind = bytes.data() + size;

    static_cast<void>(*behind);
}

void SanitizerControl::leakIsReported()
{
    for (int i = 0; i < 100; ++i)
        s_pchLast = new char[1000];
}

void SanitizerControl::leakInAPaintEventIsReported()
{
    LeakingWidget widget;
    widget.show();

    QTRY_VERIFY(s_pchLast != nullptr);
}

void SanitizerControl::signedOverflowIsReported()
{
    volatile int number = INT_MAX;

    number = number + 1;
}

void SanitizerControl::raceWithinATestFunctionIsReported()
{
    std::thread other([] { s_nShared = s_nShared + 1; });
    s_nShared = s_nShared + 1;
    other.join();
}

QTEST_MAIN(SanitizerControl)
#include "sanitizerControl.moc"

#include "outputLine.h"
#include "windowMessages.h"

#include <QLabel>
#include <QTimer>
#include <QtTest>

#include <memory>
#include <thread>

namespace {

/// Counts how often a label gets a text, by the tip that is set with it, and how often the program's pauses end.
class Counter : public QObject
{
public:
    Counter() { qApp->installEventFilter(this); }
    bool eventFilter(QObject* object, QEvent* event) override
    {
        m_nTexts += event->type() == QEvent::ToolTipChange;
        m_nPauses += event->type() == QEvent::Timer && qobject_cast<QTimer*>(object) != nullptr;
        return false;
    }
    int m_nTexts = 0;
    int m_nPauses = 0;
};

void printInThread(const QString& message)
{
    std::thread([message] { OutputLine::print(message); }).join();
}

}  // namespace

/// The output line alone, with a label of the test's own.
class TestOutputText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void longTextEndsInDots();
    void textOfManyLinesEndsInDotsBehindTheLastThatIsShown();
    void textOfTheWindowsThreadIsShownOnce();
    void clearedTextDoesNotComeBack();
    void replacedLineTakesNothingFromTheNewOne();
    void labelMayGoFirst();
    void nothingRunsOnceAllIsShown();
};

void TestOutputText::longTextEndsInDots()
{
    QLabel label;
    const OutputLine line(&label);
    const QString longest(65536, QLatin1Char('x'));
    OutputLine::print(longest);
    QCOMPARE(label.text(), longest);
    OutputLine::print(longest + QLatin1Char('y'));
    QCOMPARE(label.text(), longest + QChar(0x2026));

    printInThread(longest);
    QTRY_COMPARE(label.text(), longest);
    printInThread(longest + QStringLiteral("yz"));
    QTRY_COMPARE(label.text(), longest + QChar(0x2026));
}

void TestOutputText::textOfManyLinesEndsInDotsBehindTheLastThatIsShown()
{
    const QString dots(QChar(0x2026));
    QCOMPARE(WindowMessages::readable("a\nb\nc", 100, 2), "a\nb" + dots);
    QCOMPARE(WindowMessages::readable("a\nb", 100, 2), QString("a\nb"));
    QCOMPARE(WindowMessages::readable("\nb\nc", 100, 2), "\nb" + dots);  // the first line is empty
    QCOMPARE(WindowMessages::readable("a\nbcd\ne", 4, 2), "a\nbc" + dots);
}

void TestOutputText::textOfTheWindowsThreadIsShownOnce()
{
    QLabel label;
    const OutputLine line(&label);
    const Counter counter;
    OutputLine::print(QStringLiteral("one"));
    QCOMPARE(label.text(), QStringLiteral("one"));
    QTest::qWait(50);
    QCOMPARE(counter.m_nTexts, 1);
}

void TestOutputText::clearedTextDoesNotComeBack()
{
    QLabel label;
    OutputLine line(&label);
    printInThread(QStringLiteral("old"));
    line.show(QString());
    QTest::qWait(50);
    QCOMPARE(label.text(), QString());
}

void TestOutputText::replacedLineTakesNothingFromTheNewOne()
{
    QLabel oldLabel;
    QLabel newLabel;
    const OutputLine oldLine(&oldLabel);
    printInThread(QStringLiteral("old"));
    const OutputLine newLine(&newLabel);
    printInThread(QStringLiteral("new"));
    QTRY_COMPARE(newLabel.text(), QStringLiteral("new"));
    QCOMPARE(oldLabel.text(), QString());
}

void TestOutputText::labelMayGoFirst()
{
    auto label = std::make_unique<QLabel>();
    OutputLine line(label.get());
    label.reset();
    line.show(QStringLiteral("text"));
    printInThread(QStringLiteral("text"));
    QTest::qWait(50);
}

void TestOutputText::nothingRunsOnceAllIsShown()
{
    QLabel label;
    const OutputLine line(&label);
    printInThread(QStringLiteral("text"));
    QTRY_COMPARE(label.text(), QStringLiteral("text"));
    QVERIFY(QTest::qWaitFor(
        [] {
            const Counter counter;
            QTest::qWait(60);
            return counter.m_nPauses == 0;
        },
        30000));
}

QTEST_MAIN(TestOutputText)
#include "testOutputText.moc"

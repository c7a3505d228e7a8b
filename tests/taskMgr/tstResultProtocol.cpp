#include "taskMgr/resultCommand.h"
#include "taskMgr/taskMgr.h"
#include "taskTestSupport.h"

#include <QRegularExpression>
#include <QtTest>

class tstResultProtocol : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanupTestCase();

    void commandsAreCutOutOfAResult_data();
    void commandsAreCutOutOfAResult();
    void skipMovesOn_data();
    void skipMovesOn();
    void skipOfZeroRepeatsTheStep();
    void hugeSkipsNeverOverflow();
    void timeOfAStepThatSkipsFarIsShownNowhere();
    void printSendsItsTextAndSucceeds();
    void stopSendsItsTextAndEndsTheTaskWithoutAMessage();
    void textBesideCommandsIsAnError();
    void shortResultIsNeverSearchedForCommands();
    void unknownCommandEndsTheReading();
    void commandsAreReadInOrder();
    void noCallBackIsNoHarm();
    void stepErrorNamesTheAlgorithmAndGoesToTheDebugLog();
    void missingAlgorithmEndsThePassWithoutABlank();
    void stepWithoutAnIdentifierIsMissing();
    void failureOfASingleRunIsReportedOnce();
    void messageStaysWhereAResultIsEmpty();
    void endStepsObeyPrintAlone_data();
    void endStepsObeyPrintAlone();
    void missingEndStepEndsTheEnd();
};

void tstResultProtocol::initTestCase()
{
    Probes::install();
    TaskMgr::getInstance();
    makeTask({});  // loads the source library
}

void tstResultProtocol::init()
{
    Probes::reset();
    Reports::clear();
}

void tstResultProtocol::cleanupTestCase()
{
    TaskMgr::deleteThis();
}

void tstResultProtocol::commandsAreCutOutOfAResult_data()
{
    using Kind = ResultCommand::Kind;
    QTest::addColumn<QString>("result");
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("skip");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("left");
    const auto row = [](const char* result, Kind kind, int skip, const char* text, const char* left) {
        QTest::newRow(result) << result << static_cast<int>(kind) << skip << text << left;
    };

    row("<CMD>skip:3</CMD>", Kind::Skip, 3, "", "");
    row("<CMD>skip:-2</CMD>", Kind::Skip, -2, "", "");
    row("<CMD>skip:+3</CMD>", Kind::Skip, 3, "", "");
    row("<CMD>skip:2147483647</CMD>", Kind::Skip, 2147483647, "", "");
    row("<CMD>skip:2147483648</CMD>", Kind::Skip, 1, "", "");
    row("<CMD>skip:abc</CMD>", Kind::Skip, 1, "", "");
    row("<CMD>skip:</CMD>", Kind::Skip, 1, "", "");
    row("<CMD>skip:0x2</CMD>", Kind::Skip, 1, "", "");
    row("<cmd>stop:done</Cmd>", Kind::Stop, 1, "done", "");
    row("<CMD>stop:</CMD>x", Kind::Stop, 1, "", "x");
    row("a<CMD>print:hello: you</CMD>b", Kind::Print, 1, "hello: you", "ab");
    row("<CMD>print:a</CMD><CMD>print:b</CMD>", Kind::Print, 1, "a", "<CMD>print:b</CMD>");
    row("<CMD>Print:a</CMD>x", Kind::None, 1, "", "x");
    row("<CMD> print:a</CMD>", Kind::None, 1, "", "");
    row("<CMD></CMD>", Kind::None, 1, "", "");
    row("<CMD>print:a", Kind::None, 1, "", "<CMD>print:a");
    row("", Kind::None, 1, "", "");
}

void tstResultProtocol::commandsAreCutOutOfAResult()
{
    QFETCH(QString, result);
    QFETCH(int, kind);
    QFETCH(int, skip);
    QFETCH(QString, text);
    QFETCH(QString, left);

    const ResultCommand command = ResultCommand::takeFrom(result);

    QCOMPARE(static_cast<int>(command.m_eKind), kind);
    QCOMPARE(command.m_nSkip, skip);
    QCOMPARE(command.m_strText, text);
    QCOMPARE(result, left);
}

// Step b gives its command once; where the pass comes back to it, its turns are used up.
void tstResultProtocol::skipMovesOn_data()
{
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("trace");

    QTest::newRow("three on") << "<CMD>skip:3</CMD>"
                              << "a,b,e,f";
    QTest::newRow("one on changes nothing") << "<CMD>skip:1</CMD>"
                                            << "a,b,c,d,e,f";
    QTest::newRow("no number changes nothing") << "<CMD>skip:abc</CMD>"
                                               << "a,b,c,d,e,f";
    QTest::newRow("back") << "<CMD>skip:-1</CMD>"
                          << "a,b,a,c,d,e,f";
    QTest::newRow("back in front of the first") << "<CMD>skip:-50</CMD>"
                                                << "a,b,a,c,d,e,f";
    QTest::newRow("behind the last") << "<CMD>skip:50</CMD>"
                                     << "a,b";
    QTest::newRow("two add up") << "<CMD>skip:2</CMD><CMD>skip:2</CMD>"
                                << "a,b,e,f";
    QTest::newRow("there and back") << "<CMD>skip:4</CMD><CMD>skip:-2</CMD>"
                                    << "a,b,c,d,e,f";
}

void tstResultProtocol::skipMovesOn()
{
    QFETCH(QString, result);
    QFETCH(QString, trace);
    QList<TaskItem> items = steps("abcdef");
    items[1] = probeStep(QStringLiteral("b"), result, 1);
    auto task = makeTask(items);

    QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), trace);
}

void tstResultProtocol::skipOfZeroRepeatsTheStep()
{
    auto task = makeTask({step("a", "<CMD>skip:0</CMD>", 3), step("b")});

    QVERIFY(pass(*task));

    QCOMPARE(Probes::trace(), QStringLiteral("a,a,a,b"));
}

void tstResultProtocol::hugeSkipsNeverOverflow()
{
    for (const QString& number : {QStringLiteral("2147483647"), QStringLiteral("-2147483648")}) {
        Probes::reset();
        const QString result = (QStringLiteral("<CMD>skip:") + number + QStringLiteral("</CMD>")).repeated(3000);
        auto task = makeTask({step("a"), probeStep(QStringLiteral("b"), result, 1), step("c")});
        QString message;

        QVERIFY(task->runOnce(message, true, -1, -1));

        QCOMPARE(Probes::trace(),
                 number.startsWith(QLatin1Char('-')) ? QStringLiteral("a,b,a,c") : QStringLiteral("a,b"));
    }
}

void tstResultProtocol::timeOfAStepThatSkipsFarIsShownNowhere()
{
    // Three skips that lead from the second step to place 2^32 + 1: row 1, for whoever counts with 32 bits.
    const QString result = QStringLiteral("<CMD>skip:2147483647</CMD><CMD>skip:2147483647</CMD><CMD>skip:5</CMD>");
    auto task = makeTask({step("a"), probeStep(QStringLiteral("b"), result), step("c")});
    const Tab tab(*task);
    QString message;

    QVERIFY(task->runOnce(message, true, -1, -1));

    QCOMPARE(Probes::trace(), QStringLiteral("a,b"));
    QVERIFY(!tab.cell(0, 2).isEmpty());
    QCOMPARE(tab.cell(1, 2), QString());
    QCOMPARE(tab.cell(2, 2), QString());
}

void tstResultProtocol::printSendsItsTextAndSucceeds()
{
    auto task = makeTask({step("a", "<CMD>print:hello</CMD>"), step("b")});
    QString message;

    QVERIFY(pass(*task, message));

    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("hello")});
    QCOMPARE(message, QString());
    QCOMPARE(Probes::trace(), QStringLiteral("a,b"));
}

void tstResultProtocol::stopSendsItsTextAndEndsTheTaskWithoutAMessage()
{
    auto task = makeTask({step("a", "<CMD>stop:done</CMD>and more"), step("b")});
    QString message = QStringLiteral("old");

    QVERIFY(!pass(*task, message));

    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("done")});
    QCOMPARE(message, QString());
    QCOMPARE(Probes::trace(), QStringLiteral("a"));
}

void tstResultProtocol::textBesideCommandsIsAnError()
{
    auto task = makeTask({step("a", "<CMD>print:a</CMD>oops"), step("b")});
    QString message;
    QTest::ignoreMessage(QtWarningMsg, "算法\"Probe\"出错, 错误信息:oops");

    QVERIFY(!pass(*task, message));

    QCOMPARE(Reports::prints(), QStringList{QStringLiteral("a")});
    QCOMPARE(message, QStringLiteral("算法\"Probe\"出错, 错误信息:oops"));
    QCOMPARE(Probes::trace(), QStringLiteral("a"));
    QCOMPARE(task->getTaskItem().first().m_nExeTimes, 0);
}

void tstResultProtocol::shortResultIsNeverSearchedForCommands()
{
    auto task = makeTask({step("a", "fail")});
    QString message;
    QTest::ignoreMessage(QtWarningMsg, "算法\"Probe\"出错, 错误信息:fail");

    QVERIFY(!pass(*task, message));

    QCOMPARE(message, QStringLiteral("算法\"Probe\"出错, 错误信息:fail"));
}

void tstResultProtocol::unknownCommandEndsTheReading()
{
    auto task = makeTask({step("a", "<CMD>jump:1</CMD><CMD>print:a</CMD>")});
    QString message;
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("print:a")));

    QVERIFY(!pass(*task, message));

    QCOMPARE(message, QStringLiteral("算法\"Probe\"出错, 错误信息:<CMD>print:a</CMD>"));
    QCOMPARE(Reports::prints(), QStringList());
}

void tstResultProtocol::commandsAreReadInOrder()
{
    auto task = makeTask({step("a", "<CMD>print:1</CMD><CMD>skip:2</CMD><CMD>print:2</CMD>"), step("b"), step("c")});

    QVERIFY(pass(*task));

    QCOMPARE(Reports::prints(), QStringList({QStringLiteral("1"), QStringLiteral("2")}));
    QCOMPARE(Probes::trace(), QStringLiteral("a,c"));
}

void tstResultProtocol::noCallBackIsNoHarm()
{
    auto task = makeTask({step("a", "<CMD>print:x</CMD>"), missingStep()});
    task->setPrintCallBack(nullptr);
    task->setMssageCallBack(nullptr);

    task->runTaskOnce();
    task->threadFinishedArrived(QStringLiteral("text"), false);

    QCOMPARE(Probes::trace(), QStringLiteral("a"));
}

void tstResultProtocol::stepErrorNamesTheAlgorithmAndGoesToTheDebugLog()
{
    TaskItem named = step("a", "something is wrong");
    named.m_strArithmName = QStringLiteral("找线");
    auto task = makeTask({named});
    QString message;
    QTest::ignoreMessage(QtWarningMsg, "算法\"找线\"出错, 错误信息:something is wrong");

    QVERIFY(!pass(*task, message));

    QCOMPARE(message, QStringLiteral("算法\"找线\"出错, 错误信息:something is wrong"));
}

void tstResultProtocol::missingAlgorithmEndsThePassWithoutABlank()
{
    auto task = makeTask({step("a"), missingStep(), step("b")});
    QString message;

    QVERIFY(!pass(*task, message));
    QVERIFY(!pass(*task, message));  // looked up again

    QCOMPARE(message, QStringLiteral("Arithm\"缺\"is not existed."));
    QCOMPARE(Probes::trace(), QStringLiteral("a,a"));
}

void tstResultProtocol::stepWithoutAnIdentifierIsMissing()
{
    TaskItem nameless = missingStep();
    nameless.m_strArithmID.clear();
    nameless.m_strOption.clear();
    auto task = makeTask({nameless});
    QString message;

    QVERIFY(!pass(*task, message));

    QCOMPARE(message, QStringLiteral("Arithm\"缺\"is not existed."));
}

void tstResultProtocol::failureOfASingleRunIsReportedOnce()
{
    auto task = makeTask({missingStep(), step("end", "", 999999999)});

    task->runTaskOnce();

    QCOMPARE(Reports::messages(), QStringList{QStringLiteral("Arithm\"缺\"is not existed.")});
    QCOMPARE(Probes::trace(), QStringLiteral("end"));
}

void tstResultProtocol::messageStaysWhereAResultIsEmpty()
{
    auto silent = makeTask({step("a")});
    auto printing = makeTask({step("b", "<CMD>print:</CMD>")});
    QString kept = QStringLiteral("old");
    QString cleared = QStringLiteral("old");

    QVERIFY(pass(*silent, kept));
    QVERIFY(pass(*printing, cleared));

    QCOMPARE(kept, QStringLiteral("old"));
    QCOMPARE(cleared, QString());
}

void tstResultProtocol::endStepsObeyPrintAlone_data()
{
    QTest::addColumn<QString>("result");
    QTest::addColumn<QStringList>("prints");
    QTest::addColumn<QString>("message");
    const QString words = QStringLiteral("Arithm \"Probe\" error, message:");

    QTest::newRow("print") << "<CMD>print:a</CMD><CMD>print:b</CMD>" << QStringList({"a", "b"}) << QString();
    QTest::newRow("print and text") << "<CMD>print:a</CMD>oops" << QStringList("a") << words + "oops";
    QTest::newRow("skip ends the reading")
        << "<CMD>skip:0</CMD><CMD>print:a</CMD>" << QStringList() << words + "<CMD>print:a</CMD>";
    QTest::newRow("stop ends the reading") << "<CMD>stop:x</CMD>" << QStringList() << QString();
    QTest::newRow("short text") << "fail" << QStringList() << words + "fail";
}

void tstResultProtocol::endStepsObeyPrintAlone()
{
    QFETCH(QString, result);
    QFETCH(QStringList, prints);
    QFETCH(QString, message);
    auto task = makeTask({probeStep(QStringLiteral("end"), result, 999999999)});

    task->runTaskOnce();

    QCOMPARE(Reports::prints(), prints);
    QCOMPARE(Reports::messages(), message.isEmpty() ? QStringList() : QStringList(message));
}

void tstResultProtocol::missingEndStepEndsTheEnd()
{
    auto task = makeTask({missingStep(999999999), step("end", "", 999999999)});

    task->runTaskOnce();

    QCOMPARE(Reports::messages(), QStringList{QStringLiteral("Arithm\"缺\"is not existed.")});
    QCOMPARE(Probes::trace(), QString());
}

QTEST_MAIN(tstResultProtocol)
#include "tstResultProtocol.moc"

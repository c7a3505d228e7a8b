#include "globalFunction.h"

#include <QtTest>

class tstMarkup : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bodyIsFoundBetweenFirstMarkers_data();
    void bodyIsFoundBetweenFirstMarkers();
    void getBodyLeavesTheTextAlone();
    void removalCutsTheElementAndNothingAroundIt_data();
    void removalCutsTheElementAndNothingAroundIt();
    void repeatedRemovalConsumesElementsInOrder();
    void strayClosingMarkerKeepsFailingOnTheSameText();
    void trimRemovesSpacesAndLineEndsOnly_data();
    void trimRemovesSpacesAndLineEndsOnly();
};

void tstMarkup::bodyIsFoundBetweenFirstMarkers_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("open");
    QTest::addColumn<QString>("close");
    QTest::addColumn<QString>("body");
    const auto row = [](const char* name, const char* text, const char* body, const char* open = "<A>",
                        const char* close = "</A>") { QTest::newRow(name) << text << open << close << body; };

    row("plain", "<A>value</A>", "value");
    row("case does not matter", "<NAME>x</name>", "x", "<Name>", "</Name>");
    row("closing marker in front hides the element", "</A><A>x</A>", "");
    row("no nesting", "<A><A>x</A></A>", "<A>x");
    row("first of two", "<A>1</A><A>2</A>", "1");
    row("no opening marker", "x</A>", "");
    row("no closing marker", "<A>x", "");
    row("empty element", "<A></A>", "");
    row("empty text", "", "");
    row("text around", "ab<A>x</A>cd", "x");
    row("other brackets", "<=TaskInfo=>t</=TaskInfo=>", "t", "<=TaskInfo=>", "</=TaskInfo=>");
    row("line feeds stay in the body", "<A>\nx\r\n</A>", "\nx\r\n");
    row("chinese body", "<A>算法</A>", "算法");
    row("similar marker is another one", "<AB>x</AB>", "");
    row("no marker to open with is found at the start", "ab</A>", "ab", "", "</A>");
    row("the same marker on both sides", "|x|", "", "|", "|");
}

void tstMarkup::bodyIsFoundBetweenFirstMarkers()
{
    QFETCH(QString, text);
    QFETCH(QString, open);
    QFETCH(QString, close);
    QFETCH(QString, body);

    QCOMPARE(GlobalFunction::getBody(text, open, close), body);

    QString working = text;
    QCOMPARE(GlobalFunction::getAndRemoveBody(working, open, close), body);
}

void tstMarkup::getBodyLeavesTheTextAlone()
{
    const QString text = QStringLiteral("a<T>1</T>b");

    GlobalFunction::getBody(text, QStringLiteral("<T>"), QStringLiteral("</T>"));

    QCOMPARE(text, QStringLiteral("a<T>1</T>b"));
}

void tstMarkup::removalCutsTheElementAndNothingAroundIt_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("left");

    QTest::newRow("in the middle") << "a<T>1</T>b"
                                   << "ab";
    QTest::newRow("line ends stay") << "a\n<T>1</T>\r\nb"
                                    << "a\n\r\nb";
    QTest::newRow("all of it") << "<T>1</T>"
                               << "";
    QTest::newRow("empty element goes too") << "a<T></T>b"
                                            << "ab";
    QTest::newRow("inner opening marker goes with the body") << "<T><T>x</T></T>"
                                                             << "</T>";
    QTest::newRow("no element") << "a<T>b"
                                << "a<T>b";
    QTest::newRow("closing marker in front") << "</T><T>x</T>"
                                             << "</T><T>x</T>";
    QTest::newRow("any case") << "a<t>1</t>b"
                              << "ab";
}

void tstMarkup::removalCutsTheElementAndNothingAroundIt()
{
    QFETCH(QString, text);
    QFETCH(QString, left);

    GlobalFunction::getAndRemoveBody(text, QStringLiteral("<T>"), QStringLiteral("</T>"));

    QCOMPARE(text, left);
}

void tstMarkup::repeatedRemovalConsumesElementsInOrder()
{
    QString text = QStringLiteral("a<T>1</T>b<T>2</T>");
    const auto take = [&text] {
        return GlobalFunction::getAndRemoveBody(text, QStringLiteral("<T>"), QStringLiteral("</T>"));
    };

    QCOMPARE(take(), QStringLiteral("1"));
    QCOMPARE(text, QStringLiteral("ab<T>2</T>"));
    QCOMPARE(take(), QStringLiteral("2"));
    QCOMPARE(text, QStringLiteral("ab"));
    QCOMPARE(take(), QString());
    QCOMPARE(text, QStringLiteral("ab"));
}

void tstMarkup::strayClosingMarkerKeepsFailingOnTheSameText()
{
    QString text = QStringLiteral("</A><A>x</A>");

    for (int attempt = 0; attempt < 3; ++attempt)
        QCOMPARE(GlobalFunction::getAndRemoveBody(text, QStringLiteral("<A>"), QStringLiteral("</A>")), QString());

    QCOMPARE(text, QStringLiteral("</A><A>x</A>"));
}

void tstMarkup::trimRemovesSpacesAndLineEndsOnly_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("trimmed");

    QTest::newRow("tabs stay on purpose") << " \r\n\tvalue\t \n"
                                          << "\tvalue\t";
    QTest::newRow("blanks only") << " \r\n \n\r "
                                 << "";
    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("nothing to do") << "a b"
                                   << "a b";
    QTest::newRow("inner blanks stay") << "\na \n b\n"
                                       << "a \n b";
    QTest::newRow("other white space stays") << QStringLiteral("\u00a0\v\f") << QStringLiteral("\u00a0\v\f");
    QTest::newRow("one character") << "\nx"
                                   << "x";
    QTest::newRow("a tab stops the trimming") << " \t "
                                              << "\t";
}

void tstMarkup::trimRemovesSpacesAndLineEndsOnly()
{
    QFETCH(QString, text);
    QFETCH(QString, trimmed);

    GlobalFunction::trimString(text);

    QCOMPARE(text, trimmed);
}

QTEST_APPLESS_MAIN(tstMarkup)
#include "tstMarkup.moc"

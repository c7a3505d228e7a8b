#include "optionText.h"

#include <QtTest>

class tstOptionText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textOfAnAbsentElementIsEmpty();
    void textIsFoundInAnyCaseAndOrder();
    void tagThatEndsLikeAnotherIsAnother();
    void numbersAreReadInBaseTen_data();
    void numbersAreReadInBaseTen();
    void nestedReaderSeesOnlyTheBody();
    void firstElementCounts();
    void writerPutsElementsOneAfterTheOther();
    void whatIsWrittenIsRead();
};

void tstOptionText::textOfAnAbsentElementIsEmpty()
{
    const OptionReader reader(QStringLiteral("<A>x</A>"));

    QCOMPARE(reader.text("B"), QString());
    QVERIFY(!reader.isEmpty());
    QVERIFY(OptionReader(QString()).isEmpty());
    QVERIFY(reader.nested("B").isEmpty());
}

void tstOptionText::textIsFoundInAnyCaseAndOrder()
{
    const OptionReader reader(QStringLiteral("<second>2</SECOND>\n<First>1</First>"));

    QCOMPARE(reader.text("First"), QStringLiteral("1"));
    QCOMPARE(reader.text("Second"), QStringLiteral("2"));
}

void tstOptionText::tagThatEndsLikeAnotherIsAnother()
{
    const OptionReader reader(QStringLiteral("<DataID>1</DataID><ID>2</ID>"));

    QCOMPARE(reader.text("ID"), QStringLiteral("2"));
    QCOMPARE(reader.text("DataID"), QStringLiteral("1"));
}

void tstOptionText::numbersAreReadInBaseTen_data()
{
    QTest::addColumn<QString>("body");
    QTest::addColumn<bool>("valid");
    QTest::addColumn<int>("value");

    QTest::newRow("plain") << "42" << true << 42;
    QTest::newRow("negative colour") << "-65536" << true << -65536;
    QTest::newRow("smallest") << "-2147483648" << true << std::numeric_limits<int>::min();
    QTest::newRow("largest") << "2147483647" << true << 2147483647;
    QTest::newRow("leading zeros are no octal number") << "010" << true << 10;
    QTest::newRow("zero") << "0" << true << 0;
    QTest::newRow("hexadecimal") << "0x10" << false << 0;
    QTest::newRow("letters") << "abc" << false << 0;
    QTest::newRow("fraction") << "1.5" << false << 0;
    QTest::newRow("too large") << "2147483648" << false << 0;
    QTest::newRow("empty") << "" << false << 0;
}

void tstOptionText::numbersAreReadInBaseTen()
{
    QFETCH(QString, body);
    QFETCH(bool, valid);
    QFETCH(int, value);
    const OptionReader reader(QStringLiteral("<N>") + body + QStringLiteral("</N>"));
    int kept = 77;

    reader.numberInto(kept, "N");

    QCOMPARE(reader.numberOrZero("N"), value);
    QCOMPARE(reader.number("N").has_value(), valid);
    QCOMPARE(reader.number("N").value_or(-1), valid ? value : -1);
    QCOMPARE(kept, valid ? value : 77);
    QVERIFY(!reader.number("Absent").has_value());
    QCOMPARE(reader.numberOrZero("Absent"), 0);
}

void tstOptionText::nestedReaderSeesOnlyTheBody()
{
    const OptionReader reader(QStringLiteral("<Val>1</Val><Config><Val>2</Val></Config>"));

    QCOMPARE(reader.nested("Config").numberOrZero("Val"), 2);
    QCOMPARE(reader.numberOrZero("Val"), 1);
}

void tstOptionText::firstElementCounts()
{
    QCOMPARE(OptionReader(QStringLiteral("<A>1</A><A>2</A>")).numberOrZero("A"), 1);
}

void tstOptionText::writerPutsElementsOneAfterTheOther()
{
    OptionWriter writer;

    writer.number("DataType", -3).text("Name", QStringLiteral("图像")).text("Empty", QString());

    QCOMPARE(writer.result(), QStringLiteral("<DataType>-3</DataType><Name>图像</Name><Empty></Empty>"));
    QCOMPARE(OptionWriter().result(), QString());
}

void tstOptionText::whatIsWrittenIsRead()
{
    OptionWriter inner;
    inner.number("Size", 5);
    OptionWriter writer;
    writer.text("Config", inner.result()).number("Color", -1);

    const OptionReader reader(writer.result());

    QCOMPARE(reader.nested("Config").numberOrZero("Size"), 5);
    QCOMPARE(reader.numberOrZero("Color"), -1);
}

QTEST_APPLESS_MAIN(tstOptionText)
#include "tstOptionText.moc"

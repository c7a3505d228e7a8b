#include "globalFunction.h"
#include "taskMgr/projectText.h"

#include <QtTest>

#include <random>

namespace {

/// Random texts out of fragments; the same in every run.
class Texts
{
public:
    explicit Texts(const QStringList& fragments) : m_lstFragments(fragments) {}

    QString next(int fragments)
    {
        QString text;
        for (int i = 0; i < fragments; ++i)
            text += m_lstFragments.at(static_cast<int>(m_cRandom() % static_cast<unsigned>(m_lstFragments.size())));
        return text;
    }

private:
    QStringList m_lstFragments;
    std::mt19937 m_cRandom{12345};
};

/// Empty lines removed as one would do it by hand.
QString plainlyCollapsed(QString text)
{
    const QList<QPair<QString, QString>> pairs = {{QStringLiteral("\r\r"), QStringLiteral("\r")},
                                                  {QStringLiteral("\n\n"), QStringLiteral("\n")},
                                                  {QStringLiteral("\r\n\r\n"), QStringLiteral("\r\n")}};
    bool found = true;
    while (found) {
        found = false;
        for (const auto& pair : pairs) {
            while (text.contains(pair.first)) {
                text.replace(pair.first, pair.second);
                found = true;
            }
        }
    }
    return text;
}

QList<int> namedIDs(const QString& text)
{
    QList<int> ids;
    ProjectText::forEachNamedID(text, [&ids](int id) { ids += id; });
    return ids;
}

/// The definition, one bracket at a time: the number in each element whose name ends in "id" in any case.
QList<int> idsBehindEachBracket(const QString& text)
{
    const auto endOfName = [&text](int index) {
        while (index < text.length() && text.at(index) != '<' && text.at(index) != '>')
            ++index;
        return index;
    };
    QList<int> ids;
    for (int open = text.indexOf('<'); open >= 0; open = text.indexOf('<', open + 1)) {
        const int nameEnd = endOfName(open + 1);
        const QString name = text.mid(open + 1, nameEnd - open - 1);
        const int bodyEnd = endOfName(nameEnd + 1);
        const QString closing = text.mid(bodyEnd, name.length() + 3);
        bool ok = false;
        const int id = text.mid(nameEnd + 1, bodyEnd - nameEnd - 1).trimmed().toInt(&ok, 10);
        if (nameEnd < text.length() && text.at(nameEnd) == '>' && name.endsWith("id", Qt::CaseInsensitive) &&
            !name.startsWith('/') && closing.compare("</" + name + ">", Qt::CaseInsensitive) == 0 && ok)
            ids += id;
    }
    return ids;
}

}  // namespace

class tstElementReader : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readerGivesWhatRepeatedRemovalGives_data();
    void readerGivesWhatRepeatedRemovalGives();
    void readerSeesAMarkerThatFormsAtASeam();
    void emptyLinesCollapse_data();
    void emptyLinesCollapse();
    void emptyLinesCollapseAsByRepeatedReplacement();
    void textEndsAtTheFirstNul();
    void namedIdentifiersAreFound_data();
    void namedIdentifiersAreFound();
    void namedIdentifiersAreThoseBehindEachBracket();
};

void tstElementReader::readerGivesWhatRepeatedRemovalGives_data()
{
    QTest::addColumn<QString>("open");
    QTest::addColumn<QString>("close");
    QTest::addColumn<QStringList>("fragments");

    QTest::newRow("steps") << "<-TaskItem->"
                           << "</-TaskItem->" << QStringList{"<-TaskItem->", "</-TaskItem->",
                                                             "<-taskITEM->", "</-TASKitem->",
                                                             "<-Task",       "Item->",
                                                             "</-",          "<-TaskItem",
                                                             "->",           "<",
                                                             "/-TaskItem->", "x",
                                                             "\n",           "yz"};
    QTest::newRow("short markers") << "<A>"
                                   << "</A>"
                                   << QStringList{"<A>", "</A>", "<a>", "</a>", "<", "A", ">", "/", "</", "A>", "x"};
    QTest::newRow("markers that overlap themselves") << "aba"
                                                     << "bab" << QStringList{"a", "b", "A", "B", "c"};
    QTest::newRow("one marker inside the other") << "ab"
                                                 << "xabx" << QStringList{"a", "b", "x", "ab", "X", "-"};
    QTest::newRow("one-character markers") << "<"
                                           << ">" << QStringList{"<", ">", "x", "yy"};
    QTest::newRow("the same marker") << "|"
                                     << "|" << QStringList{"|", "x"};
}

void tstElementReader::readerGivesWhatRepeatedRemovalGives()
{
    QFETCH(QString, open);
    QFETCH(QString, close);
    QFETCH(QStringList, fragments);
    Texts texts(fragments);

    for (int round = 0; round < 3000; ++round) {
        const QString text = texts.next(3 + round % 40);
        QString plain = text;
        ElementReader reader(text, open, close);
        for (int take = 0; take < 12; ++take) {
            const QString expected = GlobalFunction::getAndRemoveBody(plain, open, close);
            const QString body = reader.next().toString();
            if (body != expected || reader.remaining() != plain)
                QFAIL(qPrintable(QStringLiteral("take %1 of: %2").arg(take).arg(text)));
        }
    }
}

void tstElementReader::readerSeesAMarkerThatFormsAtASeam()
{
    // Cutting the first element out joins "<-Task" and "Item->" to an opening marker.
    const QString text = QStringLiteral("<-Task<-TaskItem->1</-TaskItem->Item->2</-TaskItem->");
    ElementReader reader(text, QStringLiteral("<-TaskItem->"), QStringLiteral("</-TaskItem->"));

    QCOMPARE(reader.next().toString(), QStringLiteral("1"));
    QCOMPARE(reader.next().toString(), QStringLiteral("2"));
    QCOMPARE(reader.next().toString(), QString());
    QCOMPARE(reader.remaining(), QString());
}

void tstElementReader::emptyLinesCollapse_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("collapsed");

    QTest::newRow("empty") << ""
                           << "";
    QTest::newRow("line feeds") << "a\n\n\nb\n"
                                << "a\nb\n";
    QTest::newRow("carriage returns") << "a\r\r\rb"
                                      << "a\rb";
    QTest::newRow("pairs") << "a\r\n\r\n\r\nb"
                           << "a\r\nb";
    QTest::newRow("a pair after a line feed") << "a\n\r\n\r\nb"
                                              << "a\n\r\nb";
    QTest::newRow("mixed") << "\r\r\n\n\r\n"
                           << "\r\n";
    QTest::newRow("trailing carriage return") << "\r\n\r\n\r"
                                              << "\r\n\r";
    QTest::newRow("blanks are no empty line") << "a\n \nb"
                                              << "a\n \nb";
}

void tstElementReader::emptyLinesCollapse()
{
    QFETCH(QString, text);
    QFETCH(QString, collapsed);

    QCOMPARE(ProjectText::collapseEmptyLines(text), collapsed);
}

void tstElementReader::emptyLinesCollapseAsByRepeatedReplacement()
{
    Texts texts({QStringLiteral("\r"), QStringLiteral("\n"), QStringLiteral("\r\n"), QStringLiteral("\r"),
                 QStringLiteral("\n"), QStringLiteral("x")});

    for (int round = 0; round < 5000; ++round) {
        const QString text = texts.next(round % 30);
        QCOMPARE(ProjectText::collapseEmptyLines(text), plainlyCollapsed(text));
    }
}

void tstElementReader::textEndsAtTheFirstNul()
{
    QCOMPARE(ProjectText::upToNul(QStringLiteral("ab")), QStringLiteral("ab"));
    QCOMPARE(ProjectText::upToNul(QStringLiteral("a") + QChar(0) + QStringLiteral("b") + QChar(0)),
             QStringLiteral("a"));
    QCOMPARE(ProjectText::upToNul(QChar(0) + QStringLiteral("b")), QString());
    QCOMPARE(ProjectText::upToNul(QString()), QString());
}

void tstElementReader::namedIdentifiersAreFound_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QList<int>>("ids");

    QTest::newRow("none") << "<Name>7</Name>" << QList<int>{};
    QTest::newRow("one") << "<DataID>7</DataID>" << QList<int>{7};
    QTest::newRow("any case") << "<outputid>7</OUTPUTID><OutId>8</outID>" << QList<int>{7, 8};
    QTest::newRow("the name may be ID alone") << "<ID>3</ID>" << QList<int>{3};
    QTest::newRow("blanks around") << "<DataID>\n 7 \r\n</DataID>" << QList<int>{7};
    QTest::newRow("nested") << "<Config><DataID>7</DataID></Config><DataID>9</DataID>" << QList<int>{7, 9};
    QTest::newRow("no number") << "<DataID>x</DataID><DataID></DataID><DataID>1.5</DataID>" << QList<int>{};
    QTest::newRow("negative") << "<DataID>-1</DataID>" << QList<int>{-1};
    QTest::newRow("too large") << "<DataID>99999999999</DataID>" << QList<int>{};
    QTest::newRow("never closed") << "<DataID>7" << QList<int>{};
    QTest::newRow("closed by another") << "<DataID>7</Data>" << QList<int>{};
    QTest::newRow("name does not end in it") << "<IDs>7</IDs>" << QList<int>{};
    QTest::newRow("brackets only") << "<<<>><DataID><DataID>7</DataID>" << QList<int>{7};
    QTest::newRow("cut off") << "<DataID" << QList<int>{};
}

void tstElementReader::namedIdentifiersAreFound()
{
    QFETCH(QString, text);
    QFETCH(QList<int>, ids);

    QCOMPARE(namedIDs(text), ids);
}

void tstElementReader::namedIdentifiersAreThoseBehindEachBracket()
{
    Texts texts({"<PicID>",
                 "</PicID>",
                 "<//PicID>",
                 "<picid>",
                 "</PICID>",
                 "<ID>",
                 "</Id>",
                 "<D>",
                 "</D>",
                 "<",
                 ">",
                 "/",
                 "id>",
                 "12",
                 " 7 ",
                 "-3",
                 "+4",
                 "0009",
                 "123456789",
                 "2147483647",
                 "2147483648",
                 "x",
                 QString::fromUtf8("\u0131D>"),
                 QString::fromUtf8("<\u0130d>"),
                 QString::fromUtf8("\u4e2d")});
    int found = 0;
    for (int round = 0; round < 20000; ++round) {
        const QString text = texts.next(2 + round % 30);
        const QList<int> expected = idsBehindEachBracket(text);
        const QList<int> ids = namedIDs(text);
        if (ids != expected)
            QFAIL(qPrintable(text));
        found += ids.size();
    }
    QVERIFY2(found > 100, qPrintable(QString::number(found)));
    QCOMPARE(namedIDs("</ID>5<//ID>"), QList<int>());
    QCOMPARE(namedIDs("<a/ID>5</a/ID>"), QList<int>{5});
}

QTEST_MAIN(tstElementReader)
#include "tstElementReader.moc"

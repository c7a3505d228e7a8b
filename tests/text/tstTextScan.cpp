#include "textScan.h"

#include <QtTest>

#include <random>

class tstTextScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pairIsFoundAtEveryPlaceOfEveryLength();
    void pairStandsNeitherInFrontNorAcrossTheEnd();
    void pairOfAlternativesIsFoundAsCharacterByCharacter();
    void oneCharacterIsFoundAtEveryPlaceOfEveryLength();
    void oneOfTwoIsFoundAsCharacterByCharacter();
    void charactersWithTheSameLowByteAreOthers();
    void markersAreFoundAsByQt_data();
    void markersAreFoundAsByQt();
    void foldedLettersCountAsInQt();
};

void tstTextScan::pairIsFoundAtEveryPlaceOfEveryLength()
{
    for (int length = 2; length < 40; ++length) {
        for (int place = 0; place + 1 < length; ++place) {
            QString text(length, QLatin1Char('.'));
            text[place] = QLatin1Char('<');
            text[place + 1] = QLatin1Char('-');
            for (int from = 0; from <= length; ++from)
                QCOMPARE(TextScan::indexOfPair(text, from, {u'<', u'<'}, {u'-', u'-'}), from <= place ? place : length);
        }
    }
}

void tstTextScan::pairStandsNeitherInFrontNorAcrossTheEnd()
{
    const QString text = QStringLiteral("<-........<-");

    QCOMPARE(TextScan::indexOfPair(QStringView(text).left(11), 1, {u'<', u'<'}, {u'-', u'-'}), 11);
    QCOMPARE(TextScan::indexOfPair(QStringView(), 0, {u'<', u'<'}, {u'-', u'-'}), 0);
    QCOMPARE(TextScan::indexOfPair(QStringView(text).left(1), 0, {u'<', u'<'}, {u'-', u'-'}), 1);
    for (int length = 1; length < 40; ++length) {
        const QString across = QString(length - 1, QLatin1Char('.')) + QStringLiteral("<-");
        QCOMPARE(TextScan::indexOfPair(QStringView(across).left(length), 0, {u'<', u'<'}, {u'-', u'-'}), length);
    }
}

void tstTextScan::pairOfAlternativesIsFoundAsCharacterByCharacter()
{
    std::mt19937 random(1);
    const QString letters = QStringLiteral("\r\nabcdefgh");
    for (int round = 0; round < 4000; ++round) {
        QString text;
        for (int i = 0; i < round % 90; ++i)
            text += letters.at(static_cast<int>(random() % 10));
        const int from = text.isEmpty() ? 0 : static_cast<int>(random() % static_cast<unsigned>(text.size()));
        QCOMPARE(TextScan::indexOfPair(text, from, {u'\r', u'\n'}, {u'\n', u'a'}),
                 TextScan::indexOfPairPlain(text, from, {u'\r', u'\n'}, {u'\n', u'a'}));
    }
}

void tstTextScan::oneCharacterIsFoundAtEveryPlaceOfEveryLength()
{
    for (int length = 0; length < 70; ++length) {
        for (int place = 0; place < length; ++place) {
            QString text(length, QLatin1Char('.'));
            text[place] = place % 2 ? QLatin1Char('<') : QChar(0);
            for (int from = 0; from <= length; ++from)
                QCOMPARE(TextScan::indexOfOne(text, from, {u'<', u'\0'}), from <= place ? place : length);
        }
        // What stands behind the end does not count.
        const QString text = QString(length, QLatin1Char('.')) + QString(20, QLatin1Char('<'));
        QCOMPARE(TextScan::indexOfOne(QStringView(text).left(length), 0, {u'<', u'\0'}), length);
    }
}

void tstTextScan::oneOfTwoIsFoundAsCharacterByCharacter()
{
    std::mt19937 random(2);
    for (int round = 0; round < 4000; ++round) {
        QString text;
        for (int i = 0; i < round % 90; ++i)
            text += QChar(static_cast<ushort>(random() % 50 ? random() : 'a' + random() % 2));
        const int from = static_cast<int>(random() % static_cast<unsigned>(text.size() + 1));
        QCOMPARE(TextScan::indexOfOne(text, from, {u'a', u'b'}), TextScan::indexOfOnePlain(text, from, {u'a', u'b'}));
    }
}

void tstTextScan::charactersWithTheSameLowByteAreOthers()
{
    QString text = QString(20, QChar(0x3c00 + '<')) + QString(20, QChar(0x2d00 + '-'));

    QCOMPARE(TextScan::indexOfPair(text, 0, {u'<', u'<'}, {u'-', u'-'}), 40);
    QCOMPARE(TextScan::indexOfOne(text, 0, {u'<', u'-'}), 40);
    text[12] = QLatin1Char('<');
    QCOMPARE(TextScan::indexOfPair(text, 0, {u'<', u'<'}, {u'-', u'-'}), 40);
    text[13] = QLatin1Char('-');
    QCOMPARE(TextScan::indexOfPair(text, 0, {u'<', u'<'}, {u'-', u'-'}), 12);
}

void tstTextScan::markersAreFoundAsByQt_data()
{
    QTest::addColumn<QString>("marker");

    for (const char* marker : {"<-TaskItem->", "</-TaskItem->", "<=TaskInfo=>", "</=TaskInfo=>", "<CMD>", "</CMD>", "<",
                               "/", "<-", "</", "</-", "ab", "a", "-<", "a<", "<a", "<<x"})
        QTest::newRow(marker) << QString::fromLatin1(marker);
}

void tstTextScan::markersAreFoundAsByQt()
{
    QFETCH(QString, marker);
    const QStringList fragments = {marker,
                                   marker.toUpper(),
                                   marker.toLower(),
                                   marker.mid(1),
                                   marker.left(marker.size() - 1),
                                   QStringLiteral("<"),
                                   QStringLiteral("/-"),
                                   QStringLiteral("</-"),
                                   QStringLiteral("=x"),
                                   QString(9, QLatin1Char('o'))};
    std::mt19937 random(2);
    for (int round = 0; round < 3000; ++round) {
        QString text;
        for (int i = 0; i < round % 12; ++i)
            text += fragments.at(static_cast<int>(random() % static_cast<unsigned>(fragments.size())));
        const int from = static_cast<int>(random() % static_cast<unsigned>(text.size() + 1));
        QCOMPARE(TextScan::indexOfMarker(text, from, marker), text.indexOf(marker, from, Qt::CaseInsensitive));
    }
}

void tstTextScan::foldedLettersCountAsInQt()
{
    // The sign of the unit kelvin and the long s fold to plain letters.
    const QString text = QString(11, QLatin1Char('.')) + QStringLiteral("<-Ta") + QChar(0x017f) + QChar(0x212a) +
                         QStringLiteral("Item->");

    QCOMPARE(text.indexOf(QStringLiteral("<-TaskItem->"), 0, Qt::CaseInsensitive), 11);
    QCOMPARE(TextScan::indexOfMarker(text, 0, QStringLiteral("<-TaskItem->")), 11);
}

QTEST_GUILESS_MAIN(tstTextScan)
#include "tstTextScan.moc"

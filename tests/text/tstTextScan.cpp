#include "textScan.h"

#include <QtTest>

#include <algorithm>
#include <memory>
#include <random>

#if defined(__arm__)
#include <sys/auxv.h>
#endif

using TextScan::Forms;
using TextScan::OneOf;

namespace {

/// One row for each form that this processor has.
void addForms()
{
    QTest::addColumn<int>("form");
    int index = 0;
    for (const Forms* forms : Forms::available())
        QTest::newRow(forms->m_pchName) << index++;
}

const Forms& formOfRow()
{
    QFETCH(int, form);
    return *Forms::available().at(static_cast<std::size_t>(form));
}

/// Exactly as large as its content, so that a sanitizer sees the first character beside it.
class Exact
{
public:
    explicit Exact(const QString& text) : m_nSize(text.size()), m_pcData(new QChar[static_cast<std::size_t>(m_nSize)])
    {
        std::copy(text.begin(), text.end(), m_pcData.get());
    }
    QStringView view() const { return {m_pcData.get(), m_nSize}; }

private:
    int m_nSize;
    std::unique_ptr<QChar[]> m_pcData;
};

/// Dots, and about one in so many characters a part of what is searched.
QString withParts(int length, unsigned oneIn, std::mt19937& random)
{
    QString text(length, QLatin1Char('.'));
    for (QChar& c : text) {
        if (random() % oneIn == 0)
            c = QLatin1Char("<=-/"[random() % 4]);
    }
    return text;
}

}  // namespace

class tstTextScan : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void pairIsFoundAtEveryPlaceOfEveryLength_data() { addForms(); }
    void pairIsFoundAtEveryPlaceOfEveryLength();
    void pairStandsNeitherInFrontNorAcrossTheEnd_data() { addForms(); }
    void pairStandsNeitherInFrontNorAcrossTheEnd();
    void pairOfAlternativesIsFoundAsCharacterByCharacter_data() { addForms(); }
    void pairOfAlternativesIsFoundAsCharacterByCharacter();
    void oneCharacterIsFoundAtEveryPlaceOfEveryLength_data() { addForms(); }
    void oneCharacterIsFoundAtEveryPlaceOfEveryLength();
    void oneOfTwoIsFoundAsCharacterByCharacter_data() { addForms(); }
    void oneOfTwoIsFoundAsCharacterByCharacter();
    void charactersWithTheSameLowByteAreOthers_data() { addForms(); }
    void charactersWithTheSameLowByteAreOthers();
    void everyPlaceInMemoryAndEveryStartFindTheSame_data() { addForms(); }
    void everyPlaceInMemoryAndEveryStartFindTheSame();
    void formsAreThoseThatTheProcessorHas();
    void markersAreFoundAsByQt_data();
    void markersAreFoundAsByQt();
    void foldedLettersCountAsInQt();
};

void tstTextScan::pairIsFoundAtEveryPlaceOfEveryLength()
{
    const Forms& form = formOfRow();
    for (int length = 2; length < 40; ++length) {
        for (int place = 0; place + 1 < length; ++place) {
            QString text(length, QLatin1Char('.'));
            text[place] = QLatin1Char('<');
            text[place + 1] = QLatin1Char('-');
            for (int from = 0; from <= length; ++from)
                QCOMPARE(form.m_pfnIndexOfPair(text, from, {u'<', u'<'}, {u'-', u'-'}), from <= place ? place : length);
        }
    }
}

void tstTextScan::pairStandsNeitherInFrontNorAcrossTheEnd()
{
    const Forms& form = formOfRow();
    const QString text = QStringLiteral("<-........<-");

    QCOMPARE(form.m_pfnIndexOfPair(QStringView(text).left(11), 1, {u'<', u'<'}, {u'-', u'-'}), 11);
    QCOMPARE(form.m_pfnIndexOfPair(QStringView(), 0, {u'<', u'<'}, {u'-', u'-'}), 0);
    QCOMPARE(form.m_pfnIndexOfPair(QStringView(text).left(1), 0, {u'<', u'<'}, {u'-', u'-'}), 1);
    for (int length = 1; length < 40; ++length) {
        const QString cut = QString(length - 1, QLatin1Char('.')) + QStringLiteral("<-");
        for (int from = 0; from <= length; ++from)
            QCOMPARE(form.m_pfnIndexOfPair(QStringView(cut).left(length), from, {u'<', u'<'}, {u'-', u'-'}), length);
    }
}

void tstTextScan::pairOfAlternativesIsFoundAsCharacterByCharacter()
{
    const Forms& form = formOfRow();
    std::mt19937 random(1);
    const QString letters = QStringLiteral("\r\nabcdefgh");
    for (int round = 0; round < 4000; ++round) {
        QString text;
        for (int i = 0; i < round % 90; ++i)
            text += letters.at(static_cast<int>(random() % 10));
        const int from = text.isEmpty() ? 0 : static_cast<int>(random() % static_cast<unsigned>(text.size()));
        QCOMPARE(form.m_pfnIndexOfPair(text, from, {u'\r', u'\n'}, {u'\n', u'a'}),
                 TextScan::indexOfPairPlain(text, from, {u'\r', u'\n'}, {u'\n', u'a'}));
    }
}

void tstTextScan::oneCharacterIsFoundAtEveryPlaceOfEveryLength()
{
    const Forms& form = formOfRow();
    for (int length = 0; length < 100; ++length) {
        for (int place = 0; place < length; ++place) {
            QString text(length, QLatin1Char('.'));
            text[place] = place % 2 ? QLatin1Char('<') : QChar(0);
            for (int from = 0; from <= length; ++from)
                QCOMPARE(form.m_pfnIndexOfOne(text, from, {u'<', u'\0'}), from <= place ? place : length);
        }
        // What stands behind the end does not count.
        const QString text = QString(length, QLatin1Char('.')) + QString(20, QLatin1Char('<'));
        QCOMPARE(form.m_pfnIndexOfOne(QStringView(text).left(length), 0, {u'<', u'\0'}), length);
    }
}

void tstTextScan::oneOfTwoIsFoundAsCharacterByCharacter()
{
    const Forms& form = formOfRow();
    std::mt19937 random(2);
    for (int round = 0; round < 4000; ++round) {
        QString text;
        for (int i = 0; i < round % 90; ++i)
            text += QChar(static_cast<ushort>(random() % 50 ? random() : 'a' + random() % 2));
        const int from = static_cast<int>(random() % static_cast<unsigned>(text.size() + 1));
        QCOMPARE(form.m_pfnIndexOfOne(text, from, {u'a', u'b'}), TextScan::indexOfOnePlain(text, from, {u'a', u'b'}));
    }
}

void tstTextScan::charactersWithTheSameLowByteAreOthers()
{
    const Forms& form = formOfRow();
    QString text = QString(20, QChar(0x3c00 + '<')) + QString(20, QChar(0x2d00 + '-'));

    QCOMPARE(form.m_pfnIndexOfPair(text, 0, {u'<', u'<'}, {u'-', u'-'}), 40);
    QCOMPARE(form.m_pfnIndexOfOne(text, 0, {u'<', u'-'}), 40);
    text[12] = QLatin1Char('<');
    QCOMPARE(form.m_pfnIndexOfPair(text, 0, {u'<', u'<'}, {u'-', u'-'}), 40);
    text[13] = QLatin1Char('-');
    QCOMPARE(form.m_pfnIndexOfPair(text, 0, {u'<', u'<'}, {u'-', u'-'}), 12);
}

// The view starts at each of the places that an aligned load would not bear.
void tstTextScan::everyPlaceInMemoryAndEveryStartFindTheSame()
{
    const Forms& form = formOfRow();
    constexpr OneOf First{u'<', u'='};
    constexpr OneOf Second{u'-', u'/'};
    std::mt19937 random(3);
    for (int length = 0; length < 60; ++length) {
        for (int offset = 0; offset <= 16; ++offset) {
            const QString text = withParts(length, length % 2 ? 2 : 9, random);
            const Exact exact(QString(offset, QLatin1Char('<')) + text);
            const QStringView view = exact.view().mid(offset);
            for (int from = 0; from <= length; ++from) {
                QCOMPARE(form.m_pfnIndexOfPair(view, from, First, Second),
                         TextScan::indexOfPairPlain(text, from, First, Second));
                QCOMPARE(form.m_pfnIndexOfOne(view, from, First), TextScan::indexOfOnePlain(text, from, First));
            }
        }
    }
}

void tstTextScan::formsAreThoseThatTheProcessorHas()
{
    QStringList names;
    for (const Forms* forms : Forms::available())
        names.append(forms->m_pchName);

#if defined(__x86_64__)
    QCOMPARE(names,
             __builtin_cpu_supports("avx2") ? (QStringList{"plain", "sse2", "avx2"}) : (QStringList{"plain", "sse2"}));
#elif defined(__arm__)
    constexpr unsigned long Neon = 1UL << 12;  // of AT_HWCAP
    QCOMPARE(names, (::getauxval(AT_HWCAP) & Neon) != 0 ? (QStringList{"plain", "neon"}) : QStringList{"plain"});
#else
    QCOMPARE(names.first(), QStringLiteral("plain"));
#endif
    QCOMPARE(&Forms::best(), Forms::available().back());
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

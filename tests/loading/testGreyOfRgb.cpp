#include "loading/pictureConvert.h"

#include <QtTest>

#include <vector>

using Bytes = std::vector<unsigned char>;

namespace {

constexpr std::size_t AllColours = std::size_t{1} << 24;

/// The definition, one colour at a time.
unsigned char defined(int s0, int s1, int s2)
{
    const double grey = 0.587 * s1 + 0.299 * s2 + 0.114 * s0;
    return static_cast<unsigned char>(static_cast<int>(grey));
}

Bytes allColours()
{
    Bytes rgb;
    rgb.reserve(3 * AllColours);
    for (std::size_t colour = 0; colour < AllColours; ++colour) {
        rgb.push_back(static_cast<unsigned char>(colour));
        rgb.push_back(static_cast<unsigned char>(colour >> 8));
        rgb.push_back(static_cast<unsigned char>(colour >> 16));
    }
    return rgb;
}

}  // namespace

class TestGreyOfRgb : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOneOfAllColoursGivesTheDoubleExpression()
    {
        const Bytes rgb = allColours();
        Bytes grey(AllColours);
        PictureConvert::greyOfRgb(rgb.data(), grey.data(), AllColours);
        for (std::size_t i = 0; i < AllColours; ++i) {
            const unsigned char expected = defined(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]);
            if (grey[i] != expected)
                QFAIL(qPrintable(QString::asprintf("colour %06zx gives %d, not %d", i, grey[i], expected)));
        }
    }

    void everyOneOfAllColoursGivesItAloneToo()
    {
        // One pixel at a time takes the way for what is left at the end of a row.
        const Bytes rgb = allColours();
        std::size_t wrong = 0;
        for (std::size_t i = 0; i < AllColours; ++i) {
            unsigned char grey = 0;
            PictureConvert::greyOfRgb(&rgb[3 * i], &grey, 1);
            wrong += grey != defined(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]) ? 1 : 0;
        }
        QCOMPARE(wrong, std::size_t{0});
    }

    void weightsOfRedAndBlueAreExchangedOnPurpose_data()
    {
        QTest::addColumn<int>("red");
        QTest::addColumn<int>("green");
        QTest::addColumn<int>("blue");
        QTest::addColumn<int>("grey");
        QTest::newRow("pure red") << 255 << 0 << 0 << 29;
        QTest::newRow("pure green") << 0 << 255 << 0 << 149;
        QTest::newRow("pure blue") << 0 << 0 << 255 << 76;
        QTest::newRow("black") << 0 << 0 << 0 << 0;
        QTest::newRow("white") << 255 << 255 << 255 << 255;
        QTest::newRow("integer form would say 1") << 1 << 1 << 1 << 0;
        QTest::newRow("integer form would say 254") << 254 << 254 << 254 << 253;
    }

    void weightsOfRedAndBlueAreExchangedOnPurpose()
    {
        QFETCH(int, red);
        QFETCH(int, green);
        QFETCH(int, blue);
        const Bytes rgb{static_cast<unsigned char>(red), static_cast<unsigned char>(green),
                        static_cast<unsigned char>(blue)};
        unsigned char grey = 0;
        PictureConvert::greyOfRgb(rgb.data(), &grey, 1);
        QTEST(static_cast<int>(grey), "grey");
    }

    void rowsOfEveryLengthStayInsideTheirBytes()
    {
        for (std::size_t count = 0; count <= 70; ++count) {
            // Exactly as many bytes as needed: an address sanitizer sees one more.
            Bytes rgb;
            for (std::size_t i = 0; i < 3 * count; ++i)
                rgb.push_back(static_cast<unsigned char>(i * 11));
            Bytes grey(count + 1, 0xEE);
            PictureConvert::greyOfRgb(rgb.data(), grey.data(), count);
            for (std::size_t i = 0; i < count; ++i)
                QCOMPARE(grey[i], defined(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]));
            QCOMPARE(int{grey[count]}, 0xEE);
        }
    }
};

QTEST_APPLESS_MAIN(TestGreyOfRgb)
#include "testGreyOfRgb.moc"

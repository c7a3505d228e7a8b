#include "pixelSupport.h"
#include "pixels/pixels.h"

using namespace PixelSupport;

namespace {

constexpr std::size_t AllColours = std::size_t{1} << 24;

/// The definition, one colour at a time.
unsigned char defined(int s0, int s1, int s2)
{
    const double grey = 0.587 * s1 + 0.299 * s2 + 0.114 * s0;
    return static_cast<unsigned char>(static_cast<int>(grey));
}

Bytes definedOf(const Bytes& rgb)
{
    Bytes grey(rgb.size() / 3);
    for (std::size_t i = 0; i < grey.size(); ++i)
        grey[i] = defined(rgb[3 * i], rgb[3 * i + 1], rgb[3 * i + 2]);
    return grey;
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

/// The same colours as 32-bit pixels, with anything in the fourth byte.
Bytes bgrxOf(const Bytes& rgb)
{
    Bytes bgrx;
    bgrx.reserve(rgb.size() / 3 * 4);
    for (std::size_t i = 0; i < rgb.size(); i += 3)
        bgrx.insert(bgrx.end(), {rgb[i + 2], rgb[i + 1], rgb[i], static_cast<unsigned char>(i * 7)});
    return bgrx;
}

/// Greys, and colours whose sum is a multiple of a thousand without being one, close together.
Bytes hardColours(std::size_t count, unsigned seed)
{
    std::vector<std::array<unsigned char, 3>> multiples;
    const Bytes all = allColours();
    for (std::size_t i = 0; i < all.size(); i += 3) {
        if ((587 * all[i + 1] + 299 * all[i + 2] + 114 * all[i]) % 1000 == 0)
            multiples.push_back({all[i], all[i + 1], all[i + 2]});
    }
    std::mt19937 random(seed);
    Bytes rgb;
    while (rgb.size() < 3 * count) {
        const auto grey = static_cast<unsigned char>(random());
        const auto& multiple = multiples[random() % multiples.size()];
        const bool isGrey = random() % 16 != 0;
        for (std::size_t byte = 0; byte < 3; ++byte)
            rgb.push_back(isGrey ? grey : multiple[byte]);
    }
    return rgb;
}

Bytes pureGreys(std::size_t count)
{
    Bytes rgb;
    for (std::size_t i = 0; i < count; ++i)
        rgb.insert(rgb.end(), 3, static_cast<unsigned char>(i * 37));
    return rgb;
}

void compare(const Bytes& rgb, const Bytes& grey, const Bytes& expected)
{
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (grey[i] != expected[i])
            QFAIL(qPrintable(QString::asprintf("colour %02x %02x %02x gives %d, not %d", rgb[3 * i], rgb[3 * i + 1],
                                               rgb[3 * i + 2], grey[i], expected[i])));
    }
}

}  // namespace

class TestGreyValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOneOfAllColoursGivesTheDoubleExpression_data() { addForms(); }
    void everyOneOfAllColoursGivesTheDoubleExpression()
    {
        const PixelKernels& form = formOfRow();
        const Bytes rgb = allColours();
        const Bytes expected = definedOf(rgb);
        Bytes grey(AllColours);
        form.m_pfnGreyOfRgb(rgb.data(), grey.data(), AllColours);
        compare(rgb, grey, expected);
        grey.assign(AllColours, 0);
        form.m_pfnGreyOfBgrx(bgrxOf(rgb).data(), grey.data(), AllColours);
        compare(rgb, grey, expected);
    }

    void greysBesideOtherMultiplesGiveItToo_data() { addForms(); }
    void greysBesideOtherMultiplesGiveItToo()
    {
        const PixelKernels& form = formOfRow();
        constexpr std::size_t Count = 100000;
        const Bytes rgb = hardColours(Count, 5);
        const Bytes expected = definedOf(rgb);
        Bytes grey(Count);
        form.m_pfnGreyOfRgb(rgb.data(), grey.data(), Count);
        compare(rgb, grey, expected);
        grey.assign(Count, 0);
        form.m_pfnGreyOfBgrx(bgrxOf(rgb).data(), grey.data(), Count);
        compare(rgb, grey, expected);
    }

    void rowsOfEveryLengthStayInsideTheirBytes_data() { addForms(); }
    void rowsOfEveryLengthStayInsideTheirBytes()
    {
        const PixelKernels& form = formOfRow();
        for (std::size_t count = 0; count <= 140; ++count) {
            // Exactly as many bytes as needed: an address sanitizer sees one more.
            const Bytes rgb = mixedBytes(3 * count, static_cast<unsigned>(count));
            const Bytes bgrx = bgrxOf(rgb);
            Bytes expected = definedOf(rgb);
            expected.push_back(0xEE);
            Bytes grey(count + 1, 0xEE);
            form.m_pfnGreyOfRgb(rgb.data(), grey.data(), count);
            QCOMPARE(grey, expected);
            grey.assign(count + 1, 0xEE);
            form.m_pfnGreyOfBgrx(bgrx.data(), grey.data(), count);
            QCOMPARE(grey, expected);
        }
    }

    void rowsOfPureGreysOfEveryLengthStayInsideTheirBytes_data() { addForms(); }
    void rowsOfPureGreysOfEveryLengthStayInsideTheirBytes()
    {
        const PixelKernels& form = formOfRow();
        for (std::size_t count = 0; count <= 300; ++count) {
            const Bytes rgb = pureGreys(count);
            Bytes expected = definedOf(rgb);
            expected.push_back(0xEE);
            Bytes grey(count + 1, 0xEE);
            form.m_pfnGreyOfRgb(rgb.data(), grey.data(), count);
            QCOMPARE(grey, expected);
        }
    }

    void oneOtherColourAmongPureGreysIsFoundWhereverItIs_data() { addForms(); }
    void oneOtherColourAmongPureGreysIsFoundWhereverItIs()
    {
        const PixelKernels& form = formOfRow();
        constexpr std::size_t Count = 203;
        const Bytes greys = pureGreys(Count);
        for (std::size_t byte = 0; byte < greys.size(); ++byte) {
            Bytes rgb = greys;
            rgb[byte] ^= 0x80;  // changes the grey value, too, whichever byte it is
            Bytes grey(Count);
            form.m_pfnGreyOfRgb(rgb.data(), grey.data(), Count);
            QCOMPARE(grey, definedOf(rgb));
        }
    }

    void buffersNeedNoAlignment_data() { addForms(); }
    void buffersNeedNoAlignment()
    {
        const PixelKernels& form = formOfRow();
        constexpr std::size_t Count = 101;
        const Bytes rgb = mixedBytes(3 * Count, 9);
        const Bytes bgrx = bgrxOf(rgb);
        const Bytes expected = definedOf(rgb);
        for (std::size_t offset = 0; offset < 33; ++offset) {
            Bytes shifted(offset);
            shifted.insert(shifted.end(), rgb.begin(), rgb.end());
            Bytes grey(Count + offset);
            form.m_pfnGreyOfRgb(shifted.data() + offset, grey.data() + offset, Count);
            QVERIFY(std::equal(expected.begin(), expected.end(), grey.begin() + static_cast<std::ptrdiff_t>(offset)));
            shifted.resize(offset);
            shifted.insert(shifted.end(), bgrx.begin(), bgrx.end());
            grey.assign(Count + offset, 0);
            form.m_pfnGreyOfBgrx(shifted.data() + offset, grey.data() + offset, Count);
            QVERIFY(std::equal(expected.begin(), expected.end(), grey.begin() + static_cast<std::ptrdiff_t>(offset)));
        }
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
        Pixels::greyOfRgb(rgb.data(), &grey, 1);
        QTEST(static_cast<int>(grey), "grey");
        Pixels::greyOfBgrx(bgrxOf(rgb).data(), &grey, 1);
        QTEST(static_cast<int>(grey), "grey");
    }
};

QTEST_APPLESS_MAIN(TestGreyValues)
#include "testGreyValues.moc"

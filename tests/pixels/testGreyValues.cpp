#include "pixelSupport.h"
#include "pixels/pixels.h"

#include <algorithm>

using namespace PixelSupport;

namespace {

Bytes pureGreys(std::size_t count)
{
    Bytes rgb;
    for (std::size_t i = 0; i < count; ++i)
        rgb.insert(rgb.end(), 3, static_cast<unsigned char>(i * 37));
    return rgb;
}

}  // namespace

class TestGreyValues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

    void pixelOfTwoGreysBetweenThemIsFoundWhereverItIs_data() { addForms(); }
    void pixelOfTwoGreysBetweenThemIsFoundWhereverItIs()
    {
        const PixelKernels& form = formOfRow();
        constexpr std::size_t Count = 203;
        constexpr unsigned char Values[] = {100, 200};
        for (std::size_t place = 0; place < Count; ++place) {
            for (unsigned chosen = 0; chosen < 8; ++chosen) {
                Bytes rgb(3 * Count, Values[1]);
                std::fill_n(rgb.begin(), 3 * place, Values[0]);
                for (unsigned byte = 0; byte < 3; ++byte)
                    rgb[3 * place + byte] = Values[chosen >> byte & 1];
                Bytes grey(Count);
                form.m_pfnGreyOfRgb(rgb.data(), grey.data(), Count);
                QCOMPARE(grey, definedOf(rgb));
            }
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

#include "pixelSupport.h"

#include <array>

using namespace PixelSupport;

namespace {

constexpr std::size_t AllColours = std::size_t{1} << 24;

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

void compare(const Bytes& rgb, const Bytes& grey, const Bytes& expected)
{
    for (std::size_t i = 0; i < expected.size(); ++i) {
        if (grey[i] != expected[i])
            QFAIL(qPrintable(QString::asprintf("colour %02x %02x %02x gives %d, not %d", rgb[3 * i], rgb[3 * i + 1],
                                               rgb[3 * i + 2], grey[i], expected[i])));
    }
}

}  // namespace

class TestAllColours : public QObject
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
};

QTEST_APPLESS_MAIN(TestAllColours)
#include "testAllColours.moc"

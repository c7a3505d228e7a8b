#include "drawing/directDrawing.h"

#include "drawing/greyOverlay.h"
#include "drawing/imagePlacement.h"
#include "drawing/pictureSampling.h"
#include "pixels/pixels.h"
#include "pixels/samplingKernels.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

const PictureSampling* samplingOf(const QImage& canvas, const QImage& picture, const QRectF& source,
                                  PainterPicture kind)
{
    if (canvas.format() != QImage::Format_RGB888 || canvas.devicePixelRatio() != 1)
        return nullptr;
    return pictureSampling(canvas.size(), picture.size(), source, kind);
}

/// The rows of the canvas that show a picture, each from its first pixel on that does.
class ShownRows
{
public:
    ShownRows(QImage& canvas, const PictureSampling& sampling)
        : m_nStride(static_cast<std::size_t>(canvas.bytesPerLine())),
          m_puchFirst(canvas.bits() + m_nStride * static_cast<std::size_t>(sampling.m_nTop) +
                      3 * static_cast<std::size_t>(sampling.m_nLeft))
    {
    }
    unsigned char* row(std::size_t index) const { return m_puchFirst + m_nStride * index; }

private:
    std::size_t m_nStride;
    unsigned char* m_puchFirst;
};

/// Black, bytes between the rows included, where the picture is not going to be.
void clearAround(QImage& canvas, const PictureSampling& sampling)
{
    const auto stride = static_cast<std::size_t>(canvas.bytesPerLine());
    const std::size_t shown = sampling.covers(canvas.size()) ? 3 * static_cast<std::size_t>(canvas.width()) : 0;
    unsigned char* row = canvas.bits();
    for (int y = 0; y < canvas.height(); ++y, row += stride)
        std::memset(row + shown, 0, stride - shown);
}

/// Takes a row's pixels by the map of the columns and makes three bytes of each.
class RowSampler
{
public:
    RowSampler(const QImage& picture, const ColumnMap& columns, const SamplingKernels& kernels)
        : m_cKernels(kernels), m_cColumns(columns), m_eFormat(picture.format())
    {
    }

    void sample(const unsigned char* source, unsigned char* target)
    {
        if (isGrey())
            Pixels::rgbOfGrey(sampleGrey(source), target, m_cColumns.count());
        else if (m_cColumns.isContiguous())
            copyNeighbours(source + 3 * static_cast<std::size_t>(*m_cColumns.columns()), target);
        else
            m_cKernels.m_pfnColour(source, m_cColumns, isExchanged(), target);
    }

    /// The values alone; valid until the next call and as long as the source.
    const unsigned char* sampleGrey(const unsigned char* source)
    {
        if (m_cColumns.isContiguous())
            return source + *m_cColumns.columns();
        m_vecGrey.resize(m_cColumns.count());
        m_cKernels.m_pfnGrey(source, m_cColumns, m_vecGrey.data());
        return m_vecGrey.data();
    }

private:
    bool isGrey() const { return m_eFormat == QImage::Format_Grayscale8; }
    bool isExchanged() const { return m_eFormat == QImage::Format_BGR888; }

    void copyNeighbours(const unsigned char* source, unsigned char* target) const
    {
        if (isExchanged())
            Pixels::exchangeFirstAndThird(source, target, m_cColumns.count());
        else
            std::memcpy(target, source, 3 * m_cColumns.count());
    }

    const SamplingKernels& m_cKernels;
    const ColumnMap& m_cColumns;
    QImage::Format m_eFormat;
    std::vector<unsigned char> m_vecGrey;
};

/// Lays the rows of a grey picture over a canvas.
class RowOverlay
{
public:
    RowOverlay(const GreyOverlay& overlay, std::size_t count, const SamplingKernels& kernels)
        : m_cKernels(kernels), m_cOverlay(overlay), m_nCount(count), m_vecRgb(3 * count)
    {
        const bool isOne = overlay.m_eColours == GreyOverlay::Colours::OneColour;
        for (std::size_t value = 0; value < ColourTable::Values; ++value)
            m_cTable.set(value, bytesOf(isOne ? overlay.m_nColour : overlay.colourOf(static_cast<int>(value))));
        if (isOne)
            fill(std::vector<unsigned char>(count).data());
    }

    /// Over the first pixel of the canvas that shows the row, and those behind; whether the row is that of the last
    /// call.
    void lay(const unsigned char* grey, bool isRepeated, unsigned char* target)
    {
        if (layAtOnce(grey, target))
            return;
        if (!isRepeated)
            makeColours(grey);
        if (m_cOverlay.m_bShowsZero && m_cOverlay.m_bShowsOthers)
            std::copy_n(m_vecRgb.data(), m_vecRgb.size(), target);
        else
            m_cKernels.m_pfnOverlay(grey, m_vecRgb.data(), m_cOverlay.m_bShowsZero, target, m_nCount);
    }

private:
    /// Without colours of the whole row in between; false where this is not to be had.
    bool layAtOnce(const unsigned char* grey, unsigned char* target) const
    {
        const bool isGreys = m_cOverlay.m_eColours == GreyOverlay::Colours::Greys;
        const bool isBlocks = m_cOverlay.m_eColours == GreyOverlay::Colours::Blocks;
        if (m_cOverlay.m_bShowsZero && m_cOverlay.m_bShowsOthers)
            return false;
        if (isGreys && m_cKernels.m_pfnOverlayGreys != nullptr)
            m_cKernels.m_pfnOverlayGreys(grey, m_cOverlay.m_bShowsZero, target, m_nCount);
        else if (isBlocks && m_cKernels.m_pfnOverlayColours != nullptr)
            m_cKernels.m_pfnOverlayColours(grey, m_cTable, m_cOverlay.m_bShowsZero, target, m_nCount);
        else
            return false;
        return true;
    }

    /// Those of values that are not shown are of no account.
    void makeColours(const unsigned char* grey)
    {
        if (m_cOverlay.m_eColours == GreyOverlay::Colours::Greys)
            Pixels::rgbOfGrey(grey, m_vecRgb.data(), m_nCount);
        else if (m_cOverlay.m_eColours == GreyOverlay::Colours::Blocks)
            fill(grey);
    }

    static std::array<unsigned char, 3> bytesOf(QRgb colour)
    {
        return {static_cast<unsigned char>(qRed(colour)), static_cast<unsigned char>(qGreen(colour)),
                static_cast<unsigned char>(qBlue(colour))};
    }

    void fill(const unsigned char* grey) { m_cKernels.m_pfnLookUp(grey, m_cTable, m_vecRgb.data(), m_nCount); }

    const SamplingKernels& m_cKernels;
    const GreyOverlay& m_cOverlay;
    std::size_t m_nCount;
    ColourTable m_cTable;
    std::vector<unsigned char> m_vecRgb;
};

}  // namespace

bool DirectDrawing::replace(QImage& canvas, const QImage& picture, const QRectF& source)
{
    const PictureSampling* sampling = samplingOf(canvas, picture, source, PainterPicture::Rgb);
    if (!sampling)
        return false;
    clearAround(canvas, *sampling);
    const ShownRows shown(canvas, *sampling);
    RowSampler sampler(picture, sampling->m_cColumns, SamplingKernels::best());
    const std::vector<std::int32_t>& rows = sampling->m_vecRows;
    for (std::size_t y = 0; y < rows.size(); ++y) {
        if (y > 0 && rows[y] == rows[y - 1])
            std::memcpy(shown.row(y), shown.row(y - 1), 3 * sampling->m_cColumns.count());
        else
            sampler.sample(picture.constScanLine(rows[y]), shown.row(y));
    }
    return true;
}

bool DirectDrawing::overlay(QImage& canvas, const QImage& picture, const QRectF& source, const GreyOverlay& colours)
{
    return overlay(canvas, picture, source, colours, SamplingKernels::best());
}

bool DirectDrawing::overlay(QImage& canvas, const QImage& picture, const QRectF& source, const GreyOverlay& colours,
                            const SamplingKernels& kernels)
{
    const PictureSampling* sampling = samplingOf(canvas, picture, source, PainterPicture::Argb);
    if (!sampling)
        return false;
    if (!colours.m_bShowsZero && !colours.m_bShowsOthers)
        return true;
    const ShownRows shown(canvas, *sampling);
    RowSampler sampler(picture, sampling->m_cColumns, kernels);
    RowOverlay overlay(colours, sampling->m_cColumns.count(), kernels);
    const unsigned char* grey = nullptr;
    const std::vector<std::int32_t>& rows = sampling->m_vecRows;
    for (std::size_t y = 0; y < rows.size(); ++y) {
        const bool isRepeated = y > 0 && rows[y] == rows[y - 1];
        if (!isRepeated)
            grey = sampler.sampleGrey(picture.constScanLine(rows[y]));
        overlay.lay(grey, isRepeated, shown.row(y));
    }
    return true;
}

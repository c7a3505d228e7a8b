#include "drawing/pictureSampling.h"

#include "drawing/imagePlacement.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <utility>

namespace {

constexpr int MaxScaledSide = 16384;      // pixels; twice that is where the painter's fixed point numbers end
constexpr int MaxUnscaledSide = 1 << 20;  // pixels; a side's numbers have to fit into a colour
constexpr double MaxShrinking = 64;       // the painter changes its ways at 100
constexpr double MaxGrowing = 128;        // the painter changes its ways at 256
constexpr double TinySource = 2;          // pixels

constexpr double NearHalf = 1.0 / 16;  // pixels; several times the painter's own precision

constexpr std::int32_t Untouched = 0xFFFFFF;  // as a colour: white

struct Request
{
    QSize m_cCanvas;
    QSize m_cPicture;
    QRectF m_cSource;
    PainterPicture m_cKind = PainterPicture::Rgb;

    // Exactly, unlike the comparison of QRectF.
    bool isScaledAcross() const { return m_cSource.width() != m_cCanvas.width(); }
    bool isScaledDown() const { return m_cSource.height() != m_cCanvas.height(); }
    bool isScaled() const { return isScaledAcross() || isScaledDown(); }

    bool operator==(const Request& other) const
    {
        const auto numbers = [](const QRectF& rect) {
            return std::array{rect.x(), rect.y(), rect.width(), rect.height()};
        };
        return m_cCanvas == other.m_cCanvas && m_cPicture == other.m_cPicture && m_cKind == other.m_cKind &&
               numbers(m_cSource) == numbers(other.m_cSource);
    }
};

bool isModerate(double sourceLength, int canvasLength)
{
    return sourceLength <= canvasLength * MaxShrinking && canvasLength <= sourceLength * MaxGrowing;
}

bool areSidesWithin(QSize size, int limit)
{
    return !size.isEmpty() && size.width() <= limit && size.height() <= limit;
}

/// The painter finds an unscaled part unscaled after it cut off what lies outside: nothing was rounded.
bool isCutExactly(const QRectF& source)
{
    return std::trunc(2 * source.x()) == 2 * source.x() && std::trunc(2 * source.y()) == 2 * source.y();
}

bool isKnown(const Request& request)
{
    if (!request.isScaled() && !isCutExactly(request.m_cSource))
        return false;
    const int limit = request.isScaled() ? MaxScaledSide : MaxUnscaledSide;
    if (!areSidesWithin(request.m_cCanvas, limit) || !areSidesWithin(request.m_cPicture, limit))
        return false;
    const QRectF& source = request.m_cSource;
    if (!isModerate(source.width(), request.m_cCanvas.width()) ||
        !isModerate(source.height(), request.m_cCanvas.height()))
        return false;
    const QRectF shown = source & QRectF(0, 0, request.m_cPicture.width(), request.m_cPicture.height());
    return !shown.isEmpty() && (shown.width() > TinySource || shown.height() > TinySource);
}

/// Asks the painter along one axis; the other axis has two pixels, scaled when any of the two is.
class Question
{
public:
    Question(const Request& request, Qt::Orientation axis)
        : m_cRequest(request), m_bAcross(axis == Qt::Horizontal), m_nAround(request.isScaled() ? 1 : 2)
    {
    }

    /// The picture's pixel for each of the canvas, or Untouched; nothing when there is no memory to ask.
    std::optional<std::vector<std::int32_t>> ask() const
    {
        QImage canvas(sized(length(m_cRequest.m_cCanvas), m_nAround), QImage::Format_RGB888);
        const QImage picture = numbers();
        if (canvas.isNull() || picture.isNull())
            return std::nullopt;
        canvas.fill(Qt::white);
        const QRectF& source = m_cRequest.m_cSource;
        const QRectF part =
            m_bAcross ? QRectF(source.x(), 0, source.width(), 2) : QRectF(0, source.y(), 2, source.height());
        paintPart(canvas, picture, part);
        std::vector<std::int32_t> answer(static_cast<std::size_t>(length(m_cRequest.m_cCanvas)));
        for (int i = 0; i < length(m_cRequest.m_cCanvas); ++i)
            answer[static_cast<std::size_t>(i)] =
                static_cast<std::int32_t>((m_bAcross ? canvas.pixel(i, 0) : canvas.pixel(0, i)) & RGB_MASK);
        return answer;
    }

private:
    int length(QSize size) const { return m_bAcross ? size.width() : size.height(); }
    QSize sized(int along, int around) const { return m_bAcross ? QSize(along, around) : QSize(around, along); }

    /// A picture as long as the real one whose colours are the numbers of their columns or rows.
    QImage numbers() const
    {
        const bool isArgb = m_cRequest.m_cKind == PainterPicture::Argb;
        QImage picture(sized(length(m_cRequest.m_cPicture), 2),
                       isArgb ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB888);
        for (int y = 0; y < picture.height(); ++y) {
            unsigned char* row = picture.scanLine(y);
            for (int x = 0; x < picture.width(); ++x) {
                const QRgb colour = 0xFF000000U | static_cast<QRgb>(m_bAcross ? x : y);
                if (isArgb)
                    reinterpret_cast<QRgb*>(row)[x] = colour;
                else
                    putRgb(row + 3 * x, colour);
            }
        }
        return picture;
    }

    static void putRgb(unsigned char* pixel, QRgb colour)
    {
        pixel[0] = static_cast<unsigned char>(qRed(colour));
        pixel[1] = static_cast<unsigned char>(qGreen(colour));
        pixel[2] = static_cast<unsigned char>(qBlue(colour));
    }

    const Request& m_cRequest;
    bool m_bAcross;
    int m_nAround;
};

/// What was drawn, with the number of the first; nothing when it has gaps or descends.
std::optional<std::pair<int, std::vector<std::int32_t>>> drawnPart(
    const std::optional<std::vector<std::int32_t>>& asked)
{
    if (!asked)
        return std::nullopt;
    const std::vector<std::int32_t>& answer = *asked;
    const auto isDrawn = [](std::int32_t number) { return number != Untouched; };
    const auto first = std::find_if(answer.begin(), answer.end(), isDrawn);
    const auto end = std::find(first, answer.end(), Untouched);
    if (std::any_of(end, answer.end(), isDrawn) || !std::is_sorted(first, end))
        return std::nullopt;
    return std::make_pair(static_cast<int>(first - answer.begin()), std::vector<std::int32_t>(first, end));
}

/// Whether what an axis shows begins or ends near the middle of a pixel, where both axes decide if that pixel is shown.
bool endsNearHalf(double sourceBegin, double sourceLength, int pictureLength, int canvasLength)
{
    const auto isNearHalf = [](double place) { return std::abs(place - std::floor(place) - 0.5) < NearHalf; };
    const double pixels = canvasLength / sourceLength;
    return isNearHalf(-sourceBegin * pixels) || isNearHalf((pictureLength - sourceBegin) * pixels);
}

bool endsNearHalf(const Request& request)
{
    const QRectF& source = request.m_cSource;
    return endsNearHalf(source.x(), source.width(), request.m_cPicture.width(), request.m_cCanvas.width()) ||
           endsNearHalf(source.y(), source.height(), request.m_cPicture.height(), request.m_cCanvas.height());
}

/// Whether the painter, given a picture of the real size, draws the rectangle that the sampling fills, and no more.
bool isShownBy(const Request& request, const PictureSampling& sampling)
{
    QImage picture(request.m_cPicture, QImage::Format_Grayscale8);
    QImage canvas(request.m_cCanvas, QImage::Format_RGB888);
    if (picture.isNull() || canvas.isNull())
        return false;
    picture.fill(0);
    canvas.fill(Qt::white);
    QImage expected = canvas;
    paintPart(canvas, picture, request.m_cSource);
    QPainter(&expected).fillRect(sampling.m_nLeft, sampling.m_nTop, static_cast<int>(sampling.m_cColumns.count()),
                                 static_cast<int>(sampling.m_vecRows.size()), Qt::black);
    return canvas == expected;
}

std::optional<PictureSampling> askPainter(const Request& request)
{
    auto columns = drawnPart(Question(request, Qt::Horizontal).ask());
    auto rows = drawnPart(Question(request, Qt::Vertical).ask());
    if (!columns || !rows)
        return std::nullopt;
    PictureSampling sampling;
    sampling.m_nLeft = columns->first;
    sampling.m_nTop = rows->first;
    sampling.m_cColumns = ColumnMap(std::move(columns->second), request.m_cPicture.width());
    sampling.m_vecRows = std::move(rows->second);
    if (request.isScaled() && endsNearHalf(request) && !isShownBy(request, sampling))
        return std::nullopt;
    return sampling;
}

struct Remembered
{
    Request m_cRequest;
    std::optional<PictureSampling> m_cSampling;

    const PictureSampling* sampling() const { return m_cSampling ? &*m_cSampling : nullptr; }
};

}  // namespace

bool PictureSampling::covers(QSize canvas) const
{
    return m_cColumns.count() == static_cast<std::size_t>(canvas.width()) &&
           m_vecRows.size() == static_cast<std::size_t>(canvas.height());
}

const PictureSampling* pictureSampling(QSize canvas, QSize picture, const QRectF& source, PainterPicture kind)
{
    const Request request{canvas, picture, source, kind};
    if (!isKnown(request))
        return nullptr;
    // Enough for every view with a picture and something over it; the oldest gives way.
    thread_local std::array<Remembered, 16> remembered;
    thread_local std::size_t next = 0;
    for (const Remembered& known : remembered) {
        if (known.m_cRequest == request)
            return known.sampling();
    }
    Remembered& oldest = remembered[next++ % remembered.size()];
    oldest = {request, askPainter(request)};
    return oldest.sampling();
}

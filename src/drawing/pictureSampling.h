#pragma once

#include "pixels/columnMap.h"

#include <QRectF>
#include <QSize>

#include <cstdint>
#include <vector>

/**
 * Which pixel of a picture the painter shows at each place of a canvas, so that others can show the same without it.
 *
 * The painter chooses column and row apart from each other. It is asked for both: what it makes of a picture of two
 * rows (two columns) whose colours are their own numbers is the list of columns (rows). No rule of its rounding is
 * repeated here. Only where a scaled picture begins or ends in the middle of a pixel do both together decide; there it
 * is asked once more, with a picture of the real size.
 */
struct PictureSampling
{
    int m_nLeft = 0;  ///< The first column of the canvas that shows the picture; the others follow without a gap.
    int m_nTop = 0;   ///< The same of the rows.
    ColumnMap m_cColumns;
    std::vector<std::int32_t> m_vecRows;

    bool covers(QSize canvas) const;
};

/// What the painter is given: it rounds half pixels of unscaled pictures differently.
enum class PainterPicture
{
    Rgb,   ///< Three bytes a pixel in the order of the canvas.
    Argb,  ///< Four bytes a pixel.
};

/**
 * The sampling of a part of a picture that fills a canvas of three bytes a pixel. Null where the painter does not
 * choose columns and rows apart from each other, or is not known to: sources of no more than two pixels each way (one
 * pixel is filled as a rectangle), strong scaling and large sides (it leaves its fixed point numbers there), and
 * unscaled pictures at other than whole and half pixels.
 *
 * Kept for the next drawing of the same placement; valid until the next call by the same thread.
 */
const PictureSampling* pictureSampling(QSize canvas, QSize picture, const QRectF& source, PainterPicture kind);

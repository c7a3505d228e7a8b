#pragma once

#include <QString>

class OptionReader;

/**
 * The option text of a drawing step: which record, on which view, and one structure for each form of its <Config>.
 * Reading: a field keeps its default unless its element holds a number, exceptions named below.
 * Writing gives the body of <Config> as the dialog writes it, every field in a fixed order.
 */
namespace DrawingConfigText {

/// The kinds of records that can be drawn, as <DataType> writes them.
enum DataType
{
    ColourImage = 0,
    Gray8Image = 1,
    Gray16Image = 2,
    Points = 3,
    Lines = 4,
    Polys = 5,
    Areas = 6,
    Strings = 7,
};

struct ImageConfig
{
    int m_nScaleType = 0;
    int m_nAlignType = 0;

    void read(const OptionReader& config);
    QString write() const;
};

struct GrayConfig
{
    ImageConfig m_cImage;
    int m_nDrawMode = 0;
    int m_nLapped = 0;
    int m_nMaskVal = 0;
    int m_nMaskColor = 0;

    void read(const OptionReader& config);
    QString write() const;  ///< Of overlay and mask only what the draw mode needs.
};

struct PointsConfig
{
    int m_nSize = 0;
    int m_nColor = 0;

    void read(const OptionReader& config);
    QString write() const;
};

struct LinesConfig
{
    int m_nSize = 1;
    int m_nColor = 0;
    bool m_bDisplayLength = false;

    void read(const OptionReader& config);
    QString write() const;
};

struct PolysConfig
{
    int m_nBorderSize = 0;
    int m_nBorderColor = 0;
    bool m_bDisplayArea = false;

    void read(const OptionReader& config);
    QString write() const;
};

struct AreasConfig
{
    int m_nColor = 0;
    bool m_bDisplayArea = false;

    void read(const OptionReader& config);
    QString write() const;
};

struct StringsConfig
{
    int m_nColor = 0;
    int m_nPosX = 0;
    int m_nPosY = 0;
    int m_nFontSize = 12;

    /// A place needs two parts, each 0 when it is no number; a missing or malformed font size becomes 0.
    void read(const OptionReader& config);
    QString write() const;
};

}  // namespace DrawingConfigText

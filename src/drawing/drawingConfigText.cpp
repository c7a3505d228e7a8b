#include "drawing/drawingConfigText.h"

#include "optionText.h"

#include <QStringList>

namespace {

/// Part index of a text that was split at commas; value stays when the part is missing or no number.
void partInto(int& value, const QStringList& parts, int index)
{
    bool ok = false;
    const int number = index < parts.size() ? parts.at(index).toInt(&ok, 10) : 0;
    if (ok)
        value = number;
}

void flagInto(bool& flag, const OptionReader& config, const char* tag)
{
    if (config.number(tag) == 1)
        flag = true;
}

}  // namespace

namespace DrawingConfigText {

void ImageConfig::read(const OptionReader& config)
{
    config.numberInto(m_nScaleType, "Scale");
    config.numberInto(m_nAlignType, "Pos");
}

void GrayConfig::read(const OptionReader& config)
{
    m_cImage.read(config);
    const OptionReader mode = config.nested("DrawMode");
    mode.numberInto(m_nLapped, "Lapped");
    const QStringList mask = mode.text("Mask").split(QLatin1Char(','), Qt::KeepEmptyParts);
    partInto(m_nMaskVal, mask, 0);
    partInto(m_nMaskColor, mask, 1);
    mode.numberInto(m_nDrawMode, "Val");
}

void PointsConfig::read(const OptionReader& config)
{
    config.numberInto(m_nSize, "Size");
    config.numberInto(m_nColor, "Color");
}

void LinesConfig::read(const OptionReader& config)
{
    config.numberInto(m_nSize, "Size");
    flagInto(m_bDisplayLength, config, "DspLen");
    config.numberInto(m_nColor, "Color");
}

void PolysConfig::read(const OptionReader& config)
{
    config.numberInto(m_nBorderSize, "BorderSize");
    config.numberInto(m_nBorderColor, "BorderColor");
    flagInto(m_bDisplayArea, config, "DspArea");
}

void AreasConfig::read(const OptionReader& config)
{
    flagInto(m_bDisplayArea, config, "DspArea");
    config.numberInto(m_nColor, "Color");
}

void StringsConfig::read(const OptionReader& config)
{
    config.numberInto(m_nColor, "Color");
    const QStringList place = config.text("Pos").split(QLatin1Char(','), Qt::KeepEmptyParts);
    if (place.size() >= 2) {
        m_nPosX = place.at(0).toInt();
        m_nPosY = place.at(1).toInt();
    }
    // Kept on purpose: without a font size the text gets size 0, not the default.
    m_nFontSize = config.numberOrZero("FontSize");
}

}  // namespace DrawingConfigText

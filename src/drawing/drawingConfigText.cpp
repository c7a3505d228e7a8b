#include "drawing/drawingConfigText.h"

#include "optionText.h"

#include <QStringList>

namespace {

/// Part index of a text that was split at commas; value stays when the part is missing or no number.
void partInto(int& value, const QStringList& parts, int index)
{
    bool ok = false;
    const int number = parts.value(index).toInt(&ok, 10);
    if (ok)
        value = number;
}

void flagInto(bool& flag, const OptionReader& config, const char* tag)
{
    if (config.number(tag) == 1)
        flag = true;
}

QString pair(int first, int second)
{
    return QString::number(first) + QLatin1Char(',') + QString::number(second);
}

}  // namespace

namespace DrawingConfigText {

void ImageConfig::read(const OptionReader& config)
{
    config.numberInto(m_nScaleType, "Scale");
    config.numberInto(m_nAlignType, "Pos");
}

QString ImageConfig::write() const
{
    return OptionWriter().number("Scale", m_nScaleType).number("Pos", m_nAlignType).result();
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

QString GrayConfig::write() const
{
    OptionWriter mode;
    if (m_nDrawMode == 1)
        mode.number("Lapped", m_nLapped);
    else if (m_nDrawMode == 2)
        mode.text("Mask", pair(m_nMaskVal, m_nMaskColor));
    mode.number("Val", m_nDrawMode);
    return m_cImage.write() + OptionWriter().text("DrawMode", mode.result()).result();
}

void PointsConfig::read(const OptionReader& config)
{
    config.numberInto(m_nSize, "Size");
    config.numberInto(m_nColor, "Color");
}

QString PointsConfig::write() const
{
    return OptionWriter().number("Size", m_nSize).number("Color", m_nColor).result();
}

void LinesConfig::read(const OptionReader& config)
{
    config.numberInto(m_nSize, "Size");
    flagInto(m_bDisplayLength, config, "DspLen");
    config.numberInto(m_nColor, "Color");
}

QString LinesConfig::write() const
{
    OptionWriter writer;
    writer.number("Size", m_nSize).number("DspLen", m_bDisplayLength ? 1 : 0).number("Color", m_nColor);
    return writer.result();
}

void PolysConfig::read(const OptionReader& config)
{
    config.numberInto(m_nBorderSize, "BorderSize");
    config.numberInto(m_nBorderColor, "BorderColor");
    flagInto(m_bDisplayArea, config, "DspArea");
}

QString PolysConfig::write() const
{
    OptionWriter writer;
    writer.number("BorderSize", m_nBorderSize).number("BorderColor", m_nBorderColor);
    return writer.number("DspArea", m_bDisplayArea ? 1 : 0).result();
}

void AreasConfig::read(const OptionReader& config)
{
    flagInto(m_bDisplayArea, config, "DspArea");
    config.numberInto(m_nColor, "Color");
}

QString AreasConfig::write() const
{
    return OptionWriter().number("DspArea", m_bDisplayArea ? 1 : 0).number("Color", m_nColor).result();
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

QString StringsConfig::write() const
{
    OptionWriter writer;
    writer.number("Color", m_nColor).text("Pos", pair(m_nPosX, m_nPosY)).number("FontSize", m_nFontSize);
    return writer.result();
}

}  // namespace DrawingConfigText

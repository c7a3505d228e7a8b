#include "drawing/drawing.h"

#include "drawing/drawingConfigText.h"
#include "drawing/imageDrawingOpt.h"
#include "drawing/shapeDrawingOpt.h"
#include "globalFunction.h"
#include "optionText.h"
#include "paramStore/arithmParamMgr.h"
#include "resultText.h"
#include "threadGuards.h"

#include <memory>

namespace {

using Option = std::unique_ptr<Drawing::DrawingOpt>;

/// The configuration that a <Config> element describes; the defaults when it is empty.
template <typename Config>
Config readConfig(const OptionReader& reader)
{
    Config config;
    if (!reader.isEmpty())
        config.read(reader);
    return config;
}

void apply(const DrawingConfigText::ImageConfig& config, Drawing::ImageDrawingOpt& option)
{
    option.setScaleType(config.m_nScaleType);
    option.setAlignType(config.m_nAlignType);
}

void apply(const DrawingConfigText::GrayConfig& config, Drawing::GrayDrawingOpt& option)
{
    apply(config.m_cImage, option);
    option.setDrawMode(config.m_nDrawMode);
    option.setLapped(config.m_nLapped);
    option.setMaskVal(config.m_nMaskVal);
    option.setMaskColor(config.m_nMaskColor);
}

void apply(const DrawingConfigText::PointsConfig& config, Drawing::PointsDrawingOpt& option)
{
    option.setSize(config.m_nSize);
    option.setColor(config.m_nColor);
}

void apply(const DrawingConfigText::LinesConfig& config, Drawing::LinesDrawingOpt& option)
{
    option.setSize(config.m_nSize);
    option.setColor(config.m_nColor);
    option.setDisplayLength(config.m_bDisplayLength);
}

void apply(const DrawingConfigText::PolysConfig& config, Drawing::PolysDrawingOpt& option)
{
    option.setBorderSize(config.m_nBorderSize);
    option.setBorderColor(config.m_nBorderColor);
    option.setDisplayArea(config.m_bDisplayArea);
}

void apply(const DrawingConfigText::AreasConfig& config, Drawing::AreasDrawingOpt& option)
{
    option.setColor(config.m_nColor);
    option.setDisplayArea(config.m_bDisplayArea);
}

void apply(const DrawingConfigText::StringsConfig& config, Drawing::StringsDrawingOpt& option)
{
    option.setColor(config.m_nColor);
    option.setPos(config.m_nPosX, config.m_nPosY);
    option.setFontSize(config.m_nFontSize);
}

/// An option with a copy of a record's pixels; null when there is no record.
template <typename Kind, typename Config, typename Record, typename Sample>
Option pictureOption(int id, const OptionReader& reader, const Record* record, Sample* (Record::*pixels)() const)
{
    if (!record)
        return nullptr;
    auto option = std::make_unique<Kind>(id, (record->*pixels)(), record->getWidth(), record->getHeight());
    apply(readConfig<Config>(reader), *option);
    return option;
}

template <typename Kind, typename Config>
Option shapeOption(int id, const OptionReader& reader)
{
    auto option = std::make_unique<Kind>(id);
    apply(readConfig<Config>(reader), *option);
    return option;
}

/// Null for an unknown kind, and for a picture that the store does not hold.
Option makeOption(int dataType, int id, const OptionReader& config, const ArithmParamMgr* store)
{
    using namespace DrawingConfigText;
    switch (dataType) {
    case ColourImage:
        return pictureOption<Drawing::DIBDrawingOpt, ImageConfig>(id, config, store ? store->findParamDIB(id) : nullptr,
                                                                  &ParamDIB::getDIB);
    case Gray8Image:
        return pictureOption<Drawing::Gray8DrawingOpt, GrayConfig>(
            id, config, store ? store->findParamGray8(id) : nullptr, &ParamGray8::getGray8);
    case Gray16Image:
        return pictureOption<Drawing::Gray16DrawingOpt, GrayConfig>(
            id, config, store ? store->findParamGray16(id) : nullptr, &ParamGray16::getGray16);
    case Points:
        return shapeOption<Drawing::PointsDrawingOpt, PointsConfig>(id, config);
    case Lines:
        return shapeOption<Drawing::LinesDrawingOpt, LinesConfig>(id, config);
    case Polys:
        return shapeOption<Drawing::PolysDrawingOpt, PolysConfig>(id, config);
    case Areas:
        return shapeOption<Drawing::AreasDrawingOpt, AreasConfig>(id, config);
    case Strings:
        return shapeOption<Drawing::StringsDrawingOpt, StringsConfig>(id, config);
    default:
        return nullptr;
    }
}

/// Hands an option to its view; without such a view it ends here.
void queueForView(Option option)
{
    Option pushedOut;  // deleted after the locks
    const ViewRecord record(option->getViewID());
    if (!record)
        return;
    const ThreadGuards::MutexGuard guard(record->m_cMutex);
    pushedOut = record->append(std::move(option));
}

}  // namespace

const char* Drawing::s_ID = "KW_Drawing";
thread_local std::unique_ptr<char[]> Drawing::s_pchConfigStr;
thread_local int Drawing::s_nBuffLen = 1024;

QString Drawing::getName()
{
    return QStringLiteral("绘制对象");
}

QString Drawing::getClass()
{
    return QStringLiteral("系统");
}

const char* Drawing::getID()
{
    return s_ID;
}

char* Drawing::execute(char* option, ArithmParamMgr* store)
{
    Option parsed(parseConfigString(QString::fromUtf8(option), store));
    if (parsed) {
        parsed->setParamMgr(store);
        queueForView(std::move(parsed));
    }
    QString success;
    return transConfigStr(success);
}

Drawing::DrawingOpt* Drawing::parseConfigString(QString text, ArithmParamMgr* store)
{
    const OptionReader reader(text);
    const std::optional<int> dataType = reader.number("DataType");
    const std::optional<int> id = reader.number("DataID");
    if (!dataType || !id)
        return nullptr;
    Option option = makeOption(*dataType, *id, reader.nested("Config"), store);
    if (option)
        option->setViewID(reader.numberOrZero("View"));
    return option.release();
}

char* Drawing::transConfigStr(QString& text)
{
    return putResultText(s_pchConfigStr, s_nBuffLen, text);
}

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

Option colourOption(int id, const OptionReader& reader, const ArithmParamMgr* store)
{
    const ParamDIB* record = store ? store->findParamDIB(id) : nullptr;
    if (!record)
        return nullptr;
    auto option =
        std::make_unique<Drawing::DIBDrawingOpt>(id, record->getDIB(), record->getWidth(), record->getHeight());
    apply(readConfig<DrawingConfigText::ImageConfig>(reader), *option);
    return option;
}

Option gray8Option(int id, const OptionReader& reader, const ArithmParamMgr* store)
{
    const ParamGray8* record = store ? store->findParamGray8(id) : nullptr;
    if (!record)
        return nullptr;
    auto option =
        std::make_unique<Drawing::Gray8DrawingOpt>(id, record->getGray8(), record->getWidth(), record->getHeight());
    apply(readConfig<DrawingConfigText::GrayConfig>(reader), *option);
    return option;
}

Option gray16Option(int id, const OptionReader& reader, const ArithmParamMgr* store)
{
    const ParamGray16* record = store ? store->findParamGray16(id) : nullptr;
    if (!record)
        return nullptr;
    auto option =
        std::make_unique<Drawing::Gray16DrawingOpt>(id, record->getGray16(), record->getWidth(), record->getHeight());
    apply(readConfig<DrawingConfigText::GrayConfig>(reader), *option);
    return option;
}

Option pointsOption(int id, const OptionReader& reader)
{
    const auto config = readConfig<DrawingConfigText::PointsConfig>(reader);
    auto option = std::make_unique<Drawing::PointsDrawingOpt>(id);
    option->setSize(config.m_nSize);
    option->setColor(config.m_nColor);
    return option;
}

Option linesOption(int id, const OptionReader& reader)
{
    const auto config = readConfig<DrawingConfigText::LinesConfig>(reader);
    auto option = std::make_unique<Drawing::LinesDrawingOpt>(id);
    option->setSize(config.m_nSize);
    option->setColor(config.m_nColor);
    option->setDisplayLength(config.m_bDisplayLength);
    return option;
}

Option polysOption(int id, const OptionReader& reader)
{
    const auto config = readConfig<DrawingConfigText::PolysConfig>(reader);
    auto option = std::make_unique<Drawing::PolysDrawingOpt>(id);
    option->setBorderSize(config.m_nBorderSize);
    option->setBorderColor(config.m_nBorderColor);
    option->setDisplayArea(config.m_bDisplayArea);
    return option;
}

Option areasOption(int id, const OptionReader& reader)
{
    const auto config = readConfig<DrawingConfigText::AreasConfig>(reader);
    auto option = std::make_unique<Drawing::AreasDrawingOpt>(id);
    option->setColor(config.m_nColor);
    option->setDisplayArea(config.m_bDisplayArea);
    return option;
}

Option stringsOption(int id, const OptionReader& reader)
{
    const auto config = readConfig<DrawingConfigText::StringsConfig>(reader);
    auto option = std::make_unique<Drawing::StringsDrawingOpt>(id);
    option->setColor(config.m_nColor);
    option->setPos(config.m_nPosX, config.m_nPosY);
    option->setFontSize(config.m_nFontSize);
    return option;
}

/// Null for an unknown kind, and for a picture that the store does not hold.
Option makeOption(int dataType, int id, const OptionReader& config, const ArithmParamMgr* store)
{
    switch (dataType) {
    case DrawingConfigText::ColourImage:
        return colourOption(id, config, store);
    case DrawingConfigText::Gray8Image:
        return gray8Option(id, config, store);
    case DrawingConfigText::Gray16Image:
        return gray16Option(id, config, store);
    case DrawingConfigText::Points:
        return pointsOption(id, config);
    case DrawingConfigText::Lines:
        return linesOption(id, config);
    case DrawingConfigText::Polys:
        return polysOption(id, config);
    case DrawingConfigText::Areas:
        return areasOption(id, config);
    case DrawingConfigText::Strings:
        return stringsOption(id, config);
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

// There is no window to edit the text in: the empty text says that the user cancelled, so the step keeps its text.
char* Drawing::showConfigWindow(char* /*option*/, ArithmParamMgr* /*store*/, bool)
{
    QString cancelled;
    return transConfigStr(cancelled);
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

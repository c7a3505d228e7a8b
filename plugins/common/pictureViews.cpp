#include "pictureViews.h"

#include "messages.h"

#include <paramStore/pictureLayout.h>

namespace {

cv::Mat viewOf(const ParamDIB& record)
{
    if (!record.getDIB())
        return cv::Mat();
    const auto stride = static_cast<std::size_t>(PictureLayout::colourStride(record.getWidth()));
    return cv::Mat(record.getHeight(), record.getWidth(), CV_8UC3, record.getDIB(), stride);
}

cv::Mat viewOf(const ParamGray8& record)
{
    if (!record.getGray8())
        return cv::Mat();
    return cv::Mat(record.getHeight(), record.getWidth(), CV_8UC1, record.getGray8());
}

cv::Mat viewOf(const ParamGray16& record)
{
    if (!record.getGray16())
        return cv::Mat();
    return cv::Mat(record.getHeight(), record.getWidth(), CV_16UC1, record.getGray16());
}

InputView failure(const QString& error)
{
    return {cv::Mat(), error};
}

/// Why there is no record of the wanted kind: the identifier is unknown, or another kind of picture has it.
QString explainMissing(const ArithmParamMgr& store, const PictureRef& input)
{
    const PictureKind other = input.kind == PictureKind::Gray ? PictureKind::Colour : PictureKind::Gray;
    const bool found = other == PictureKind::Colour ? store.findParamDIB(input.id) != nullptr
                                                    : store.findParamGray8(input.id) != nullptr;
    return found ? Messages::inputOfOtherKind(input.id, pictureKindName(other), pictureKindName(input.kind))
                 : Messages::inputMissing(input.id);
}

template <typename Record>
InputView viewFound(const ArithmParamMgr& store, const PictureRef& input, const Record* record)
{
    if (!record)
        return failure(explainMissing(store, input));
    InputView view{viewOf(*record), QString()};
    return view.mat.empty() ? failure(Messages::inputEmpty(input.id)) : view;
}

}  // namespace

InputView viewInput(const ArithmParamMgr& store, const PictureRef& input)
{
    if (input.id < 1)
        return failure(Messages::noInputChosen());
    return input.kind == PictureKind::Colour ? viewFound(store, input, store.findParamDIB(input.id))
                                             : viewFound(store, input, store.findParamGray8(input.id));
}

cv::Mat viewOutput(ParamDIB& record, cv::Size size)
{
    record.resize(size.width, size.height);
    return viewOf(record);
}

cv::Mat viewOutput(ParamGray8& record, cv::Size size)
{
    record.resize(size.width, size.height);
    return viewOf(record);
}

cv::Mat viewOutput(ParamGray16& record, cv::Size size)
{
    record.resize(size.width, size.height);
    return viewOf(record);
}

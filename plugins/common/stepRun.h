#pragma once

#include "messages.h"
#include "pictureViews.h"

/// The two shapes of a step: from a picture to a picture, and from a picture to a list. Both give the result text.
namespace StepRun {

/**
 * @param get the store's getter of the output's kind
 * @param fill called with the output, of the input's size, and the input
 */
template <typename Record, typename Fill>
QString makePicture(ArithmParamMgr& store, const PictureRef& inputRef, const OutputRef& outputRef,
                    Record* (ArithmParamMgr::*get)(int), Fill fill)
{
    const InputView input = viewInput(store, inputRef);
    if (!input.error.isEmpty())
        return input.error;
    Record* record = outputRef.open(store, get);
    if (!record)
        return Messages::notConfigured();
    cv::Mat output = viewOutput(*record, input.mat.size());
    if (output.empty())
        return Messages::noMemory(outputRef.id);
    fill(output, input.mat);
    return QString();
}

/// @param find called with the input; gives the whole new list
template <typename Record, typename Find>
QString makeList(ArithmParamMgr& store, const PictureRef& inputRef, const OutputRef& outputRef,
                 Record* (ArithmParamMgr::*get)(int), Find find)
{
    const InputView input = viewInput(store, inputRef);
    if (!input.error.isEmpty())
        return input.error;
    Record* record = outputRef.open(store, get);
    if (!record)
        return Messages::notConfigured();
    record->replaceAll(find(input.mat));
    return QString();
}

}  // namespace StepRun

#include "thresholdDialog.h"
#include "thresholdOption.h"

#include <lumivant/algorithm.h>
#include <messages.h>
#include <pictureViews.h>
#include <stepEntry.h>

#include <opencv2/imgproc.hpp>

namespace {

void thresholdInto(cv::Mat& output, const cv::Mat& input, const ThresholdOption& option)
{
    const int type = option.invert ? cv::THRESH_BINARY_INV : cv::THRESH_BINARY;
    if (option.method == ThresholdOption::Fixed)
        cv::threshold(input, output, option.value, 255, type);
    else if (option.method == ThresholdOption::Otsu)
        cv::threshold(input, output, 0, 255, type | cv::THRESH_OTSU);
    else
        cv::adaptiveThreshold(input, output, 255, cv::ADAPTIVE_THRESH_MEAN_C, type, option.blockSize, option.offset);
}

QString threshold(const QString& text, ArithmParamMgr& store)
{
    const ThresholdOption option = ThresholdOption::read(text);
    const InputView input = viewInput(store, option.input);
    if (!input.error.isEmpty())
        return input.error;
    ParamGray8* record = option.output.open(store, &ArithmParamMgr::getParamGray8);
    if (!record)
        return Messages::notConfigured();
    cv::Mat output = viewOutput(*record, input.mat.size());
    if (output.empty())
        return Messages::noMemory(option.output.id);
    thresholdInto(output, input.mat, option);
    return QString();
}

}  // namespace

const char* getID()
{
    return "LV_Threshold";
}

const char* getArithmClass()
{
    return "图像处理";
}

const char* getArithmName()
{
    return "二值化";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<ThresholdDialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &threshold);
}

#include "thresholdDialog.h"
#include "thresholdOption.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

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
    return StepRun::makePicture(
        store, option.input, option.output, &ArithmParamMgr::getParamGray8,
        [&option](cv::Mat& output, const cv::Mat& input) { thresholdInto(output, input, option); });
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

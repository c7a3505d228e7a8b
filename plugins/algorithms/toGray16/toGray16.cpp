#include "toGray16Dialog.h"
#include "toGray16Option.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

#include <opencv2/imgproc.hpp>

namespace {

/// From 8 to 16 bits by 257, so that black stays 0 and white becomes 65535.
constexpr double FullScale = 257;
static_assert(255 * FullScale == 65535);

QString toGray16(const QString& text, ArithmParamMgr& store)
{
    const ToGray16Option option = ToGray16Option::read(text);
    return StepRun::makePicture(store, option.input, option.output, &ArithmParamMgr::getParamGray16,
                                [](cv::Mat& output, const cv::Mat& input) {
                                    cv::Mat gray;
                                    cv::cvtColor(input, gray, cv::COLOR_BGR2GRAY);
                                    gray.convertTo(output, CV_16U, FullScale);
                                });
}

}  // namespace

const char* getID()
{
    return "LV_ToGray16";
}

const char* getArithmClass()
{
    return "图像处理";
}

const char* getArithmName()
{
    return "彩色转16位灰度";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<ToGray16Dialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &toGray16);
}

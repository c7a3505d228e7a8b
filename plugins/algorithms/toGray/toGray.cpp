#include "toGrayDialog.h"
#include "toGrayOption.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

#include <opencv2/imgproc.hpp>

namespace {

QString toGray(const QString& text, ArithmParamMgr& store)
{
    const ToGrayOption option = ToGrayOption::read(text);
    return StepRun::makePicture(
        store, option.input, option.output, &ArithmParamMgr::getParamGray8,
        [](cv::Mat& output, const cv::Mat& input) { cv::cvtColor(input, output, cv::COLOR_BGR2GRAY); });
}

}  // namespace

const char* getID()
{
    return "LV_ToGray";
}

const char* getArithmClass()
{
    return "图像处理";
}

const char* getArithmName()
{
    return "彩色转灰度";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<ToGrayDialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &toGray);
}

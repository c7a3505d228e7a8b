#include "blurDialog.h"
#include "blurOption.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

#include <opencv2/imgproc.hpp>

namespace {

void blurInto(cv::Mat& output, const cv::Mat& input, const BlurOption& option)
{
    const cv::Size window(option.size, option.size);
    if (option.method == BlurOption::Box)
        cv::blur(input, output, window);
    else if (option.method == BlurOption::Gauss)
        cv::GaussianBlur(input, output, window, 0);
    else
        cv::medianBlur(input, output, option.size);
}

QString blur(const QString& text, ArithmParamMgr& store)
{
    const BlurOption option = BlurOption::read(text);
    const auto fill = [&option](cv::Mat& output, const cv::Mat& input) { blurInto(output, input, option); };
    return option.input.kind == PictureKind::Colour
               ? StepRun::makePicture(store, option.input, option.output, &ArithmParamMgr::getParamDIB, fill)
               : StepRun::makePicture(store, option.input, option.output, &ArithmParamMgr::getParamGray8, fill);
}

}  // namespace

const char* getID()
{
    return "LV_Blur";
}

const char* getArithmClass()
{
    return "图像处理";
}

const char* getArithmName()
{
    return "模糊";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<BlurDialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &blur);
}

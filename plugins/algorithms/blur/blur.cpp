#include "blurDialog.h"
#include "blurOption.h"

#include <lumivant/algorithm.h>
#include <messages.h>
#include <pictureViews.h>
#include <stepEntry.h>

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

template <typename Record>
QString blurRecord(const cv::Mat& input, Record* record, const BlurOption& option)
{
    if (!record)
        return Messages::notConfigured();
    cv::Mat output = viewOutput(*record, input.size());
    if (output.empty())
        return Messages::noMemory(option.output.id);
    blurInto(output, input, option);
    return QString();
}

QString blur(const QString& text, ArithmParamMgr& store)
{
    const BlurOption option = BlurOption::read(text);
    const InputView input = viewInput(store, option.input);
    if (!input.error.isEmpty())
        return input.error;
    return option.input.kind == PictureKind::Colour
               ? blurRecord(input.mat, option.output.open(store, &ArithmParamMgr::getParamDIB), option)
               : blurRecord(input.mat, option.output.open(store, &ArithmParamMgr::getParamGray8), option);
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

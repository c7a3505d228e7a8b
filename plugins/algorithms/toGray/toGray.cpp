#include "toGrayDialog.h"
#include "toGrayOption.h"

#include <lumivant/algorithm.h>
#include <messages.h>
#include <pictureViews.h>
#include <stepEntry.h>

#include <opencv2/imgproc.hpp>

namespace {

QString toGray(const QString& text, ArithmParamMgr& store)
{
    const ToGrayOption option = ToGrayOption::read(text);
    const InputView input = viewInput(store, option.input);
    if (!input.error.isEmpty())
        return input.error;
    ParamGray8* record = option.output.open(store, &ArithmParamMgr::getParamGray8);
    if (!record)
        return Messages::notConfigured();
    cv::Mat output = viewOutput(*record, input.mat.size());
    if (output.empty())
        return Messages::noMemory(option.output.id);
    cv::cvtColor(input.mat, output, cv::COLOR_BGR2GRAY);
    return QString();
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

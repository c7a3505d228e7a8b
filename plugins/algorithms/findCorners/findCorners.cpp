#include "findCornersDialog.h"
#include "findCornersOption.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

#include <opencv2/imgproc.hpp>

namespace {

QVector<ParamPoints::Point> findCorners(const cv::Mat& input, const FindCornersOption& option)
{
    std::vector<cv::Point2f> found;
    cv::goodFeaturesToTrack(input, found, option.maxCount, option.quality / 100.0, option.minDistance);
    QVector<ParamPoints::Point> points;
    points.reserve(static_cast<int>(found.size()));
    for (const cv::Point2f& point : found)
        points.append({cvRound(point.x), cvRound(point.y)});
    return points;
}

QString findCornersStep(const QString& text, ArithmParamMgr& store)
{
    const FindCornersOption option = FindCornersOption::read(text);
    return StepRun::makeList(store, option.input, option.output, &ArithmParamMgr::getParamPoints,
                             [&option](const cv::Mat& input) { return findCorners(input, option); });
}

}  // namespace

const char* getID()
{
    return "LV_FindCorners";
}

const char* getArithmClass()
{
    return "目标检测";
}

const char* getArithmName()
{
    return "查找角点";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<FindCornersDialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &findCornersStep);
}

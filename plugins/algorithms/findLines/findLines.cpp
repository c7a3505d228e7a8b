#include "findLinesDialog.h"
#include "findLinesOption.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

#include <opencv2/imgproc.hpp>

namespace {

QVector<ParamLines::Line> findLines(const cv::Mat& input, const FindLinesOption& option)
{
    cv::Mat edges;
    cv::Canny(input, edges, option.lowEdge, option.highEdge);
    std::vector<cv::Vec4i> found;
    cv::HoughLinesP(edges, found, 1, CV_PI / 180, option.votes, option.minLength, option.maxGap);
    QVector<ParamLines::Line> lines;
    lines.reserve(static_cast<int>(found.size()));
    for (const cv::Vec4i& line : found)
        lines.append({line[0], line[1], line[2], line[3]});
    return lines;
}

QString findLinesStep(const QString& text, ArithmParamMgr& store)
{
    const FindLinesOption option = FindLinesOption::read(text);
    return StepRun::makeList(store, option.input, option.output, &ArithmParamMgr::getParamLines,
                             [&option](const cv::Mat& input) { return findLines(input, option); });
}

}  // namespace

const char* getID()
{
    return "LV_FindLines";
}

const char* getArithmClass()
{
    return "目标检测";
}

const char* getArithmName()
{
    return "查找直线";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<FindLinesDialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &findLinesStep);
}

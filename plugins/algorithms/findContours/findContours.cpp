#include "findContoursDialog.h"
#include "findContoursOption.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

#include <opencv2/imgproc.hpp>

namespace {

ParamPolys::Poly polygonOf(const std::vector<cv::Point>& contour, int tolerance)
{
    std::vector<cv::Point> corners;
    cv::approxPolyDP(contour, corners, tolerance, true);
    ParamPolys::Poly poly;
    poly.reserve(static_cast<int>(corners.size()));
    for (const cv::Point& corner : corners)
        poly.append({corner.x, corner.y});
    return poly;
}

QVector<ParamPolys::Poly> findContours(const cv::Mat& input, const FindContoursOption& option)
{
    std::vector<std::vector<cv::Point>> contours;
    cv::findContours(input, contours, cv::RETR_EXTERNAL, cv::CHAIN_APPROX_SIMPLE);
    QVector<ParamPolys::Poly> polys;
    for (const std::vector<cv::Point>& contour : contours) {
        if (cv::contourArea(contour) < option.minSize)
            continue;
        const ParamPolys::Poly poly = polygonOf(contour, option.tolerance);
        if (poly.size() >= option.minPoints)
            polys.append(poly);
    }
    return polys;
}

QString findContoursStep(const QString& text, ArithmParamMgr& store)
{
    const FindContoursOption option = FindContoursOption::read(text);
    return StepRun::makeList(store, option.input, option.output, &ArithmParamMgr::getParamPolys,
                             [&option](const cv::Mat& input) { return findContours(input, option); });
}

}  // namespace

const char* getID()
{
    return "LV_FindContours";
}

const char* getArithmClass()
{
    return "目标检测";
}

const char* getArithmName()
{
    return "查找轮廓";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<FindContoursDialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &findContoursStep);
}

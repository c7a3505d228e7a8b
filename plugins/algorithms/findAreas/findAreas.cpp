#include "findAreasDialog.h"
#include "findAreasOption.h"

#include <lumivant/algorithm.h>
#include <stepEntry.h>
#include <stepRun.h>

#include <opencv2/imgproc.hpp>

namespace {

QVector<ParamAreas::Area> findAreas(const cv::Mat& input, const FindAreasOption& option)
{
    cv::Mat labels, stats, centroids;
    const int count = cv::connectedComponentsWithStats(input, labels, stats, centroids, 8, CV_32S);
    QVector<ParamAreas::Area> areas;
    for (int i = 1; i < count; ++i) {  // 0 is the background
        const int* stat = stats.ptr<int>(i);
        const int size = stat[cv::CC_STAT_AREA];
        if (size < option.minSize || (option.maxSize > 0 && size > option.maxSize))
            continue;
        const int left = stat[cv::CC_STAT_LEFT];
        const int top = stat[cv::CC_STAT_TOP];
        const double* center = centroids.ptr<double>(i);
        areas.append({areas.size() + 1, top, top + stat[cv::CC_STAT_HEIGHT] - 1, left,
                      left + stat[cv::CC_STAT_WIDTH] - 1, cvRound(center[0]), cvRound(center[1])});
    }
    return areas;
}

QString command(const QString& body)
{
    return QStringLiteral("<CMD>") + body + QStringLiteral("</CMD>");
}

/// How the pass goes on after so many areas.
QString commandsFor(int count, const FindAreasOption& option)
{
    QString commands;
    if (option.print)
        commands += command(QStringLiteral("print:找到 %1 个区域.").arg(count));
    if (count > 0 || option.whenNone == FindAreasOption::GoOn)
        return commands;
    if (option.whenNone == FindAreasOption::Stop)
        return commands + command(QStringLiteral("stop:没有找到区域."));
    // "skip:1" runs the next step, so leaving out n steps is n + 1.
    return commands + command(QStringLiteral("skip:%1").arg(option.skipSteps + 1));
}

QString findAreasStep(const QString& text, ArithmParamMgr& store)
{
    const FindAreasOption option = FindAreasOption::read(text);
    int count = 0;
    const QString error =
        StepRun::makeList(store, option.input, option.areas, &ArithmParamMgr::getParamAreas, [&](const cv::Mat& input) {
            const QVector<ParamAreas::Area> areas = findAreas(input, option);
            count = areas.size();
            return areas;
        });
    if (!error.isEmpty())
        return error;
    ParamStrings* countRecord = option.count.open(store, &ArithmParamMgr::getParamStrings);
    if (!countRecord)
        return Messages::notConfigured();
    // Drawn as Latin-1, so the text is plain ASCII.
    countRecord->replaceAll({"Areas: " + QByteArray::number(count)});
    return commandsFor(count, option);
}

}  // namespace

const char* getID()
{
    return "LV_FindAreas";
}

const char* getArithmClass()
{
    return "目标检测";
}

const char* getArithmName()
{
    return "查找区域";
}

char* showConfigWindow(char* option, ArithmParamMgr* store, bool)
{
    return StepEntry::showDialog<FindAreasDialog>(option, store);
}

char* execute(char* option, ArithmParamMgr* store)
{
    return StepEntry::execute(option, store, &findAreasStep);
}

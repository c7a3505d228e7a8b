#include "stepEntry.h"

#include "messages.h"

#include <opencv2/core.hpp>
#include <opencv2/core/utility.hpp>

#include <exception>

namespace {

/**
 * Keeps OpenCV on the thread that calls it. Each task has a thread of its own, perhaps bound to one processor; a pool
 * of further threads would take the other tasks' processors and undo the binding.
 */
void useCallingThreadOnly()
{
    static const bool s_bDone = [] {
        cv::setNumThreads(1);
        return true;
    }();
    Q_UNUSED(s_bDone)
}

QString runReporting(const char* option, ArithmParamMgr& store, StepEntry::Run run)
{
    try {
        useCallingThreadOnly();
        return run(StepEntry::optionText(option), store);
    } catch (const cv::Exception& problem) {
        return Messages::failed(QString::fromStdString(problem.err));
    } catch (const std::exception& problem) {
        return Messages::failed(QString::fromLocal8Bit(problem.what()));
    } catch (...) {
        return Messages::failed(QString());
    }
}

}  // namespace

QString StepEntry::optionText(const char* option)
{
    return QString::fromUtf8(option);
}

char* StepEntry::execute(char* option, ArithmParamMgr* store, Run run)
{
    return guarded([&] { return keepText(store ? runReporting(option, *store, run) : Messages::noStore()); });
}

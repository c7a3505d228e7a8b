#pragma once

#include <QString>

#include <atomic>

class ArithmParamMgr;
struct SavingOption;

/// The running number of every saving step of every task: the next one to be used. Never reset.
extern std::atomic<int> gNumber;

/// Where a saving step writes its file. Any thread.
namespace SavingName {

/**
 * The full path of the next file of a step.
 *
 * Takes a running number when the step wants one, and makes the last level of the base folder when it is missing.
 * @param store borrowed; looked into for the string record only; may be null
 */
QString nextPath(const SavingOption& option, const ArithmParamMgr* store);

}  // namespace SavingName

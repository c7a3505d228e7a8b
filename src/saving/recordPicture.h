#pragma once

class ArithmParamMgr;
class QImage;
struct SavingOption;

/// The picture record that a saving step writes. The task's thread only.
namespace RecordPicture {

/**
 * The picture of the step's record; null when the step names none, its type is unknown, or the record is missing or
 * empty. Borrows the record's bytes where their layout allows it, so the record has to stay as it is meanwhile.
 *
 * Kept on purpose: a colour record is left with the first and third byte of its pixels exchanged, so that saving it
 * twice writes red and blue exchanged the second time.
 */
QImage of(const SavingOption& option, const ArithmParamMgr& store);

}  // namespace RecordPicture

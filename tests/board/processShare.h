#pragma once

#include <QtGlobal>

/// The memory that a program takes; under an emulator the part that is the program's and not the emulator's.
namespace ProcessShare {

/// Bytes that malloc has given out and not got back.
qint64 heapBytes();

/// Bytes of memory in use: the program's own, what it mapped of its libraries, stacks of threads.
qint64 residentBytes();

}  // namespace ProcessShare

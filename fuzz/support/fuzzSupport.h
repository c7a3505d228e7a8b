#pragma once

#include <QString>

/// What the fuzz targets share.
namespace Fuzz {

/// Makes the application object, without a display, and silences the program's own output.
void startProgram();

/// Ends the process with a word about what did not hold: the fuzzer keeps the input.
void expect(bool holds, const char* what);

/// As expect, for two texts that are to be equal; shows both.
void expectEqual(const QString& found, const QString& wanted, const char* what);

/// A folder for this process alone, gone when it ends.
QString scratchFolder();

}  // namespace Fuzz

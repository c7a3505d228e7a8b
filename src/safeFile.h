#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

/// Whole project files, read and replaced. Any thread.
namespace SafeFile {

/**
 * Reads a file up to its first NUL byte or its end.
 *
 * @param bytes receives what was read; left alone on failure
 * @return false when the file is not a readable regular file or a read fails
 */
bool readUpToNul(const QString& path, QByteArray& bytes);

/**
 * Replaces a file in one step, once the new bytes are wholly on disk; a file that did not exist is made.
 *
 * @return false when anything failed; the old file is then as it was
 */
bool replaceFile(const QString& path, const QByteArray& bytes);

/// Takes bytes behind those it was given before; false when they could not be written.
using Sink = std::function<bool(const QByteArray& bytes)>;

/// The same with bytes that come piece by piece: write is called once, gives them to the sink and says whether it
/// could.
bool replaceFile(const QString& path, const std::function<bool(const Sink& sink)>& write);

}  // namespace SafeFile

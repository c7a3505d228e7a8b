#pragma once

#include <QString>

class QImage;

/// Picture files that appear under their name when they are complete. Any thread.
namespace PictureFile {

/**
 * Writes a picture in the format of the path's suffix and replaces what was there before.
 *
 * The bytes go into a hidden file of the same folder, which takes the name in one step: a reader never finds half a
 * picture, and of several writers of one name the last one wins as a whole. Whether the bytes outlast a power cut is
 * left to the file system; waiting for the disk at every pass would cost more than encoding does.
 * @return false when the suffix names no format or anything failed; an older file is then as it was
 */
bool write(const QImage& picture, const QString& path);

}  // namespace PictureFile

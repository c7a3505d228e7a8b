#pragma once

#include <QString>

/// The texts that Qt itself shows: the buttons of question boxes, file and colour dialogs.
namespace QtTexts {

/**
 * Makes them Chinese for the rest of the program, as the workbench's own texts are; call it on the window's thread once
 * the application object exists.
 *
 * @param folder where Qt keeps its translations, unless given
 * @return false where they are not installed: Qt's texts stay English then
 */
bool makeChinese(const QString& folder = QString());

}  // namespace QtTexts

#pragma once

#include <QString>

#include <memory>

class ArithmParamMgr;

/**
 * The built-in algorithm "保存图像": writes a picture record or a view's canvas to an image file at every pass.
 *
 * execute runs on task threads, showConfigWindow on the window's thread.
 */
class Saving
{
public:
    static QString getName();
    static QString getClass();
    static const char* getID();

    /**
     * Shows DlgSaveFile on an option text.
     *
     * @return the new option text, empty when the dialog was not accepted; see putResultText for how long it is valid
     */
    static char* showConfigWindow(char* option, ArithmParamMgr* store, bool);

    /// Writes the file; whatever prevents it leaves no file and is not reported. Always returns the empty text.
    static char* execute(char* option, ArithmParamMgr* store);

    /// See putResultText.
    static char* transConfigStr(QString& text);

    static const char* s_ID;
    static thread_local std::unique_ptr<char[]> s_pchConfigStr;  ///< Made on first use; also reads string records.
    static thread_local int s_nBuffLen;
};

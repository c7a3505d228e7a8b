#pragma once

#include <QString>

#include <memory>

class ArithmParamMgr;

/**
 * The built-in algorithm "加载图像": reads a picture file into a colour or grey record at every pass.
 *
 * execute runs on task threads, showConfigWindow on the window's thread.
 */
class Loading
{
public:
    static QString getName();
    static QString getClass();
    static const char* getID();

    /**
     * Shows DlgLoadFile on an option text.
     *
     * @return the new option text, empty when the dialog was not accepted; see putResultText for how long it is valid
     */
    static char* showConfigWindow(char* option, ArithmParamMgr* store, bool);

    /// Loads the picture; a file that gives none leaves the store as it was. Always returns the empty text.
    static char* execute(char* option, ArithmParamMgr* store);

    /// See putResultText.
    static char* transConfigStr(QString& text);

    static const char* s_ID;
    static thread_local std::unique_ptr<char[]> s_pchConfigStr;  ///< Made on first use.
    static thread_local int s_nBuffLen;
};

#pragma once

#include <QString>

class ArithmParamMgr;

/**
 * The handle of one algorithm, built in or from a library.
 *
 * Immutable, so any thread may call it; made by ArithmFactory, lives until the program ends. A missing entry point and
 * a null text both count as the empty text.
 */
class Arithm
{
public:
    using GetID = const char* (*)();
    using ShowConfigWindow = char* (*)(char*, ArithmParamMgr*, bool);
    using Execute = char* (*)(char*, ArithmParamMgr*);

    Arithm(bool extLib, GetID id, ShowConfigWindow configWindow, Execute run);

    bool IsExtLib() const;  ///< True for libraries of the extension folder.
    QString getID() const;

    /// Shows the algorithm's modal dialog on the option text; the new text, empty when cancelled. Window's thread.
    QString showConfigWindow(QString option, ArithmParamMgr* store) const;

    /// Runs the algorithm once; the result text. option stays as it is.
    QString execute(QString& option, ArithmParamMgr* store) const;

    /**
     * Runs the algorithm once on an option text that is UTF-8 already: what a pass calls.
     *
     * @param option writable and zero-terminated; the algorithm may scribble on it
     * @return the result text, the library's own until its next call; null counts as empty
     */
    const char* executeUtf8(char* option, ArithmParamMgr* store) const
    {
        return m_pfnExecute ? m_pfnExecute(option, store) : nullptr;
    }

private:
    GetID m_pfnGetID;
    ShowConfigWindow m_pfnShowConfigWindow;
    Execute m_pfnExecute;
    bool m_bExtLib;
};

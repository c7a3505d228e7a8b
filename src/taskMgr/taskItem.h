#pragma once

#include <QByteArray>
#include <QString>

class Arithm;

/// One step of a task: an algorithm with its option text. A plain value, copied freely.
struct TaskItem
{
    static constexpr int Unlimited = -1;         ///< Every negative count: runs in every pass.
    static constexpr int AtTaskEnd = 999999999;  ///< Never runs in a pass, but once when the task ends.
    static constexpr int NoView = -1;            ///< The option text goes to the algorithm as it is.

    int m_nMaxExeTimes = Unlimited;  ///< How many passes of one run may run this step.
    int m_nExeTimes = 0;             ///< Passes that ran it since the counters were reset; never saved.
    QString m_strArithmID;           ///< Identifier under which the algorithm is looked up.
    QString m_strOption;             ///< Option text, handed to the algorithm unchanged.
    QString m_strClassName;          ///< Menu group of the algorithm.
    QString m_strArithmName;         ///< Display name of the algorithm.
    QString m_strDescribe;           ///< The user's description; shown instead of the name when not empty.

    bool runsAtTaskEnd() const { return m_nMaxExeTimes == AtTaskEnd; }

    /**
     * What a pass keeps with the step so that it neither looks the algorithm up nor converts the text again.
     *
     * Valid while the texts it was made from still share their data with the step's; renewed otherwise.
     */
    struct Prepared
    {
        QString m_strArithmID;         ///< As it was looked up.
        QString m_strOption;           ///< As it was converted.
        int m_nView = NoView;          ///< The view in front of a drawing step's text; none for all other steps.
        Arithm* m_pcArithm = nullptr;  ///< Not owned; null until the algorithm was found.
        bool m_bDrawing = false;       ///< It is the drawing algorithm.
        QByteArray m_cUtf8;            ///< The option text, view element included.
    };
    Prepared m_cPrepared;

    bool hasArithm() const { return m_cPrepared.m_pcArithm && m_cPrepared.m_strArithmID.isSharedWith(m_strArithmID); }
    bool hasOption(int view) const
    {
        return m_cPrepared.m_nView == view && m_cPrepared.m_strOption.isSharedWith(m_strOption);
    }
};

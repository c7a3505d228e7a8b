#pragma once

#include <QString>

#include <optional>

/// The option text of a loading step.
struct LoadingOption
{
    enum PicType
    {
        Colour = 0,
        Grey = 1
    };

    QString m_strFilePath;
    QString m_strOutputName;
    QString m_strDescribe;
    bool m_bGrey = false;         ///< The picture goes into a grey record; only 1 in the text counts.
    int m_nPicType = Colour;      ///< The kind of record that the dialog made; other numbers come from foreign texts.
    std::optional<int> m_nPicID;  ///< Nothing when the text names none; see recordID and dialogID.

    static LoadingOption parse(const QString& text);
    QString text() const;

    // Kept on purpose: a step and its dialog read a missing identifier in two ways.
    int recordID() const { return m_nPicID.value_or(-1); }  ///< For a run: a missing one makes a new record each time.
    int dialogID() const { return m_nPicID.value_or(0); }   ///< For the dialog: a missing one is record 0.
};

#pragma once

#include <QString>

#include <optional>

/// The option text of a saving step.
struct SavingOption
{
    enum Identity
    {
        TimeStamp = 0,
        RunningNumber = 1  // any other number: none
    };
    static constexpr int RecordWnd = 4;  ///< m_nWnd: a picture record; below it a view pane.

    QString m_strBasePath;
    QString m_strStringID;  ///< Literal text, or the decimal identifier of a strings record.
    bool m_bStringID = false;
    QString m_strSeparator;
    int m_nIdentity = TimeStamp;
    int m_nFormat = 0;         ///< Index into ".jpg", ".png", ".bmp".
    bool m_bExchange = false;  ///< The identity part first; only 1 in the text counts.
    int m_nWnd = 0;
    QString m_strPicType;         ///< "RGB" or "Gray"; for RecordWnd only.
    std::optional<int> m_nPicID;  ///< For RecordWnd only; nothing when the text names none.

    static SavingOption parse(const QString& text);
    QString text() const;

    int stringRecordID() const { return m_strStringID.toInt(); }  ///< 0 when the text is not a number.
    int recordID() const { return m_nPicID.value_or(0); }
};

#pragma once

#include <QString>

#include <optional>

/**
 * The option text of a writing step: the target disk and the record that is written.
 *
 * Not symmetric on purpose: the dialog writes all three elements and takes back the record alone, so a reopened dialog
 * starts at disk 0.
 */
struct MemoryDiskOption
{
    std::optional<int> m_nDisk;     ///< 0 to 5; nothing when it is no number.
    std::optional<int> m_nInputID;  ///< Identifier in the store; nothing when it is no number.
    QString m_strInputType;         ///< typeRGB() or typeGray8(); with regard to case.

    static MemoryDiskOption fromText(const QString& text);
    QString toText() const;  ///< A missing number is written as 0.

    static QString typeRGB() { return QStringLiteral("RGB"); }
    static QString typeGray8() { return QStringLiteral("Gray8"); }
};

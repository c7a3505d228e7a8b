#pragma once

#include <QString>

/// One command of a step's result text: the body of a "<CMD>" element.
struct ResultCommand
{
    /// Shorter results are plain error texts and never searched for commands.
    static constexpr int MinResultLength = 5;

    enum class Kind
    {
        None,   ///< No command, or one that nobody knows: reading ends.
        Skip,   ///< "skip:n"
        Stop,   ///< "stop:text"
        Print,  ///< "print:text"
    };

    Kind m_eKind = Kind::None;
    int m_nSkip = 1;    ///< Places to go on from this step; 1, the next step, when the number does not parse.
    QString m_strText;  ///< Of "stop:" and "print:".

    /// Cuts the first command out of a result text; an unknown one is cut out too.
    static ResultCommand takeFrom(QString& result);
};

#pragma once

#include "taskMgr/taskItem.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringView>

/// What the text of one task says.
struct TaskText
{
    QString m_strName;
    int m_nKernel = 0;
    int m_nView = 0;
    QString m_strDataSource;  ///< Configuration text; empty when the task has no source.
    QList<TaskItem> m_lstSteps;
    QSet<int> m_setNamedIDs;  ///< The identifiers that the option texts of the steps name.

    /**
     * Reads the body of a task element; never fails: what is missing stays empty or zero.
     *
     * A text laid out as the program writes it is read in one pass, any other by taking its elements off it one by one;
     * both give the same for the same text. Linear in the length of the text.
     */
    static TaskText read(QStringView body);

    /// The second way alone: the definition of what read gives.
    static TaskText readByElements(QString body);

    /// Reads all tasks of a project text, up to its first NUL and to its first empty task element; in one pass where
    /// the program wrote the text.
    static QList<TaskText> readProject(const QString& text);

    /// The definition of what readProject gives: its task elements cut out one by one, each read by elements.
    static QList<TaskText> readProjectByElements(const QString& text);

    /// Called for each step when its option text has just been read, and lies near.
    void noteNamedIDs(const TaskItem& step);
};

#pragma once

#include <QStyledItemDelegate>

/**
 * Shows the whole text of a cell that its column is too narrow for, while the mouse rests on it. A cell with a tip of
 * its own keeps it; over any other cell the tip of the table comes up as usual.
 */
class WholeTextTip : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
};

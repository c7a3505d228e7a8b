#include "forms/wholeTextTip.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

bool WholeTextTip::helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                             const QModelIndex& index)
{
    const bool isTip = event->type() == QEvent::ToolTip && index.isValid();
    const bool isElided = isTip && sizeHint(option, index).width() > view->visualRect(index).width();
    if (!isElided || !index.data(Qt::ToolTipRole).toString().isEmpty())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const QString text = displayText(index.data(Qt::DisplayRole), option.locale);
    QToolTip::showText(event->globalPos(), text, view, view->visualRect(index));
    return true;
}

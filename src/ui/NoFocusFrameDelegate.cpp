#include "ui/NoFocusFrameDelegate.h"

void NoFocusFrameDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const
{
    QStyleOptionViewItem withoutFocus(option);
    withoutFocus.state &= ~QStyle::State_HasFocus;
    QStyledItemDelegate::paint(painter, withoutFocus, index);
}

#pragma once

#include <QStyledItemDelegate>

/// Draws list items without the dotted focus frame.
class NoFocusFrameDelegate : public QStyledItemDelegate
{
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    void paint(QPainter *painter, const QStyleOptionViewItem &option, const QModelIndex &index) const override;
};

#include "ui/ReadonlyLineEdit.h"

#include <QMouseEvent>

ReadonlyLineEdit::ReadonlyLineEdit(QWidget *parent) : QLineEdit(parent)
{
    setReadOnly(true);
    setContextMenuPolicy(Qt::NoContextMenu);
}

void ReadonlyLineEdit::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::RightButton)
        QLineEdit::mousePressEvent(event);
}

void ReadonlyLineEdit::mouseDoubleClickEvent(QMouseEvent *) {}

void ReadonlyLineEdit::mouseMoveEvent(QMouseEvent *) {}

#pragma once

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>

/// Moves the mouse within a widget and its buttons held as told. The toolkit's own test call only sets the
/// cursor: its event comes later, and with no button.
inline void moveMouse(QWidget &widget, QPoint position, Qt::MouseButtons held = Qt::NoButton)
{
    QMouseEvent event(QEvent::MouseMove, position, widget.mapToGlobal(position), Qt::NoButton, held, Qt::NoModifier);
    QApplication::sendEvent(&widget, &event);
}

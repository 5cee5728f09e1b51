#include "ui/SettledComboBox.h"

#include <QCursor>

void SettledComboBox::hidePopup()
{
    QComboBox::hidePopup();
    setAttribute(Qt::WA_UnderMouse, rect().contains(mapFromGlobal(QCursor::pos())));
    update();
}

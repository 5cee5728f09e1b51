#include "ui/Ovryn_ComboBox.h"

#include "ui/NoFocusFrameDelegate.h"
#include "ui/UiStyle.h"

#include <QListView>
#include <QPainter>

Ovryn_ComboBox::Ovryn_ComboBox(QWidget *parent) : QComboBox(parent)
{
    setView(new QListView(this));
    setItemDelegate(new NoFocusFrameDelegate(this));
    setStyleSheet(UiStyle::cardSelector());
    UiStyle::makePopupTranslucent(this);
}

void Ovryn_ComboBox::showPopup()
{
    if (count() <= 1)
        return;
    QComboBox::showPopup();
    popupOpen = true;
    repaint();
}

void Ovryn_ComboBox::hidePopup()
{
    QComboBox::hidePopup();
    popupOpen = false;
    repaint();
}

void Ovryn_ComboBox::resizeEvent(QResizeEvent *event)
{
    QComboBox::resizeEvent(event);
    view()->setMinimumHeight(height());
    const int pixelSize = height() / 5 * 3;
    if (pixelSize > 0)
    {
        QFont scaled = font();
        scaled.setPixelSize(pixelSize);
        setFont(scaled);
    }
}

void Ovryn_ComboBox::paintEvent(QPaintEvent *event)
{
    if (popupOpen)
        QPainter(this).fillRect(rect(), QColor(255, 255, 255, 0));
    QComboBox::paintEvent(event);
}

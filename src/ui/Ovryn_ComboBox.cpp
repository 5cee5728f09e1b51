#include "ui/Ovryn_ComboBox.h"

#include "ui/NoFocusFrameDelegate.h"
#include "ui/UiStyle.h"

#include <QListView>
#include <QPainter>

namespace
{

const QColor kPopupGlassColor(16, 3, 6, 235);

/// The style sheet makes the list transparent, and the popup's window takes its palette from the transparent box. So
/// the list itself paints the dark background of its items.
class GlassListView : public QListView
{
public:
    using QListView::QListView;

protected:
    void paintEvent(QPaintEvent *event) override
    {
        QPainter(viewport()).fillRect(viewport()->rect(), kPopupGlassColor);
        QListView::paintEvent(event);
    }
};

} // namespace

Ovryn_ComboBox::Ovryn_ComboBox(QWidget *parent) : SettledComboBox(parent)
{
    setView(new GlassListView(this));
    setItemDelegate(new NoFocusFrameDelegate(this));
    setStyleSheet(UiStyle::cardSelector());

    QWidget *popup = view()->window();
    popup->setWindowFlags(popup->windowFlags() | Qt::FramelessWindowHint | Qt::NoDropShadowWindowHint);
    popup->setAttribute(Qt::WA_TranslucentBackground);
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
    SettledComboBox::hidePopup();
    popupOpen = false;
    repaint();
}

void Ovryn_ComboBox::resizeEvent(QResizeEvent *event)
{
    QComboBox::resizeEvent(event);
    view()->setMinimumHeight(height());
    const int pixelSize = height() / 5 * 3;
    if (pixelSize > 0) {
        QFont scaled = font();
        scaled.setPixelSize(pixelSize);
        setFont(scaled);
        view()->setFont(scaled);
    }
}

void Ovryn_ComboBox::paintEvent(QPaintEvent *event)
{
    if (popupOpen)
        QPainter(this).fillRect(rect(), QColor(255, 255, 255, 0));
    QComboBox::paintEvent(event);
}

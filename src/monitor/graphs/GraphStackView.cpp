#include "monitor/graphs/GraphStackView.h"

#include "monitor/graphs/Ovryn_BaseMonitorBox.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include <algorithm>

namespace
{
constexpr int kWheelStep = 10; ///< pixels
}

int boundedScroll(int wanted, int scrollY, int contentHeight, int viewHeight)
{
    if (scrollY + wanted < 0)
        return -scrollY;
    if (scrollY + wanted > contentHeight - viewHeight)
        return contentHeight - scrollY - viewHeight;
    return wanted;
}

GraphStackView::GraphStackView(int quantityCount, int initialMask, QWidget *parent)
    : QWidget(parent), selectMask(initialMask)
{
    for (int i = 0; i < quantityCount; ++i) {
        auto *graph = new Ovryn_BaseMonitorBox(this);
        graph->installEventFilter(this);
        boxes.append(graph);
    }
}

void GraphStackView::setSelectMask(int mask)
{
    selectMask = mask;
    layOutBoxes();
    repaint();
}

void GraphStackView::setBoxTitle(int position, const QString &title)
{
    boxes.at(position)->setTitle(title);
}

void GraphStackView::addSample(int position, const NvMonitorValue &value, const QString &suffix)
{
    Ovryn_BaseMonitorBox *graph = boxes.at(position);
    graph->setRange(value.lowerLimit, value.upperLimit);
    graph->addData(value.currentValue);
    graph->setDisplayInfo(QString::number(value.currentValue) + suffix, QString::number(value.minValue) + suffix,
                          QString::number(value.maxValue) + suffix);
}

void GraphStackView::resizeEvent(QResizeEvent *)
{
    marginX = width() / 20;
    boxWidth = width() - 2 * marginX;
    boxHeight = height() / 2;
    layOutBoxes();
}

void GraphStackView::layOutBoxes()
{
    int shown = 0;
    for (int i = 0; i < boxes.size(); ++i) {
        const bool chosen = (selectMask & (1 << i)) != 0;
        if (chosen)
            boxes.at(i)->setGeometry(marginX, boxHeight * shown++, boxWidth, boxHeight);
        boxes.at(i)->setVisible(chosen);
    }
    contentHeight = std::max(boxHeight * shown, height());
    scrollY = 0;
}

void GraphStackView::scrollBy(int change)
{
    const int bounded = boundedScroll(change, scrollY, contentHeight, height());
    scrollY += bounded;
    scroll(0, -bounded); // moves the boxes too
}

void GraphStackView::rememberMouse(QPoint position)
{
    lastX = position.x();
    lastY = position.y();
}

void GraphStackView::dragTo(QPoint position)
{
    scrollBy(lastY - position.y());
    rememberMouse(position);
}

void GraphStackView::wheelEvent(QWheelEvent *event)
{
    scrollBy(event->angleDelta().y() > 0 ? -kWheelStep : kWheelStep);
}

void GraphStackView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton)
        rememberMouse(event->pos());
}

void GraphStackView::mouseMoveEvent(QMouseEvent *event)
{
    if (event->buttons() & Qt::LeftButton)
        dragTo(event->pos());
}

bool GraphStackView::eventFilter(QObject *watched, QEvent *event)
{
    // A drag that begins on a box scrolls the view: the box does not see it.
    if (event->type() == QEvent::MouseButtonPress) {
        const auto *press = static_cast<QMouseEvent *>(event);
        if (press->button() == Qt::LeftButton) {
            rememberMouse(mapFromGlobal(press->globalPos()));
            return true;
        }
    } else if (event->type() == QEvent::MouseMove) {
        const auto *move = static_cast<QMouseEvent *>(event);
        if (move->buttons() & Qt::LeftButton) {
            dragTo(mapFromGlobal(move->globalPos()));
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

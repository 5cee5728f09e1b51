#include "ui/RollStackWidget.h"

#include <QChildEvent>

#include <algorithm>

namespace
{

constexpr int kTickMs = 15;
constexpr int kPixelsPerTick = 15;

} // namespace

RollStackWidget::RollStackWidget(QWidget *parent) : QWidget(parent), rollTimer(this)
{
    rollTimer.setInterval(kTickMs);
    connect(&rollTimer, SIGNAL(timeout()), this, SLOT(onSettingTimerTimeout()));
}

void RollStackWidget::addWidget(QWidget *widget)
{
    if (!widget || widgets.contains(widget))
        return;
    widget->setParent(this);
    widget->setGeometry(0, 0, width(), height());
    widgets.append(widget);
    if (widgets.size() == 1)
        currentWidget = shown ? widget : nullptr;
    widget->hide();
}

void RollStackWidget::setCurrentWidget(QWidget *widget)
{
    if (!widgets.contains(widget) || widget == currentWidget)
        return;

    if (rollTimer.isActive()) {
        rollTimer.stop();
        if (previousWidget)
            previousWidget->hide();
        if (currentWidget)
            currentWidget->move(restX, restY);
    }

    oldX = restX;
    oldY = restY;
    newX = startX;
    newY = startY;
    previousWidget = shown ? currentWidget : nullptr;
    currentWidget = widget;
    currentWidget->move(startX, startY);
    currentWidget->setVisible(shown);
    rollTimer.start();
}

void RollStackWidget::onSettingTimerTimeout()
{
    if (previousWidget) {
        oldX = std::max(oldX - kPixelsPerTick, -width()); // limited: the timer may run for days
        if (oldX <= -width()) {
            previousWidget->hide();
            previousWidget->move(restX, oldY);
        } else {
            previousWidget->move(oldX, oldY);
        }
    }
    if (currentWidget) {
        newX -= kPixelsPerTick;
        currentWidget->move(std::max(restX, newX), newY);
    }

    const bool oldIsOut = !previousWidget || oldX <= -width();
    const bool nothingMoves = !previousWidget && !currentWidget;
    // A page that is cleared during its slide never arrives: the timer then runs until the next change of page.
    if (nothingMoves || (oldIsOut && newX <= restX)) {
        previousWidget = nullptr;
        rollTimer.stop();
    }
}

void RollStackWidget::showStack()
{
    if (currentWidget)
        currentWidget->show();
    shown = true;
}

void RollStackWidget::hideStack()
{
    if (currentWidget)
        currentWidget->hide();
    shown = false;
}

void RollStackWidget::clearCurrent()
{
    if (currentWidget)
        currentWidget->hide();
    currentWidget = nullptr;
    shown = false;
}

void RollStackWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    startX = width() + width() / 3;
    startY = 0;
    restX = 0;
    restY = 0;
    for (QWidget *widget : qAsConst(widgets))
        widget->setGeometry(0, 0, width(), height());
}

void RollStackWidget::childEvent(QChildEvent *event)
{
    QWidget::childEvent(event);
    if (!event->removed())
        return;
    // The pages are deleted before the stack is: a pointer to one must not outlive it.
    const auto isChild = [event](QWidget *widget) {
        return widget == event->child();
    };
    widgets.erase(std::remove_if(widgets.begin(), widgets.end(), isChild), widgets.end());
    if (isChild(currentWidget))
        currentWidget = nullptr;
    if (isChild(previousWidget))
        previousWidget = nullptr;
}

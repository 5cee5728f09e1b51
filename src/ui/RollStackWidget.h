#pragma once

#include <QList>
#include <QTimer>
#include <QWidget>

/// A stack of pages that changes page by sliding the old one out to the left and the new one in from the right, with
/// a gap of a third of the width between them. The pages become its children; the main dialog deletes them. GUI
/// thread; no operation fails.
class RollStackWidget : public QWidget
{
    Q_OBJECT

public:
    explicit RollStackWidget(QWidget *parent = nullptr);

    void addWidget(QWidget *widget);        ///< hidden at first; null and known widgets are ignored
    void setCurrentWidget(QWidget *widget); ///< starts the slide; unknown widgets are ignored
    void showStack();
    void hideStack();
    void clearCurrent(); ///< hides the stack, which then has no page
    [[nodiscard]] bool isShown() const { return shown; }

public slots:
    void onSettingTimerTimeout(); ///< one step of the slide

protected:
    void resizeEvent(QResizeEvent *event) override;
    void childEvent(QChildEvent *event) override;

private:
    QList<QWidget *> widgets;
    QTimer rollTimer;
    int newX = 0;
    int newY = 0;
    int startX = 0;
    int startY = 0;
    int oldX = 0;
    int oldY = 0;
    int restX = 0;
    int restY = 0;
    QWidget *currentWidget = nullptr;
    QWidget *previousWidget = nullptr;
    bool shown = false;
};

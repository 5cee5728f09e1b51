#pragma once

#include "device/DeviceRecords.h"

#include <QList>
#include <QPoint>
#include <QWidget>

class Ovryn_BaseMonitorBox;

/// A scrolling stack of graph boxes, two to a page, of which a mask chooses the shown ones: what the graph
/// views of the card's monitor page and of its board temperatures share. Bit i of the mask stands for box i.
///
/// All boxes take their samples whether they are shown or not, so that a graph chosen later has its history.
/// Owned by its page, owns its boxes. GUI thread.
class GraphStackView : public QWidget
{
    Q_OBJECT

public:
    GraphStackView(int quantityCount, int initialMask, QWidget *parent = nullptr);

    void setSelectMask(int mask); ///< shows the chosen boxes from the top, scrolled to the start

    [[nodiscard]] Ovryn_BaseMonitorBox *box(int position) const { return boxes.at(position); }
    [[nodiscard]] int shownMask() const { return selectMask; }
    [[nodiscard]] int stackHeight() const { return contentHeight; } ///< at least the view's own height
    [[nodiscard]] int scrollPosition() const { return scrollY; }

protected:
    void setBoxTitle(int position, const QString &title);
    void addSample(int position, const NvMonitorValue &value, const QString &suffix);

    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    void layOutBoxes();
    void dragTo(QPoint position); ///< in view pixels
    void rememberMouse(QPoint position);
    void scrollBy(int change);

    QList<Ovryn_BaseMonitorBox *> boxes;
    int selectMask;
    int marginX = 0;
    int boxHeight = 0;
    int boxWidth = 0;
    int contentHeight = 0;
    int scrollY = 0; ///< of the stack's top edge above the view's, never negative
    int lastX = 0;
    int lastY = 0;
};

/// The change of scroll that is left of a wanted one when neither end of the content may be passed.
int boundedScroll(int wanted, int scrollY, int contentHeight, int viewHeight);

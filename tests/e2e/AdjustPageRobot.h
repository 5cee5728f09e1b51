#pragma once

#include "e2e/InstalledProgram.h"
#include "e2e/VirtualScreen.h"
#include "overclock/AdjustPageLayout.h"
#include "overclock/AdjustRows.h"
#include "overclock/FanCurvePlot.h"

/// Uses the adjust page of a running program by mouse and keys: the places of its parts and the common actions.
/// Rectangles and positions are pixels of the main window.
class AdjustPageRobot
{
public:
    /// `page` is the place of the pages in the main window.
    AdjustPageRobot(const VirtualScreen &screen, const InstalledProgram &program, qint64 window, const QRect &page);

    /// True once the page has slid in, with its frame at both sides.
    [[nodiscard]] bool isShown() const;

    [[nodiscard]] QRect placeOf(const QRect &part) const; ///< of one of `parts`
    [[nodiscard]] QRect rowPlace(AdjustRowIndex row) const;
    [[nodiscard]] QPoint sliderPoint(AdjustRowIndex row, double ratio) const; ///< 0 is the minimum, 1 the maximum
    [[nodiscard]] QPoint nodePoint(QPoint value) const;                       ///< in the curve's editor

    /// The value of a node that is placed at the pixel of `value`: rounding may lose a unit.
    [[nodiscard]] QPoint placedNode(QPoint value) const;

    void press(const QRect &part) const; ///< a button of `parts`
    void type(AdjustRowIndex row, const QString &number, const QString &endKey) const;
    void doubleClickNode(QPoint value) const;
    void dragNode(QPoint from, QPoint to) const;

    [[nodiscard]] QPoint onScreen(QPoint position) const;
    [[nodiscard]] QRect onScreen(const QRect &rect) const;

    const AdjustPageLayout parts;

private:
    const VirtualScreen &screen;
    const InstalledProgram &program;
    const qint64 window;
    const QRect page;
    const FanCurvePlot plot;
};

/// The orders to a card from a line of the journal on, one text for each write, such as "cooler 100% policy 1" and
/// "graphics +100000 kHz". `thread` 0 means all threads.
[[nodiscard]] QStringList writesTo(const QList<QJsonObject> &journal, int card, int from = 0, int thread = 0);

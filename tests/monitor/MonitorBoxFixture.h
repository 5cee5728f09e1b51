#pragma once

#include "monitor/graphs/Ovryn_BaseMonitorBox.h"

#include <QMouseEvent>
#include <QtTest>

#include <memory>

inline constexpr QSize kBox(229, 130); ///< a plot of 200 by 100 pixels at (29, 30)
inline constexpr QRect kPlot(29, 30, 200, 100);

inline std::unique_ptr<Ovryn_BaseMonitorBox> shownBox(QSize size = kBox)
{
    auto box = std::make_unique<Ovryn_BaseMonitorBox>();
    box->resize(size);
    box->show();
    if (!QTest::qWaitForWindowExposed(box.get()))
        qFatal("the box was not exposed");
    return box;
}

inline void moveMouse(Ovryn_BaseMonitorBox &box, QPoint position)
{
    QMouseEvent move(QEvent::MouseMove, position, box.mapToGlobal(position), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QCoreApplication::sendEvent(&box, &move);
}

#pragma once

#include <QList>
#include <QPoint>

/// A fan curve is a list of nodes, x the GPU temperature in degrees Celsius and y the fan level in
/// percent, neither falling from left to right. Pure functions; any thread.
namespace FanCurve
{

constexpr int kMaxNodes = 11;

/// (0,0), (30,20), (50,50), (80,90), (100,100)
QList<QPoint> defaultCurve();

/// At least two nodes, the first (0,0) and the last (100,100). The nodes between are not checked.
bool hasValidEnds(const QList<QPoint> &curve);

/// Level in percent at a temperature, which is limited to 0 to 100 first. 0 outside the curve.
int levelFor(const QList<QPoint> &curve, int temperature);

} // namespace FanCurve

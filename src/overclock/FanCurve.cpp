#include "overclock/FanCurve.h"

#include "device/Arithmetic.h"

namespace FanCurve
{

namespace
{

constexpr QPoint kFirstNode(0, 0);
constexpr QPoint kLastNode(100, 100);

} // namespace

QList<QPoint> defaultCurve()
{
    return {kFirstNode, {30, 20}, {50, 50}, {80, 90}, kLastNode};
}

bool hasValidEnds(const QList<QPoint> &curve)
{
    return curve.size() >= 2 && curve.first() == kFirstNode && curve.last() == kLastNode;
}

int levelFor(const QList<QPoint> &curve, int temperature)
{
    const int degrees = qBound(0, temperature, 100);
    for (int i = 0; i < curve.size() - 1; ++i) {
        const QPoint from = curve[i];
        const QPoint to = curve[i + 1];
        if (from.x() > degrees || to.x() < degrees)
            continue; // a node belongs to the segment that ends there
        if (from.x() == to.x())
            return to.y();
        const double width = double(to.x()) - from.x();
        const double height = double(to.y()) - from.y();
        return cutToInt((degrees - double(from.x())) / width * height + from.y());
    }
    return 0;
}

} // namespace FanCurve

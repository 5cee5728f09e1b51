#include "config/NodesText.h"

#include <QVector>

namespace
{

constexpr QChar kNodeEnd = QLatin1Char('|');
constexpr QChar kFieldSeparator = QLatin1Char(',');
constexpr int kCoordinateMax = 100; // degrees Celsius as well as percent

bool isOnScale(QPoint node)
{
    return node.x() >= 0 && node.x() <= kCoordinateMax && node.y() >= 0 && node.y() <= kCoordinateMax;
}

bool falls(QPoint from, QPoint to)
{
    return to.x() < from.x() || to.y() < from.y();
}

} // namespace

QList<QPoint> nodesFromText(const QString &text)
{
    QList<QPoint> nodes;
    const QVector<QStringRef> parts = text.splitRef(kNodeEnd);
    for (const QStringRef &part : parts) {
        const QVector<QStringRef> fields = part.split(kFieldSeparator);
        if (fields.size() != 2)
            continue; // also the empty part after the last bar
        const QPoint node(fields.at(0).toInt(), fields.at(1).toInt());
        if (!isOnScale(node) || (!nodes.isEmpty() && falls(nodes.last(), node)))
            return {};
        nodes.append(node);
    }
    return nodes;
}

QString textFromNodes(const QList<QPoint> &nodes)
{
    QString text;
    for (const QPoint &node : nodes)
        text += QString::number(node.x()) + kFieldSeparator + QString::number(node.y()) + kNodeEnd;
    return text;
}

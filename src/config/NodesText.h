#pragma once

#include <QList>
#include <QPoint>
#include <QString>

/// \file
/// The fan curve as the attribute `Nodes` of config.xml holds it: x,y| for each node, so that "30,40|60,80|"
/// is the curve through (30,40) and (60,80). x is degrees Celsius, y is percent of fan speed.

/// The curve that the text holds. Parts without exactly two fields are skipped and a field that is no number
/// counts as 0, but one node outside 0 to 100, or below the node before it in x or y, empties the whole curve:
/// a card is never driven by half of what its user drew.
[[nodiscard]] QList<QPoint> nodesFromText(const QString &text);

/// The text of the curve; the empty text for an empty one.
[[nodiscard]] QString textFromNodes(const QList<QPoint> &nodes);

#pragma once

#include <QColor>
#include <QString>

/// The two reds of the program. Painters and style sheets use them with different transparency.
namespace Reds
{

/// Glass, bands, edges and curves.
constexpr QColor glass(int alpha = 255)
{
    return {252, 10, 53, alpha};
}

/// The gauge and what is selected in lists and fields.
constexpr QColor gauge(int alpha = 255)
{
    return {236, 9, 40, alpha};
}

/// Replaces "@glass" and "@gauge" in a style sheet by the numbers of that red, so that "rgba(@glass,130)" becomes
/// "rgba(252,10,53,130)". `separator` goes between two numbers.
QString inSheet(QString sheet, const QString &separator = QStringLiteral(","));

} // namespace Reds

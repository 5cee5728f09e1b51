#pragma once

#include <QColor>
#include <QString>

/// The two reds of the program, in which painters and style sheets differ only by the transparency.
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

/// A style sheet with the numbers of a red in each place of "@glass" and "@gauge", so that "rgba(@glass,130)" becomes
/// "rgba(252,10,53,130)". Between two numbers stands `separator`.
QString inSheet(QString sheet, const QString &separator = QStringLiteral(","));

} // namespace Reds

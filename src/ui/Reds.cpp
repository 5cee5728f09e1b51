#include "ui/Reds.h"

namespace
{

QString numbersOf(const QColor &color, const QString &separator)
{
    return QString::number(color.red()) + separator + QString::number(color.green()) + separator +
           QString::number(color.blue());
}

} // namespace

QString Reds::inSheet(QString sheet, const QString &separator)
{
    return sheet.replace(QLatin1String("@glass"), numbersOf(glass(), separator))
        .replace(QLatin1String("@gauge"), numbersOf(gauge(), separator));
}

#include "e2e/AdjustPageRobot.h"

#include "e2e/ProgramTest.h"
#include "overclock/SliderRowLayout.h"

#include <QJsonArray>
#include <QPixmap>

namespace
{

constexpr int kHandleHalf = 7; // of the toolkit's own handle, which takes the mouse press

SliderRowLayout rowLayout(const AdjustPageLayout &parts, AdjustRowIndex row)
{
    const QPixmap background(QStringLiteral(":/images/images/slider/background_slider.png"));
    return sliderRowLayoutFor(parts.rows[row].size(), background.width());
}

QJsonObject firstOf(const QJsonObject &object, const char *list)
{
    return object.value(QLatin1String(list)).toArray().first().toObject();
}

int number(const QJsonObject &object, const char *key)
{
    return object.value(QLatin1String(key)).toInt();
}

QString pstatesWrite(const QJsonObject &arguments)
{
    const QJsonObject overVoltage = firstOf(arguments, "overVoltages");
    if (!overVoltage.isEmpty())
        return QStringLiteral("over-voltage %1 uV").arg(number(overVoltage, "delta_uV"));
    const QJsonObject pstate = firstOf(arguments, "pstates");
    const QJsonObject clock = firstOf(pstate, "clocks");
    if (!clock.isEmpty())
        return QStringLiteral("%1 %2 kHz")
            .arg(number(clock, "domain") == 0 ? QStringLiteral("graphics") : QStringLiteral("memory"))
            .arg(number(clock, "delta_kHz"));
    return QStringLiteral("voltage %1 uV").arg(number(firstOf(pstate, "voltages"), "delta_uV"));
}

/// Empty for a call that changes nothing of clocks, fan and limits.
QString writeOf(const QJsonObject &call)
{
    const QString operation = operationOf(call);
    const QJsonObject arguments = call.value(QStringLiteral("args")).toObject();
    if (operation == QLatin1String("GPU_SetCoolerLevels")) {
        const QJsonObject level = firstOf(arguments, "levels");
        return QStringLiteral("cooler %1% policy %2").arg(number(level, "level")).arg(number(level, "policy"));
    }
    if (operation == QLatin1String("GPU_SetPstates20"))
        return pstatesWrite(arguments);
    if (operation == QLatin1String("GPU_ClientThermalPoliciesSetStatus")) {
        const QJsonObject entry = firstOf(arguments, "entries");
        return QStringLiteral("temperature %1/256 C priority %2")
            .arg(number(entry, "temperature"))
            .arg(number(entry, "flags") & 1);
    }
    if (operation == QLatin1String("GPU_ClientPowerPoliciesSetStatus"))
        return QStringLiteral("power %1").arg(number(firstOf(arguments, "entries"), "power"));
    if (operation == QLatin1String("DriverEntry_B23B70EE"))
        return QStringLiteral("entry %1").arg(number(arguments, "value"));
    return {};
}

} // namespace

AdjustPageRobot::AdjustPageRobot(const VirtualScreen &ofScreen, const InstalledProgram &ofProgram, qint64 mainWindow,
                                 const QRect &ofPage)
    : parts(adjustPageLayoutFor(ofPage.size())),
      screen(ofScreen),
      program(ofProgram),
      window(mainWindow),
      page(ofPage),
      plot(FanCurvePlot::forSize(parts.editor.size()))
{
}

QPoint AdjustPageRobot::onScreen(QPoint position) const
{
    return screen.geometryOf(window).topLeft() + position;
}

QRect AdjustPageRobot::onScreen(const QRect &rect) const
{
    return QRect(onScreen(rect.topLeft()), rect.size());
}

bool AdjustPageRobot::isShown() const
{
    const QImage picture = screen.picture();
    const QPoint left = onScreen(page.topLeft() + QPoint(2, page.height() / 2));
    const QPoint right = left + QPoint(page.width() - 3, 0);
    return isRed(picture.pixel(left)) && isRed(picture.pixel(right));
}

QRect AdjustPageRobot::placeOf(const QRect &part) const
{
    return part.translated(page.topLeft());
}

QRect AdjustPageRobot::rowPlace(AdjustRowIndex row) const
{
    return placeOf(parts.rows[row]) & page;
}

QPoint AdjustPageRobot::sliderPoint(AdjustRowIndex row, double ratio) const
{
    const QRect slider = rowLayout(parts, row).sliderRect.translated(placeOf(parts.rows[row]).topLeft());
    const double way = ratio * (slider.width() - 2 * kHandleHalf);
    return QPoint(slider.left() + kHandleHalf + int(way), slider.center().y());
}

QPoint AdjustPageRobot::nodePoint(QPoint value) const
{
    return placeOf(parts.editor).topLeft() + plot.pixelOf(value);
}

QPoint AdjustPageRobot::placedNode(QPoint value) const
{
    return plot.valueOf(plot.pixelOf(value));
}

void AdjustPageRobot::press(const QRect &part) const
{
    program.clickIn(window, placeOf(part).center());
}

void AdjustPageRobot::type(AdjustRowIndex row, const QString &digits, const QString &endKey) const
{
    const QRect box = rowLayout(parts, row).spinRect.translated(placeOf(parts.rows[row]).topLeft());
    program.clickIn(window, box.center());
    screen.key(QStringLiteral("ctrl+a"));
    screen.type(digits);
    screen.key(endKey);
}

void AdjustPageRobot::doubleClickNode(QPoint value) const
{
    screen.doubleClick(onScreen(nodePoint(value)));
}

void AdjustPageRobot::dragNode(QPoint from, QPoint to) const
{
    screen.drag(onScreen(nodePoint(from)), onScreen(nodePoint(to)));
}

QStringList writesTo(const QList<QJsonObject> &journal, int card, int from, int thread)
{
    QStringList writes;
    for (int i = from; i < journal.size(); ++i) {
        const QJsonObject &call = journal.at(i);
        if (call.value(QStringLiteral("gpu")).toInt(-1) != card ||
            (thread != 0 && call.value(QStringLiteral("thread")).toInt() != thread))
            continue;
        const QString write = writeOf(call);
        if (!write.isEmpty())
            writes << write;
    }
    return writes;
}

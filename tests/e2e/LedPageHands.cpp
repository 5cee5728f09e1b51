#include "e2e/LedPageHands.h"

#include "board/led/Ovryn_ColorSlider.h"
#include "e2e/ProgramTest.h"

#include <QWidget>

LedPageHands::LedPageHands(const VirtualScreen &ofScreen, const InstalledProgram &ofProgram, qint64 mainWindow,
                           const MainDialogLayout &dialog)
    : parts(ledPageLayoutFor(dialog.pagePanel.size())),
      screen(ofScreen),
      program(ofProgram),
      window(mainWindow),
      page(dialog.pagePanel),
      palettePlace(dialog.gaugeShown),
      ring(HueRing::forSize(dialog.gaugeShown.size()))
{
    palette.resize(palettePlace.size());
    palette.ensurePolished();
    palette.grab(); // sends the pending resize events, down to the numbers
}

bool LedPageHands::stands() const
{
    // The green preset, dimmed while an effect without colours is on, and the ring's blue, which no gauge has at that
    // place.
    const QImage picture = screen.picture();
    const QColor preset = picture.pixelColor(onScreen(placeOf(parts.presets[3]).center()));
    const QColor blue = picture.pixelColor(ringPoint(225));
    return preset.green() > 120 && preset.red() < 60 && blue.blue() > 150 && blue.red() < 90;
}

QRect LedPageHands::placeOf(const QRect &part) const
{
    return part.translated(page.topLeft());
}

QPoint LedPageHands::ringPoint(double hue) const
{
    const QPointF point = ring.pointAt(hue, (ring.outerRadius + ring.innerRadius) / 2);
    return onScreen(palettePlace.topLeft() + point.toPoint());
}

QColor LedPageHands::colorAt(QPoint point) const
{
    // The marker's hue goes through the slider, which knows whole degrees.
    const QColor marker = HueRing::pureColor(ring.hueAt(point - onScreen(palettePlace.topLeft())));
    return QColor::fromHsv(marker.hsvHue(), 255, 255).toRgb();
}

QPoint LedPageHands::sliderPoint(double ratio) const
{
    const QWidget *slider = palette.findChild<Ovryn_ColorSlider *>();
    const QRect place(slider->mapTo(&palette, QPoint()), slider->size());
    return onScreen(palettePlace.topLeft() +
                    QPoint(place.left() + int(ratio * (place.width() - 1)), place.center().y()));
}

QRect LedPageHands::numberBox(const char *name) const
{
    const QWidget *box = palette.findChild<QWidget *>(QLatin1String(name));
    return QRect(box->mapTo(&palette, QPoint()), box->size()).translated(palettePlace.topLeft());
}

void LedPageHands::press(const QRect &part) const
{
    // A radio's words do not fill its rectangle.
    const QRect place = placeOf(part);
    program.clickIn(window, QPoint(place.left() + qMin(10, place.width() / 2), place.center().y()));
}

void LedPageHands::typeInto(const QRect &box, const QString &number, const QString &endKey) const
{
    program.clickIn(window, box.center());
    screen.key(QStringLiteral("ctrl+a"));
    screen.type(number);
    screen.key(endKey);
}

QPoint LedPageHands::onScreen(QPoint position) const
{
    return screen.geometryOf(window).topLeft() + position;
}

QString ledFrame(const char *body, bool closing)
{
    QByteArray bytes = QByteArray::fromHex(body);
    bytes.prepend(char((bytes.size() + 2) | (closing ? 0x80 : 0)));
    int sum = 0;
    for (const char byte : bytes)
        sum += quint8(byte);
    bytes.append(char(~sum));
    return QString::fromLatin1(bytes.toHex(' ').toUpper());
}

QStringList ledFrames(const QList<QJsonObject> &journal, int card, int from)
{
    QStringList frames;
    for (int i = from; i < journal.size(); ++i) {
        const QJsonObject &call = journal.at(i);
        if (call.value(QStringLiteral("gpu")).toInt(-1) != card ||
            operationOf(call) != QLatin1String("I2CWrite 0xA0"))
            continue;
        const int status = call.value(QStringLiteral("status")).toInt();
        const QString data = call.value(QStringLiteral("args")).toObject().value(QStringLiteral("data")).toString();
        frames << (status == 0 ? data : QStringLiteral("%1 -> %2").arg(data).arg(status));
    }
    return frames;
}

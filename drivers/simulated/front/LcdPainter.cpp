#include "simulated/front/LcdPainter.h"

#include "simulated/front/LcdFace.h"

#include <QFontMetrics>
#include <QPainter>

namespace cardfront
{
namespace
{

constexpr QColor kGlassDark(0x06, 0x06, 0x08);
constexpr QColor kGlassLit(0x0B, 0x10, 0x1A);
constexpr QColor kDigits(0xF2, 0xFB, 0xFF);
constexpr QColor kWords(0x9F, 0xB3, 0xC8);
constexpr QColor kAccent(252, 10, 53);
constexpr int kFewestDigits = 4; // of which the unlit segments show
constexpr int kPagesInOrder[] = {kLcdClock, kLcdTemperature, kLcdMemory, kLcdOther};

QFont fontOf(const char *family, int pixels)
{
    QFont font(QString::fromLatin1(family));
    font.setPixelSize(pixels);
    return font;
}

/// The largest size at which a text fits into a width.
QFont digitFont(const QString &text, const QRect &rect)
{
    int pixels = rect.height();
    while (pixels > 8 && QFontMetrics(fontOf("DS-Digital", pixels)).horizontalAdvance(text) > rect.width())
        --pixels;
    return fontOf("DS-Digital", pixels);
}

void paintDigits(QPainter &painter, const QRect &rect, const QString &digits)
{
    QString unlit = digits;
    for (QChar &character : unlit) {
        if (character != QLatin1Char('.'))
            character = QLatin1Char('8');
    }
    unlit = unlit.rightJustified(qMax(kFewestDigits, digits.size()), QLatin1Char('8'));
    painter.setFont(digitFont(unlit, rect));
    painter.setPen(QColor(255, 255, 255, 14));
    painter.drawText(rect, Qt::AlignRight | Qt::AlignVCenter, unlit);
    painter.setPen(kDigits);
    painter.drawText(rect, Qt::AlignRight | Qt::AlignVCenter, digits);
}

} // namespace

LcdLayout lcdLayout(const QRect &glass)
{
    constexpr int kEdge = 8;
    const int left = glass.left() + kEdge;
    const int width = glass.width() - 2 * kEdge;
    LcdLayout layout;
    layout.caption = QRect(left, glass.top() + 6, width - 40, 14);
    layout.unit = QRect(left + width - 40, glass.top() + 6, 40, 14);
    layout.digits = QRect(left, glass.top() + 24, width, 34);
    layout.bar = QRect(left, glass.top() + 63, width, 4);
    layout.detail = QRect(left, glass.top() + 71, width - 40, 15);
    for (int i = 0; i < 4; ++i)
        layout.dots[i] = QRect(left + width - 28 + 8 * i, glass.top() + 77, 4, 4);
    return layout;
}

void paintLcd(QPainter &painter, const QRect &glass, const LcdState &lcd, qint64 sinceMs)
{
    const LcdFace face = lcdFaceAt(lcd, sinceMs);
    const LcdLayout layout = lcdLayout(glass);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(glass, face.lit ? kGlassLit : kGlassDark);
    if (face.lit) {
        QFont caption = fontOf("Space Age", 10);
        caption.setWordSpacing(4);
        painter.setFont(caption);
        painter.setPen(kWords);
        painter.drawText(layout.caption, Qt::AlignLeft | Qt::AlignVCenter, face.caption);
        QFont unit = fontOf("Arial", 12);
        unit.setBold(true);
        painter.setFont(unit);
        painter.setPen(kAccent);
        painter.drawText(layout.unit, Qt::AlignRight | Qt::AlignVCenter, face.unit);
        paintDigits(painter, layout.digits, face.digits);
        painter.fillRect(layout.bar, QColor(255, 255, 255, 26));
        painter.fillRect(
            QRectF(layout.bar.left(), layout.bar.top(), layout.bar.width() * face.part, layout.bar.height()),
            kAccent);
        painter.setFont(fontOf("Arial", 11));
        painter.setPen(kWords);
        painter.drawText(layout.detail, Qt::AlignLeft | Qt::AlignVCenter, face.detail);
        painter.setPen(Qt::NoPen);
        for (int i = 0; i < 4; ++i) {
            painter.setBrush(face.page == kPagesInOrder[i] ? QColor(242, 251, 255, face.beat ? 255 : 150)
                                                           : QColor(255, 255, 255, 40));
            painter.drawEllipse(layout.dots[i]);
        }
    }
    // the light of the room on the glass
    QLinearGradient sheen(glass.topLeft(), glass.bottomRight());
    sheen.setColorAt(0.0, QColor(255, 255, 255, 20));
    sheen.setColorAt(0.35, QColor(255, 255, 255, 5));
    sheen.setColorAt(0.36, QColor(255, 255, 255, 0));
    painter.fillRect(glass, sheen);
    painter.restore();
}

} // namespace cardfront

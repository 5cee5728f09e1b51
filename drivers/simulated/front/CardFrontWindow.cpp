#include "simulated/front/CardFrontWindow.h"

#include <QPainter>

namespace cardfront
{
namespace
{

constexpr int kFrameMs = 33;
constexpr double kFanSlowness = 60.0; // the shown fan is this much slower: a real one would seem to stand still
constexpr double kFastestFanDegreesMs = 0.5; // a faster fan would seem to turn backwards
constexpr QSize kMainWindow(1020, 680);
constexpr int kGap = 12;   // between the two windows
constexpr int kBorder = 4; // that a window manager may put around

double fanDegreesAMs(double rpm)
{
    return qMin(rpm * 360.0 / 60000.0 / kFanSlowness, kFastestFanDegreesMs);
}

void paintBackground(QPainter &painter, const QRect &rect)
{
    QLinearGradient dusk(rect.topLeft(), rect.bottomLeft());
    dusk.setColorAt(0.0, QColor(0x1D, 0x1A, 0x1E));
    dusk.setColorAt(1.0, QColor(0x0C, 0x0B, 0x0D));
    painter.fillRect(rect, dusk);
}

void paintName(QPainter &painter, const QRect &cell, const CardFront &card)
{
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(13);
    font.setBold(true);
    painter.setFont(font);
    const QRect line(cell.left() + 16, cell.top(), cell.width() - 32, kCardTop);
    painter.setPen(QColor(0xE8, 0xE8, 0xEC));
    const QString fan = QStringLiteral("%1 rpm").arg(qRound(card.fanRpm));
    font.setBold(false);
    font.setPixelSize(12);
    const int room = line.width() - QFontMetrics(font).horizontalAdvance(fan) - 12;
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter,
                     painter.fontMetrics().elidedText(card.name, Qt::ElideRight, room));
    painter.setFont(font);
    painter.setPen(QColor(0x8C, 0x8E, 0x96));
    painter.drawText(line, Qt::AlignRight | Qt::AlignVCenter, fan);
}

void paintNoCards(QPainter &painter, const QRect &rect)
{
    QFont font(QStringLiteral("Arial"));
    font.setPixelSize(18);
    painter.setFont(font);
    painter.setPen(QColor(0xE8, 0xE8, 0xEC));
    painter.drawText(rect.adjusted(0, 0, 0, -rect.height() / 2 + 6), Qt::AlignHCenter | Qt::AlignBottom,
                     QStringLiteral("No cards yet"));
    font.setPixelSize(12);
    painter.setFont(font);
    painter.setPen(QColor(0x8C, 0x8E, 0x96));
    painter.drawText(rect.adjusted(0, rect.height() / 2 + 14, 0, 0), Qt::AlignHCenter | Qt::AlignTop,
                     QStringLiteral("They appear when a program opens the simulated driver."));
}

} // namespace

CardFrontWindow::CardFrontWindow(const QString &statePath, QWidget *parent) : QWidget(parent), reader(statePath)
{
    setWindowTitle(QString::fromLatin1(kWindowTitle));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_ShowWithoutActivating); // the program beside it keeps the keyboard
    setFixedSize(windowSize(0));
    clock.start();
    connect(&timer, &QTimer::timeout, this, [this] { advanceTo(clock.elapsed()); });
    timer.start(kFrameMs);
    advanceTo(0);
}

void CardFrontWindow::advanceTo(qint64 nowMs)
{
    for (int i = 0; i < motions.size(); ++i) {
        double &degrees = motions[i].fanDegrees;
        degrees += fanDegreesAMs(cards().at(i).fanRpm) * double(qMax<qint64>(nowMs - now, 0));
        degrees -= degrees >= 360.0 ? 360.0 : 0.0;
    }
    now = nowMs;
    const QVector<CardFront> before = cards();
    if (reader.read())
        follow(before);
    update();
}

void CardFrontWindow::follow(const QVector<CardFront> &before)
{
    motions.resize(cards().size());
    for (int i = 0; i < motions.size(); ++i) {
        const CardFront &card = cards().at(i);
        const CardFront was = before.value(i);
        if (!(card.led == was.led))
            motions[i].ledSinceMs = now;
        if (card.lcd && (!was.lcd || was.lcd->command != card.lcd->command))
            motions[i].lcdSinceMs = now;
    }
    setFixedSize(windowSize(cards().size()));
}

void CardFrontWindow::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    paintBackground(painter, rect());
    if (cards().isEmpty())
        paintNoCards(painter, rect());
    for (int i = 0; i < shownCards(cards().size()); ++i) {
        const Motion &motion = motions.at(i);
        paintName(painter, cellRect(i), cards().at(i));
        painter.save();
        painter.translate(cardRect(i).topLeft());
        cardPainter.paint(painter, cards().at(i),
                          {now - motion.ledSinceMs, now - motion.lcdSinceMs, motion.fanDegrees});
        painter.restore();
    }
}

QPoint windowPlace(const QRect &available, QSize window)
{
    const QRect middle(available.center() - QRect(QPoint(), kMainWindow).center(), kMainWindow);
    const int wanted = middle.right() + 1 + kGap;
    const int furthest = available.right() + 1 - window.width() - kBorder;
    return {qMax(available.left(), qMin(wanted, furthest)), qMax(available.top(), middle.top())};
}

} // namespace cardfront

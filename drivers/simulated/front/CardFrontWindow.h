#pragma once

#include "simulated/front/CardPainter.h"
#include "simulated/front/StateReader.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QVector>
#include <QWidget>

namespace cardfront
{

/// The window "Card front": the cards of a state file, one above the other, with their lights and fans moving. It
/// is as large as its cards and follows their number. GUI thread.
class CardFrontWindow : public QWidget
{
    Q_OBJECT

public:
    explicit CardFrontWindow(const QString &statePath, QWidget *parent = nullptr);

    /// Reads the state file and moves everything on to a moment, in ms of the window's own clock. The timer does
    /// this; a test may too.
    void advanceTo(qint64 nowMs);

    [[nodiscard]] const QVector<CardFront> &cards() const { return reader.cards(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    /// The times of a card's last frames, and the angle of its fans.
    struct Motion
    {
        qint64 ledSinceMs = 0;
        qint64 lcdSinceMs = 0;
        double fanDegrees = 0;
    };

    void follow(const QVector<CardFront> &before);

    StateReader reader;
    CardPainter cardPainter;
    QVector<Motion> motions; ///< one for each card
    QElapsedTimer clock;
    QTimer timer;
    qint64 now = 0;
};

/// The window's place on a screen: to the right of the program's main window, which is in the middle, if there is
/// room; else at the screen's right edge. Never beyond the screen's upper left.
[[nodiscard]] QPoint windowPlace(const QRect &available, QSize window);

} // namespace cardfront

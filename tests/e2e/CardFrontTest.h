#pragma once

#include "e2e/ProgramTest.h"

#include <QColor>
#include <QProcess>

#include <functional>
#include <memory>

/// The base of tests that examine the window "Card front", on a screen with room for it beside the program.
class CardFrontTest : public ProgramTest
{
    Q_OBJECT

protected:
    CardFrontTest() { screenSize = QSize(1920, 900); }

    bool startFront(const QStringList &arguments); ///< it ends with the test function
    [[nodiscard]] qint64 waitForFront() const;     ///< its window, 0 on a time-out
    /// Reads the colour in the middle of a card's strip into `seen`.
    bool look(qint64 window, int card, bool hasLcd);
    /// Looks until the colour is of the kind wanted.
    bool becomes(qint64 window, int card, bool hasLcd, const std::function<bool(const QColor &)> &wanted);
    [[nodiscard]] static std::function<bool(const QColor &)> is(const QColor &wanted);

    std::unique_ptr<QProcess> front;
    QColor seen;

private slots:
    void cleanup();
};

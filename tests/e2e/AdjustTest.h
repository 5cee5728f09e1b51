#pragma once

#include "e2e/AdjustPageHands.h"
#include "e2e/ProgramTest.h"

/// A card under steady load, held at a temperature at which its clock doesn't fade: 1683 MHz all the time.
extern const QByteArray kSteadyCard;

/// A card held at a temperature, whose settings config.xml keeps under a number of its own.
[[nodiscard]] QByteArray cardAt(int celsius, const QByteArray &subSystemId);
[[nodiscard]] QByteArray sceneOf(const QList<QByteArray> &cards, const QList<QByteArray> &faults = {});

/// The usual board's subsystem, as config.xml writes it.
extern const QByteArray kUsualBoard;
[[nodiscard]] QByteArray cardSection(const QByteArray &subSystemId, const QByteArray &adjustAttributes);
[[nodiscard]] QByteArray configWith(const QByteArray &cardSections);
[[nodiscard]] QString savedAdjustment(const InstalledProgram &program, const char *attribute, int card = 0);

// what the simulated card does and holds
[[nodiscard]] QJsonObject readings(const InstalledProgram &program, int card = 0);
[[nodiscard]] QJsonObject settings(const InstalledProgram &program, int card = 0);
[[nodiscard]] QStringList coolerWrites(const InstalledProgram &program, int card, int from = 0);

extern const QString kFanToDriver; ///< the order that gives the fan back, as coolerWrites() shows it

constexpr int kMainThread = 1; ///< in the journal: it is the first to call

/// What the tests of the adjust page share: the way there, and Apply.
class AdjustTest : public ProgramTest
{
    Q_OBJECT

protected:
    /// Opens the page past the warning that stands in the way once in a run.
    void openPage(InstalledProgram &program, qint64 window, const AdjustPageHands &hands);
    void answerApply(InstalledProgram &program, const AdjustPageHands &hands, bool yes);
    /// Confirms Apply and waits until the main thread has written so often; what it wrote to the first card.
    [[nodiscard]] QStringList writesOfApply(InstalledProgram &program, const AdjustPageHands &hands, int howMany);
    [[nodiscard]] AdjustPageHands handsOn(const InstalledProgram &program, qint64 window) const;
    [[nodiscard]] QRect gaugeHole(qint64 window) const; ///< of the gauge beside a page, on the screen
};

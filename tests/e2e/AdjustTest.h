#pragma once

#include "e2e/AdjustPageRobot.h"
#include "e2e/ProgramTest.h"

/// A card under steady load, held at a temperature at which its clock doesn't fade: 1683 MHz all the time.
extern const QByteArray kSteadyCard;

/// A card held at a temperature, with a subsystem identifier of its own in config.xml.
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

extern const QString kFanToDriver; ///< the order that returns the fan to the driver, as coolerWrites() shows it

constexpr int kMainThread = 1; ///< in the journal: it is the first to call

/// The base of the adjust page's tests: opens the page and answers Apply.
class AdjustTest : public ProgramTest
{
    Q_OBJECT

protected:
    /// Opens the page and confirms the warning that comes once in a run.
    void openPage(InstalledProgram &program, qint64 window, const AdjustPageRobot &robot);
    void answerApply(InstalledProgram &program, const AdjustPageRobot &robot, bool yes);
    /// Confirms Apply and waits for that many writes of the main thread. Returns those to the first card.
    [[nodiscard]] QStringList writesOfApply(InstalledProgram &program, const AdjustPageRobot &robot, int howMany);
    [[nodiscard]] AdjustPageRobot robotFor(const InstalledProgram &program, qint64 window) const;
    [[nodiscard]] QRect gaugeHole(qint64 window) const; ///< of the gauge beside a page, on the screen
};

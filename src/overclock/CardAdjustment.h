#pragma once

#include "config/ConfigRecords.h"
#include "overclock/AdjustRows.h"
#include "overclock/OverClockingParam.h"

#include <QList>
#include <QMap>
#include <QObject>
#include <QPoint>

#include <array>
#include <functional>
#include <optional>

class NvGpuControl;
class Ovryn_SetUserDefineFanSpeedThread;

/// How long the adjustment and its fan worker pause, in milliseconds.
struct AdjustTimings
{
    unsigned int settleMs = 500;       ///< between the orders and reading the card back, so that the driver settles
    unsigned int fanIntervalMs = 1000; ///< between two cycles of the fan curve
};

/// Called with true before a fan begins to follow a curve, and with false once the driver has it back or holds a
/// level of the user's: in between, somebody must hand it back if this process dies.
using FanWatch = std::function<void(bool followsCurve)>;

/// What one card was adjusted to, and every order that adjusts it: the snapshots, the fan worker with its curve, the
/// high-performance mode and the numbers for the settings file. It has no widget; the adjust page shows it.
///
/// Owned by the adjust page, which lends it the card; without a card it only keeps what it is given. GUI thread only:
/// the operations that give orders block it while the fan worker ends and the driver settles. No operation reports
/// an order that the driver refuses: the snapshot that is read back shows it.
class CardAdjustment : public QObject
{
    Q_OBJECT

public:
    /// Reads the card. One of the two starts must follow.
    CardAdjustment(NvGpuControl *control, const AdjustTimings &pauses, FanWatch watch);
    /// Hands the fan back, see handFanBack.
    ~CardAdjustment() override;

    void startFromCard();                              ///< takes the card as it stands
    void startFromSaved(const AdjustModuleInfo &info); ///< brings the card to the saved values

    [[nodiscard]] bool hasCard() const { return gpuControl != nullptr; }
    /// What was read from the card or given to `apply` last.
    [[nodiscard]] const OverClockingParam &snapshot() const { return current; }
    /// Gives the orders for `wanted`, waits and reads the card back. Ends the high-performance mode: the user's
    /// values stay, so what stood before the mode is not brought back.
    void apply(const OverClockingParam &wanted);
    void returnToApplied(); ///< the snapshot is the one that was read after the last orders
    /// Brings the card to its own defaults, and ends the high-performance mode. Nothing without a card.
    void restoreDefaults();

    /// The link of the two targets: the one, in its row's unit, that goes with the other. None without a card, and
    /// where the card's policies have none.
    [[nodiscard]] std::optional<qint32> temperatureForPower(qint32 powerPercent) const;
    /// The present power decides which side of the default point counts.
    [[nodiscard]] std::optional<qint32> powerForTemperature(qint32 temperature, qint32 presentPowerPercent) const;

    [[nodiscard]] const QList<QPoint> &curve() const { return nodes; }
    /// Neither starts the worker nor changes the fan mode: the curve acts while the fan follows it, or from then on.
    void setCurve(const QList<QPoint> &newCurve);

    [[nodiscard]] bool isHighPerformance() const { return highPerformance; }
    /// Switches the preset of certain boards. False for any other board, which also ends the mode.
    bool setHighPerformance(bool enable);

    /// What is in force, without edits that were not applied; of a row that can't be read the number known last, or
    /// -1.
    void getParameter(AdjustModuleInfo &out) const;

    void requestEnd(); ///< asks the fan worker to end; waits for nothing
    /// The end of the work: ends the fan worker, and hands the fan back to the driver when the user's curve drove it.
    /// A worker that hangs in the driver is left to its thread. Only getParameter may be called afterwards; nothing
    /// the second time.
    void handFanBack();

signals:
    void snapshotRead(); ///< the snapshot holds what the card answered to the last orders, or at the start
    void highPerformanceModeChanged(bool bChanged);

private:
    void startInHighPerformance();

    void readDevice();                         ///< into `current`, which keeps its link and its fan mode
    void keepNumbers(OverClockingParam param); ///< of the rows that were read, for `kept`
    /// Gives the orders, waits and reads the card back. `current` keeps its own link and fan mode. Nothing without a
    /// card.
    void applyParam(OverClockingParam param);
    void startFanThread();
    void stopFanThread();
    /// After the card's fan got another order than the curve's; where it was refused, the driver gets the fan back.
    void fanLeftCurve(bool orderTaken);
    void endHighPerformance();

    const AdjustTimings timings;
    NvGpuControl *const gpuControl;               ///< borrowed; may be null
    const FanWatch fanWatch;                      ///< may be empty
    Ovryn_SetUserDefineFanSpeedThread *fanThread; ///< null once the work has ended
    bool curveDrivesFan = false;                  ///< from the worker's start until the card took another order
    QList<QPoint> nodes; ///< the fan curve in force: degrees Celsius, percent; empty until one was set

    OverClockingParam current; ///< last read or applied; what the page's rows start from
    OverClockingParam applied; ///< what Cancel returns to
    /// The rows' numbers for the settings file, each as it was read, ordered or found in the file last; negative
    /// where there is none.
    std::array<qint32, AdjustRowCount> kept;

    bool highPerformance = false;
    OverClockingParam beforeHighPerformance;           ///< what the card goes back to when the mode is switched off
    const QMap<quint32, qint32> highPerformanceClocks; ///< MHz by board
};

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

/// The pauses of the adjustment and its fan worker, in milliseconds.
struct AdjustTimings
{
    unsigned int settleMs = 500;       ///< between the orders and reading the card back, so that the driver settles
    unsigned int fanIntervalMs = 1000; ///< between two cycles of the fan curve
};

/// Called with true before a fan begins to follow a curve, and with false once the driver controls it again or holds
/// the user's level. In between, another process must return the fan to the driver if this process dies.
using FanWatch = std::function<void(bool followsCurve)>;

/// The adjustment of one card: the snapshots, every order to the card, the fan worker with its curve, the
/// high-performance mode and the numbers for the settings file. It has no widget; the adjust page shows it.
///
/// Owned by the adjust page, which lends it the card; without a card it only stores its settings. GUI thread only:
/// the operations that give orders block it while the fan worker ends and the driver settles. No operation reports an
/// order that the driver refuses: the snapshot that is read back shows it.
class CardAdjustment : public QObject
{
    Q_OBJECT

public:
    /// Reads the card. One of the two starts must follow.
    CardAdjustment(NvGpuControl *control, const AdjustTimings &pauses, FanWatch watch);
    /// Returns the fan to the driver, see returnFanToDriver.
    ~CardAdjustment() override;

    void startFromCard();                              ///< uses the card's present values
    void startFromSaved(const AdjustModuleInfo &info); ///< brings the card to the saved values

    [[nodiscard]] bool hasCard() const { return gpuControl != nullptr; }
    /// The values that were read from the card or given to `apply` last.
    [[nodiscard]] const OverClockingParam &snapshot() const { return current; }
    /// Gives the orders for `wanted`, waits and reads the card back. Ends the high-performance mode: the user's
    /// values stay, so the values from before the mode are not restored.
    void apply(const OverClockingParam &wanted);
    void returnToApplied(); ///< the snapshot is the one that was read after the last orders
    /// Sets the card to its own defaults, and ends the high-performance mode. Does nothing without a card.
    void restoreDefaults();

    /// The link of the two targets: the value of one, in its row's unit, that goes with the other. No value without a
    /// card, or where the card's policies define none.
    [[nodiscard]] std::optional<qint32> temperatureForPower(qint32 powerPercent) const;
    /// The present power decides which side of the default point counts.
    [[nodiscard]] std::optional<qint32> powerForTemperature(qint32 temperature, qint32 presentPowerPercent) const;

    [[nodiscard]] const QList<QPoint> &curve() const { return nodes; }
    /// Neither starts the worker nor changes the fan mode: the curve takes effect while the fan follows it, or later
    /// when it does.
    void setCurve(const QList<QPoint> &newCurve);

    [[nodiscard]] bool isHighPerformance() const { return highPerformance; }
    /// Switches the preset of certain boards. False for any other board, which also ends the mode.
    bool setHighPerformance(bool enable);

    /// The applied values, without edits that were not applied. For a row that can't be read it is the number known
    /// last, or -1.
    void getParameter(AdjustModuleInfo &out) const;

    void requestEnd(); ///< asks the fan worker to end; waits for nothing
    /// Ends the work: ends the fan worker, and returns the fan to the driver when the user's curve drove it. A worker
    /// that hangs in the driver is abandoned. Only getParameter may be called afterwards; a second call does nothing.
    void returnFanToDriver();

signals:
    void snapshotRead(); ///< the snapshot was read after the last orders, or at the start
    void highPerformanceModeChanged(bool bChanged);

private:
    void startInHighPerformance();

    void readDevice();                         ///< into `current`, which keeps its link and its fan mode
    void keepNumbers(OverClockingParam param); ///< of the rows that were read, for `kept`
    /// Gives the orders, waits and reads the card back. `current` keeps its own link and fan mode. Does nothing
    /// without a card.
    void applyParam(OverClockingParam param);
    void startFanThread();
    void stopFanThread();
    /// To be called after an order to the fan that is not the curve's. When the order was refused, it returns the fan
    /// to the driver.
    void fanLeftCurve(bool orderTaken);
    void endHighPerformance();

    const AdjustTimings timings;
    NvGpuControl *const gpuControl;               ///< borrowed; may be null
    const FanWatch fanWatch;                      ///< may be empty
    Ovryn_SetUserDefineFanSpeedThread *fanThread; ///< null once the work has ended
    bool curveDrivesFan = false;                  ///< from the worker's start until the card took another order
    QList<QPoint> nodes; ///< the present fan curve: degrees Celsius, percent; empty until one was set

    OverClockingParam current; ///< last read or applied; what the page's rows start from
    OverClockingParam applied; ///< what Cancel returns to
    /// The rows' numbers for the settings file, each as it was last read, ordered or loaded from the file; negative
    /// where there is no number.
    std::array<qint32, AdjustRowCount> kept;

    bool highPerformance = false;
    OverClockingParam beforeHighPerformance;           ///< restored when the mode is switched off
    const QMap<quint32, qint32> highPerformanceClocks; ///< MHz by board
};

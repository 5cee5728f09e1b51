#pragma once

#include "simulated/CardParameters.h"
#include "simulated/LcdController.h"
#include "simulated/LedController.h"

#include "device/nvapi/NvApiRecords.h"

#include <optional>
#include <vector>

namespace simulated
{

/// What the user set through the driver; it stands until the next write.
struct CardSettings
{
    struct Cooler
    {
        qint32 policy = kCoolerPolicyDefault; ///< one of the driver's cooler policies
        qint32 manualPercent = 0;             ///< level of policy 1
    };
    qint32 graphicsOffsetKHz = 0;
    qint32 memoryOffsetKHz = 0;
    qint32 voltageOffset_uV = 0;
    qint32 overVoltage_uV = 0;
    quint32 powerLimit = 100000;    ///< thousandths of a percent
    qint32 temperatureLimit256 = 0; ///< 1/256 of a degree
    bool temperaturePriority = false;
    std::vector<Cooler> coolers;
};

/// What the card does now.
struct CardState
{
    double loadPercent = 0;
    qint64 graphicsKHz = 0;
    qint64 memoryKHz = 0;
    double voltage_uV = 0;
    double powerW = 0;
    double temperatureC = 0;
    double fanPercent = 0; ///< mean of the coolers, lagging behind their aims
    quint32 memoryUsedKB = 0;
    bool powerLimited = false;
    bool temperatureLimited = false;
};

/// A simulated card: a plain record that a test may edit between calls.
///
/// `advanceTo` lets time pass: load moves the clocks between idle, base and boost steps; clocks, load and
/// voltage make heat; heat and fan make the temperature; the power and temperature limits cut the clocks.
struct Card
{
    explicit Card(CardParameters cardParameters);

    /// Lets the card run up to a moment of simulated time. An earlier moment changes nothing.
    void advanceTo(double simulatedMs);

    /// Level that a cooler heads for, percent.
    [[nodiscard]] double coolerAimPercent(std::size_t cooler) const;
    [[nodiscard]] quint32 fanRpm() const;                                               ///< 0 without a tachometer
    [[nodiscard]] qint32 boardTemperature16(const BoardSensorParameters &sensor) const; ///< 1/16 of a degree

    CardParameters parameters;
    CardSettings settings;
    CardState state;
    std::optional<LedController> led;
    std::optional<LcdController> lcd;
    bool lost = false; ///< the driver has forgotten the card: its handle is unknown from now on

private:
    void step(double simulatedMs, double seconds);
    [[nodiscard]] qint64 wantedGraphicsKHz() const;
    [[nodiscard]] double voltageAt(qint64 graphicsKHz) const;
    [[nodiscard]] double meanAimPercent() const;
    [[nodiscard]] double powerAt(qint64 graphicsKHz) const;

    double advancedToMs = 0;
    double thermalCutKHz = 0;   ///< grows while the card is too hot
    double warmLoadPercent = 0; ///< the load, smoothed: memory fills and empties slowly
};

} // namespace simulated

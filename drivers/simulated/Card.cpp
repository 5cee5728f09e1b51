#include "simulated/Card.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace simulated
{
namespace
{

constexpr double kStepMs = 50;             // the heat balance is stable at any step; clocks follow at this pace
constexpr double kMostStepsAtOnce = 20000; // after a long pause the steps grow instead
constexpr qint64 kClockBinKHz = 13000;     // boost clocks move in bins of this width
constexpr double kIdleBelowPercent = 8;    // load below which the card rests
constexpr double kBaseBelowPercent = 35;   // load below which it stays at its base clock
constexpr double kBoostFromPercent = 80;   // load from which it runs at its boost clock
constexpr double kBoostFadesAboveC = 60;   // one bin less for each kBoostFadeK above this
constexpr double kBoostFadeK = 6;
constexpr double kThermalCutKHzPerSecond = 130000;
constexpr double kMemorySettlesS = 4;
constexpr double kPerformanceExtraPercent = 20; // the performance policy runs the curve this much higher
constexpr double kDiscreteStepPercent = 10;

double curvePercent(const std::vector<FanParameters::CurvePoint> &curve, double temperatureC)
{
    if (curve.empty())
        return 0;
    if (temperatureC <= curve.front().temperatureC)
        return curve.front().percent;
    for (std::size_t i = 1; i < curve.size(); ++i) {
        const FanParameters::CurvePoint &from = curve[i - 1];
        const FanParameters::CurvePoint &to = curve[i];
        if (temperatureC > to.temperatureC)
            continue;
        const double width = to.temperatureC - from.temperatureC;
        if (width <= 0)
            return to.percent;
        return from.percent + (to.percent - from.percent) * (temperatureC - from.temperatureC) / width;
    }
    return curve.back().percent;
}

/// The part of the way to its aim that a lag of `settlesS` covers in `seconds`.
double covered(double seconds, double settlesS)
{
    return 1.0 - std::exp(-seconds / settlesS);
}

} // namespace

Card::Card(CardParameters cardParameters) : parameters(std::move(cardParameters))
{
    settings.powerLimit = parameters.power.standard;
    settings.temperatureLimit256 = parameters.thermal.standardC * 256;
    settings.coolers.resize(parameters.fan.count);
    if (parameters.ledControllerType)
        led.emplace(*parameters.ledControllerType);
    if (parameters.lcd)
        lcd.emplace();

    const ThermalParameters &thermal = parameters.thermal;
    state.temperatureC = thermal.ambientC + parameters.power.idleW / thermal.stillConductanceWK;
    warmLoadPercent = loadPercentAt(parameters.load, 0);
    state.temperatureC = thermal.pinnedC.value_or(state.temperatureC);
    state.fanPercent = meanAimPercent();
    step(0, 0);
}

void Card::advanceTo(double simulatedMs)
{
    const double gapMs = simulatedMs - advancedToMs;
    if (gapMs <= 0)
        return;
    const double stepMs = std::max(kStepMs, gapMs / kMostStepsAtOnce);
    while (advancedToMs < simulatedMs) {
        const double nextMs = std::min(advancedToMs + stepMs, simulatedMs);
        step(nextMs, (nextMs - advancedToMs) / 1000.0);
        advancedToMs = nextMs;
    }
}

qint64 Card::wantedGraphicsKHz() const
{
    const ClockParameters &clocks = parameters.clocks;
    if (state.loadPercent < kIdleBelowPercent)
        return clocks.idleKHz;
    if (state.loadPercent < kBaseBelowPercent)
        return qint64(clocks.baseKHz) + settings.graphicsOffsetKHz;
    const double way = (state.loadPercent - kBaseBelowPercent) / (kBoostFromPercent - kBaseBelowPercent);
    const double reach = double(clocks.boostKHz) - clocks.baseKHz;
    const double unreached = std::floor(reach * (1.0 - std::min(way, 1.0)) / kClockBinKHz);
    const double warmBins = std::max(0.0, std::floor((state.temperatureC - kBoostFadesAboveC) / kBoostFadeK));
    return qint64(clocks.boostKHz) + settings.graphicsOffsetKHz -
           static_cast<qint64>(unreached + warmBins) * kClockBinKHz;
}

double Card::voltageAt(qint64 graphicsKHz) const
{
    const VoltageParameters &voltage = parameters.voltage;
    const double idleKHz = parameters.clocks.idleKHz;
    const double width = std::max(1.0, parameters.clocks.boostKHz - idleKHz);
    const double way = std::clamp((static_cast<double>(graphicsKHz) - idleKHz) / width, 0.0, 1.0);
    const double offsets = settings.voltageOffset_uV + settings.overVoltage_uV;
    return voltage.idle_uV + way * (double(voltage.full_uV) - voltage.idle_uV + offsets);
}

double Card::powerAt(qint64 graphicsKHz) const
{
    const PowerParameters &power = parameters.power;
    const double speed = static_cast<double>(graphicsKHz) / std::max(1u, parameters.clocks.boostKHz);
    const double tension = voltageAt(graphicsKHz) / std::max(1u, parameters.voltage.full_uV);
    return power.idleW + (power.fullLoadW - power.idleW) * state.loadPercent / 100.0 * speed * tension * tension;
}

void Card::step(double simulatedMs, double seconds)
{
    state.loadPercent = loadPercentAt(parameters.load, simulatedMs);
    warmLoadPercent += (state.loadPercent - warmLoadPercent) * covered(seconds, kMemorySettlesS);

    // a driver holds the temperature limit by taking clock away bit by bit, and gives it back alike
    const double limitC = settings.temperatureLimit256 / 256.0;
    const qint64 idleKHz = parameters.clocks.idleKHz;
    const qint64 wantedKHz = wantedGraphicsKHz();
    if (state.temperatureC > limitC)
        thermalCutKHz += kThermalCutKHzPerSecond * seconds;
    else if (state.temperatureC < limitC - 1)
        thermalCutKHz -= kThermalCutKHzPerSecond * seconds;
    thermalCutKHz = std::clamp(thermalCutKHz, 0.0, std::max(0.0, static_cast<double>(wantedKHz - idleKHz)));

    qint64 graphicsKHz = wantedKHz - static_cast<qint64>(thermalCutKHz) / kClockBinKHz * kClockBinKHz;
    state.temperatureLimited = graphicsKHz < wantedKHz;
    const double limitW = parameters.power.nominalW * settings.powerLimit / 100000.0;
    state.powerLimited = false;
    while (graphicsKHz - kClockBinKHz >= idleKHz && powerAt(graphicsKHz) > limitW) {
        graphicsKHz -= kClockBinKHz;
        state.powerLimited = true;
    }
    state.graphicsKHz = std::max<qint64>(graphicsKHz, 0);
    state.memoryKHz = state.loadPercent < kIdleBelowPercent
                          ? qint64(parameters.clocks.memoryIdleKHz)
                          : std::max<qint64>(qint64(parameters.clocks.memoryKHz) + settings.memoryOffsetKHz, 0);
    state.voltage_uV = voltageAt(state.graphicsKHz);
    state.powerW = powerAt(state.graphicsKHz);

    const double reach = parameters.fan.percentPerSecond * seconds;
    state.fanPercent += std::clamp(meanAimPercent() - state.fanPercent, -reach, reach);

    const ThermalParameters &thermal = parameters.thermal;
    const double conductance = thermal.stillConductanceWK +
                               (thermal.fullConductanceWK - thermal.stillConductanceWK) * state.fanPercent / 100.0;
    const double settledC = thermal.ambientC + state.powerW / conductance;
    state.temperatureC += (settledC - state.temperatureC) * covered(seconds, thermal.heatCapacityJK / conductance);
    if (thermal.pinnedC)
        state.temperatureC = *thermal.pinnedC;

    const MemoryParameters &memory = parameters.memory;
    const double usedKB =
        memory.idleUsedKB + (double(memory.loadUsedKB) - memory.idleUsedKB) * warmLoadPercent / 100.0;
    state.memoryUsedKB = static_cast<quint32>(std::clamp(usedKB, 0.0, double(memory.totalKB)));
}

double Card::coolerAimPercent(std::size_t cooler) const
{
    const CardSettings::Cooler &setting = settings.coolers.at(cooler);
    const double curve = curvePercent(parameters.fan.curve, state.temperatureC);
    switch (setting.policy) {
    case kCoolerPolicyManual:
        return setting.manualPercent;
    case kCoolerPolicyPerformance:
        return std::min(curve + kPerformanceExtraPercent, 100.0);
    case kCoolerPolicyDiscreteTemperature:
        return std::ceil(curve / kDiscreteStepPercent) * kDiscreteStepPercent;
    default:
        return curve;
    }
}

double Card::meanAimPercent() const
{
    double mean = 0;
    for (std::size_t i = 0; i < settings.coolers.size(); ++i)
        mean += coolerAimPercent(i) / static_cast<double>(settings.coolers.size());
    return mean;
}

quint32 Card::fanRpm() const
{
    if (!parameters.fan.tachometer || settings.coolers.empty())
        return 0;
    return static_cast<quint32>(std::lround(state.fanPercent / 100.0 * parameters.fan.maximumRpm));
}

qint32 Card::boardTemperature16(const BoardSensorParameters &sensor) const
{
    const double ambientC = parameters.thermal.ambientC;
    const double degrees = sensor.pinnedC.value_or(ambientC + sensor.share * (state.temperatureC - ambientC));
    return static_cast<qint32>(std::lround(degrees * 16.0));
}

} // namespace simulated

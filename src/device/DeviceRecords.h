#pragma once

#include "device/CoolerPolicies.h"

#include <QMetaType>
#include <QtGlobal>

#include <array>
#include <limits>
#include <string>

/// \file
/// The value records that carry card data through the program. All integers are 32-bit signed unless
/// said otherwise; every field that could not be read is 0 (or the text "Unknown").

/// Page that the card's LCD shows; the value is the command byte of the LCD frame.
enum LCDDisplayMode
{
    LcdDisplayOther = 0x10, ///< reached by rotation only
    LcdDisplayMemory = 0x20,
    LcdDisplayTemperature = 0x40,
    LcdDisplayClock = 0x80,
};

/// One live sample of one quantity, with the extremes seen and the scale to draw it on.
struct NvMonitorValue
{
    qint32 maxValue = 0;     ///< largest value since the device object was made
    qint32 minValue = 0;     ///< smallest value since the device object was made
    qint32 currentValue = 0; ///< this sample; 0 when the read failed
    qint32 upperLimit = 0;   ///< top of the graph's scale, set by the sampling worker alone
    qint32 lowerLimit = 0;   ///< bottom of the graph's scale
};

/// One live sample of a card. Plain value: copied, compared, sent between threads.
struct NvCardBaseInfo
{
    NvMonitorValue gpuClock;           ///< MHz; scale 2000, permanently 3000 after a sample above 2000
    NvMonitorValue memoryClock;        ///< MHz; scale 5000, permanently 10000 after a sample above 5000
    NvMonitorValue fanSpeed;           ///< rpm; scale 3000, permanently 5000 after a sample above 1500
    NvMonitorValue temperature;        ///< degrees Celsius; scale 104
    NvMonitorValue memoryUsagePercent; ///< percent of dedicated memory; scale 100
    NvMonitorValue gpuUsage;           ///< percent; scale 100
    NvMonitorValue memoryUsage;        ///< MB used; upperLimit is the card's total in MB
};

/// One sample of the four board sensors, degrees Celsius, scale 0 to 100.
struct BoardTempCompleteInfo
{
    NvMonitorValue sensor9E; ///< I2C address 0x9E
    NvMonitorValue sensor90; ///< I2C address 0x90
    NvMonitorValue sensor96; ///< I2C address 0x96
    NvMonitorValue sensor92; ///< I2C address 0x92
};

static_assert(sizeof(NvCardBaseInfo) == 35 * sizeof(qint32), "35 words, no padding");
static_assert(sizeof(BoardTempCompleteInfo) == 20 * sizeof(qint32), "20 words, no padding");

/// The card's fixed information as texts ready to show, and the two clock differences in MHz.
struct NvInfo
{
    std::string gpuName;           ///< full name
    std::string memSize;           ///< "%dMB"
    std::string memBitWidth;       ///< "%dBIT"
    std::string memType;           ///< one of the memory type table
    std::string memBandWidth;      ///< "%.1fGB/s"
    std::string gpuFreClock;       ///< "%dMHz", default clock
    std::string memFreClock;       ///< "%dMHz", default clock
    std::string customGpuFreClock; ///< "%dMHz", with the user's offset
    qint32 gpuFreClockChanged = 0; ///< MHz, customised minus default
    qint32 memFreClockChanged = 0; ///< MHz, customised minus default
    std::string customMemFreClock; ///< "%dMHz", with the user's offset
    std::string driverVersion;     ///< the driver's integer as digits, without a point
    std::string biosVersion;       ///< upper case
};

/// Clocks in MHz.
struct NvClockSet
{
    qint32 gpuClock = 0;
    qint32 memoryClock = 0;
    qint32 processorClock = 0;
    /// The base frequencies were not read, so these are the maximum clocks of P0, boost included. They can't be
    /// compared with a base clock.
    bool fromPstates = false;
};

/// Utilisation in percent.
struct NvUsageInfo
{
    qint32 gpu = 0;
    qint32 frameBuffer = 0;
    qint32 video = 0;
    qint32 bus = 0;
};

/// The GPU's own sensor, degrees Celsius.
struct NvThermalInfo
{
    qint32 defaultMinTemp = 0;
    qint32 defaultMaxTemp = 0;
    qint32 currentTemp = 0;
};

/// Video memory in KB. The figures are the driver's unsigned words kept as signed ones.
struct NvMemoryInfo
{
    qint32 usedKB = 0;
    qint32 totalKB = 0;
    qint32 freeKB = 0;
    qint32 availableKB = 0;
};

/// State of the coolers; levels in percent.
struct NvCoolerInfo
{
    qint32 defaultMaxLevel = 0;
    qint32 defaultMinLevel = 0;
    qint32 unfilled1 = 0; ///< never filled
    qint32 unfilled2 = 0; ///< never filled
    qint32 tachRpm = 0;
    qint32 tachMin = 0; ///< rpm; 0 without a tachometer block
    qint32 tachMax = 0; ///< rpm; 0 without a tachometer block
    qint32 currentLevel = 0;
    qint32 currentPolicy = kCoolerPolicyDefault; ///< one of kCoolerPolicies; the driver's control until read
};

/// The offsets that a clock allows, MHz.
struct NvClockOffsetRange
{
    qint32 baseClock = 0;
    qint32 minOffset = 0;
    qint32 maxOffset = 0;
    bool editable = false;
    /// The part of `baseClock` that is the present offset. It is not 0 only for a memory clock of single type: the
    /// driver reports that base frequency with the offset in it.
    qint32 offsetInBase = 0;
};

/// Core voltage, millivolts.
struct NvVoltageInfo
{
    qint32 maxVoltage = 0;
    qint32 minVoltage = 0;
    qint32 baseVoltage = 0;      ///< without the user's offset
    qint32 baseVoltageAgain = 0; ///< the same value again
    qint32 currentVoltage = 0;
    bool editable = false;
};

/// The client power policy, percent of nominal power.
struct NvPowerInfo
{
    qint32 minPower = 0;
    qint32 maxPower = 0;
    qint32 defaultPower = 0;
    qint32 currentPower = 0;
    qint32 topologyPower = 0; ///< draw measured now
    qint32 policyId = 0;
    bool present = false;
};

/// The client thermal policy, degrees Celsius.
struct NvThermalPolicyInfo
{
    qint32 minTemp = 0;
    qint32 maxTemp = 0;
    qint32 defaultTemp = 0;
    qint32 currentTemp = 0;
    bool priority = false;
    qint32 policyId = 0;
    bool present = false;
};

/// A power limit in percent and the temperature limit in degrees Celsius that goes with it.
struct NvLimitPair
{
    float power = 0;
    float temperature = 0;
};

/// PCI identifiers: vendor in the low 16 bits, device in the high 16 bits of the first two.
struct NvPciIds
{
    quint32 deviceId = 0;
    quint32 subSystemId = 0;
    quint32 revisionId = 0;
    quint32 extDeviceId = 0;
};

/// The four board sensors, degrees Celsius; 0 where there is none.
struct NvBoardTemperatures
{
    qint32 sensor9E = 0;
    qint32 sensor90 = 0;
    qint32 sensor96 = 0;
    qint32 sensor92 = 0;
};

/// Largest and smallest value seen of one quantity. Untouched until the first value is folded in.
struct NvExtreme
{
    qint32 maxValue = std::numeric_limits<qint32>::min();
    qint32 minValue = std::numeric_limits<qint32>::max();
};

/// The quantities that a device object tracks, in the order of NvExtremes::pairs.
enum NvExtremeIndex
{
    ExtremeGpuClock,    ///< MHz
    ExtremeMemoryClock, ///< MHz
    ExtremeTachRpm,
    ExtremeTemperature, ///< degrees Celsius
    ExtremeMemoryUsed,  ///< KB
    ExtremeGpuUsage,    ///< percent
    ExtremeSensor9E,    ///< degrees Celsius
    ExtremeSensor90,
    ExtremeSensor96,
    ExtremeSensor92,
    ExtremeCount,
};

/// Ten pairs of maximum and minimum, living as long as their device object.
struct NvExtremes
{
    std::array<NvExtreme, ExtremeCount> pairs;
};

/// The LED controller's response to a status read. A caller prepares it with these defaults.
struct LedControllerState
{
    /// seven triples of red, green, blue
    std::array<quint8, 21> colours = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,
                                      0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
    qint32 colourCount = 0; ///< at most 7
    qint32 stateEffect = 0;
    qint32 stateLevel = 0;
    qint32 stateInterval = 0;
    quint8 controllerType = 0; ///< 3 can run the gradient effect
};

Q_DECLARE_METATYPE(NvCardBaseInfo)
Q_DECLARE_METATYPE(BoardTempCompleteInfo)
Q_DECLARE_METATYPE(NvInfo)
Q_DECLARE_METATYPE(LCDDisplayMode)

/// Registers the three records that cross threads under the names that text-form connections use.
void registerDeviceMetaTypes();

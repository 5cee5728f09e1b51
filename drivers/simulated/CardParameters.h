#pragma once

#include "simulated/LoadProfile.h"

#include <QtGlobal>

#include <optional>
#include <string>
#include <vector>

namespace simulated
{

/// The range that the driver allows for an offset.
struct OffsetRange
{
    bool editable = true;
    qint32 minimum = 0;
    qint32 maximum = 0;
};

struct PciParameters
{
    quint32 deviceId = 0x1B8210DE;    ///< vendor in the low half, device in the high half
    quint32 subSystemId = 0x111D7377; ///< vendor in the low half, device in the high half
    quint32 revisionId = 0xA1;
    quint32 extDeviceId = 0x1B82;
};

struct MemoryParameters
{
    quint32 totalKB = 8388608;
    quint32 reservedKB = 131072; ///< kept by the driver: total less this is "available"
    quint32 idleUsedKB = 524288;
    quint32 loadUsedKB = 5242880; ///< in use after some seconds of full load
    quint32 systemKB = 0;
    quint32 sharedKB = 8388608;
    quint32 ramType = 8; ///< the driver's number of the memory type; 8 is GDDR5
    quint32 busWidthBits = 256;
};

struct ClockParameters
{
    quint32 idleKHz = 139000;
    quint32 baseKHz = 1607000;
    quint32 boostKHz = 1683000;
    quint32 memoryIdleKHz = 405000;
    quint32 memoryKHz = 4004000;
    /// A memory clock of range type has base frequencies that leave the user's offset out; that of a
    /// single type contains it.
    bool memoryIsRange = true;
    OffsetRange graphicsOffsetKHz = {true, -200000, 1200000};
    OffsetRange memoryOffsetKHz = {true, -1000000, 1000000};
    std::vector<quint32> pstateIds = {0, 5, 8}; ///< in the order of the driver's answer; at most 16
};

struct VoltageParameters
{
    bool present = true; ///< false: the P-states list no base voltage
    quint32 idle_uV = 650000;
    quint32 full_uV = 1050000; ///< at the boost clock; also P0's base voltage
    OffsetRange offset_uV = {true, 0, 100000};
    OffsetRange overVoltage_uV = {true, 0, 100000};
};

struct PowerParameters
{
    bool present = true;   ///< false: topology and policy records are not valid
    double nominalW = 180; ///< what 100 percent means
    double idleW = 9;
    double fullLoadW = 158; ///< at full load, boost clock and default voltage
    quint32 policyId = 2;
    quint32 domainId = 0;                     ///< the policy's power channel
    std::vector<quint32> channelIds = {0, 1}; ///< at most 4; the first is the whole card
    quint32 minimum = 50000;                  ///< limits in thousandths of a percent
    quint32 standard = 100000;
    quint32 maximum = 120000;
};

struct ThermalParameters
{
    double ambientC = 28;
    double heatCapacityJK = 45;      ///< of chip and heat sink
    double stillConductanceWK = 1.6; ///< with the fan at rest
    double fullConductanceWK = 5.5;  ///< with the fan at 100 percent
    std::optional<double> pinnedC;   ///< holds the GPU at this temperature instead
    qint32 sensorMinimumC = 0;       ///< range that the sensor claims for itself
    qint32 sensorMaximumC = 127;
    std::vector<qint32> sensorTargets = {1}; ///< the place of each sensor, 1 is the GPU; at most 3
    bool policyPresent = true;               ///< false: the thermal policy records are not valid
    quint32 policyId = 1;
    qint32 minimumC = 60; ///< of the temperature limit
    qint32 standardC = 83;
    qint32 maximumC = 92;
};

struct FanParameters
{
    struct CurvePoint
    {
        double temperatureC = 0;
        double percent = 0;
    };
    quint32 count = 1; ///< coolers, 0 to 20; one drawn tachometer, that of the first
    bool tachometer = true;
    qint32 minimumPercent = 20;
    qint32 maximumPercent = 100;
    qint32 minimumRpm = 700;
    qint32 maximumRpm = 3300;
    double percentPerSecond = 40; ///< how fast the fan follows
    /// Level of the driver's own control, rising in both coordinates.
    std::vector<CurvePoint> curve = {{45, 20}, {60, 35}, {75, 55}, {85, 80}, {95, 100}};
};

struct BoardSensorParameters
{
    quint8 address = 0x9E;         ///< I2C, 8-bit form
    double share = 0.5;            ///< how much of the GPU's warmth above the room reaches it
    std::optional<double> pinnedC; ///< holds the sensor at this temperature instead
};

/// Everything about a card that does not change by itself.
struct CardParameters
{
    std::string name = "GeForce GTX 1070 Ti";
    std::string biosVersion = "86.04.85.00.c1";
    bool tcc = false; ///< listed by the TCC enumeration, without memory availability and displays
    quint32 displays = 1;
    PciParameters pci;
    MemoryParameters memory;
    ClockParameters clocks;
    VoltageParameters voltage;
    PowerParameters power;
    ThermalParameters thermal;
    FanParameters fan;
    LoadProfile load;
    std::vector<quint32> utilizationDomains = {0, 1, 2, 3}; ///< 0 gpu, 1 frame buffer, 2 video, 3 bus
    std::vector<BoardSensorParameters> boardSensors;
    std::optional<quint8> ledControllerType; ///< without a value there is no LED controller
    bool lcd = false;
};

} // namespace simulated

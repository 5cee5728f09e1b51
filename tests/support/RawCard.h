#pragma once

#include "device/nvapi/NvApiRecords.h"

#include <QByteArray>
#include <QMap>
#include <QSet>

#include <array>
#include <string>

/// What the stand-in driver answers for one card. A test edits it before or between the operations.
///
/// The records have the layout of their newest version; their version words and the counts are not
/// checked, so that a test can make them as hostile as it likes. A text of 64 or more bytes goes out
/// as 64 bytes without a terminating zero.
///
/// The defaults are a healthy card with one fan, one policy of each kind, the LED and LCD controllers
/// and the four board sensors.
struct RawCard
{
    RawCard();

    bool tcc = false; ///< listed by the TCC enumeration instead of the ordinary one

    std::string fullName = "GeForce GTX 1070 Ti";
    std::string vbiosVersion = "86.04.85.00.ab";
    quint32 deviceId = 0x1B8210DE;
    quint32 subSystemId = 0x111D7377;
    quint32 revisionId = 0xA1;
    quint32 extDeviceId = 0x1B82;
    quint32 ramType = 8; ///< GDDR5
    quint32 memoryWidthBits = 256;
    quint32 tachRpm = 1200;

    NvApiMemoryInfo memory{};                       ///< 8 GB, 2 GB of it in use
    std::array<NvApiClockFrequencies, 3> clocks{};  ///< by clock type: current, base, boost
    NvApiDynamicPstates utilization{};              ///< 41, 23, 7 and 3 percent
    NvApiThermalSettings thermal{};                 ///< one sensor: 52 degrees, range 0 to 94
    NV_GPU_PERF_PSTATES20_INFO pstates{};           ///< P0 and P8; both clocks of range type
    NvApiCoolerSettings coolers{};                  ///< one fan of 27 to 100 percent, now 33
    NvApiPowerTopologyInfo powerTopology{};         ///< channel 1
    NvApiPowerTopologyStatus powerTopologyStatus{}; ///< channel 1 at 45 percent
    NvApiPowerPoliciesInfo powerPolicies{};         ///< policy 2 in domain 1: 50, 100, 120 percent
    NvApiPowerPoliciesStatus powerStatus{};         ///< policy 2 at 110 percent
    NvApiThermalPoliciesInfo thermalPolicies{};     ///< policy 3: 60, 83, 90 degrees
    NvApiThermalPoliciesStatus thermalStatus{};     ///< policy 3 at 80 degrees

    QMap<quint8, QByteArray> i2cReplies; ///< by address; the bytes that a read gets, then zeros
    QSet<quint8> i2cListeners;           ///< addresses that acknowledge a write

    NV_GPU_PERF_PSTATES20_INFO::Clock &p0Clock(int index) { return pstates.pstates[0].clocks[index]; }
    NV_GPU_PERF_PSTATES20_INFO::Voltage &p0Voltage(int index) { return pstates.pstates[0].baseVoltages[index]; }
};

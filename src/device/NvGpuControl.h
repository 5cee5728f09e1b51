#pragma once

#include "device/DeviceRecords.h"

#include <QtGlobal>

#include <array>
#include <atomic>
#include <memory>
#include <mutex>
#include <string>

/// The one class through which the program reaches the card driver.
///
/// An instance addresses one card, chosen by `setCurrentGpu` before the instance is given to anyone;
/// each card has one long-lived instance, owned by the main dialog and shared by the card's pages and
/// workers. Every operation may be called from any thread: the lock covers only the look-up of the
/// card's handle and the running extremes, and driver calls of different threads may overlap.
///
/// A worker keeps its instance alive (`shareOf`), so a thread that can't be ended never uses a deleted one. An
/// instance without shared ownership, such as a local object, must outlive its workers.
///
/// A failure is the result false, or zeros in a result record that the operation clears first. Nothing throws,
/// nothing is logged. A handle that the driver has invalidated is not refreshed.
///
/// Records of the driver are tried newest version first; see nvapi/VersionLadder.h.
class NvGpuControl : public std::enable_shared_from_this<NvGpuControl>
{
public:
    /// Loads the driver and enumerates. Usable at once; a failed start leaves no card.
    NvGpuControl();
    ~NvGpuControl();
    NvGpuControl(const NvGpuControl &) = delete;
    NvGpuControl &operator=(const NvGpuControl &) = delete;

    // ---- frame ----
    bool initNvApi();    ///< false when the driver is missing or enumerating the cards failed
    bool enumDisplays(); ///< true when the walk ended orderly and the first display has an output
    bool enumGpus();     ///< ordinary cards, then the TCC cards; false when the first call failed
    [[nodiscard]] bool isReady() const { return nvApiReady; }
    [[nodiscard]] quint32 gpuCount(); ///< usable cards, TCC cards included
    void setCurrentGpu(qint32 index); ///< below 0 becomes 0; beyond the last card becomes the last
    [[nodiscard]] bool isTccGpu(void *handle) const;
    [[nodiscard]] std::string getGpuName(); ///< full name; empty on failure
    bool getPciIdentifiers(NvPciIds &out);  ///< zeroes `out` first

    // ---- fixed information ----
    void getFixedInfo(NvInfo &info);         ///< whole record; "Unknown" where a read failed; empty without a card
    bool getDriverVersion(quint32 &version); ///< five digits as one number; 0 and false on failure

    // ---- live telemetry; each read folds its value into the extremes ----
    bool getClockFrequencies(NvClockSet &out,
                             quint32 clockType); ///< MHz; 0 current, 1 base, 2 boost; `out` kept on failure
    void getCurrentClocks(NvClockSet &out);      ///< MHz; a failed read folds the former values of `out`
    bool getGpuUsage(NvUsageInfo &out);          ///< percent; zeros on failure
    /// Degrees Celsius; zeros and false on failure or without a GPU sensor.
    bool getThermalSensor(NvThermalInfo &out);
    bool getMemoryInfo(NvMemoryInfo &out);               ///< KB; zeros on failure; a TCC card has a total only
    bool readBoardSensor(quint8 address, int &value);    ///< degrees Celsius; 0 on failure
    void getBoardTemperatures(NvBoardTemperatures &out); ///< degrees Celsius; 0 for a missing sensor
    void getExtremes(NvExtremes &out);                   ///< a consistent copy

    // ---- clocks and voltage ----
    bool getBaseClocks(NvClockSet &out, bool wantDefault); ///< MHz; default clocks, or as customised
    void getGpuClockRange(NvClockOffsetRange &out);        ///< MHz; zeros on failure
    void getMemoryClockRange(NvClockOffsetRange &out);     ///< MHz; zeros on failure
    bool getVoltageInfo(NvVoltageInfo &out);               ///< millivolts
    bool setGpuClockOffset(qint32 offsetMHz);              ///< cut to the card's range
    bool setMemoryClockOffset(qint32 offsetMHz);           ///< cut to the card's range
    /// Cut to the range of P0's core voltage, and to 0 where that can't be read. 0 is sent in any case.
    bool setVoltageOffset(qint32 offsetMicroVolt);
    bool setOverVoltage(qint32 offsetMicroVolt); ///< sent as given, without a limit
    /// Every step is tried, except those whose default can't be read; true exactly when the power write succeeded.
    bool restoreDefaults();

    // ---- power and thermal policy ----
    bool getPowerInfo(NvPowerInfo &out);                 ///< percent
    bool getThermalPolicyInfo(NvThermalPolicyInfo &out); ///< degrees Celsius; `out` kept without a card
    bool setPowerLimit(quint32 policyId, float percent); ///< cut to the policy's range
    bool setThermalLimit(quint32 policyId, float degrees, bool priority); ///< cut to the policy's range
    void setThermalPriority(quint32 policyId, quint8 value);              ///< 0 or 1; silent on failure
    bool powerToTemperature(quint32 powerPolicyId, quint32 thermalPolicyId, float percent, NvLimitPair &out);
    bool temperatureToPower(quint32 powerPolicyId, quint32 thermalPolicyId, float degrees, float currentPercent,
                            NvLimitPair &out);

    // ---- coolers ----
    bool getCoolerInfo(NvCoolerInfo &out);
    /// Percent, cut to the cooler's range, or to 0 to 100 where that can't be read; -1 for the card's default.
    bool setCoolerLevel(qint32 level, qint32 policy);
    bool setCoolerAuto(); ///< returns the fan to the driver

    // ---- I2C, port 1 of the card at 400 kHz ----
    bool i2cRead(quint8 address, quint8 reg, quint32 regSize, quint8 *data, quint32 size);
    bool i2cWrite(quint8 address, quint8 reg, quint32 regSize, quint8 *data, quint32 size);
    /// One frame to the LED controller. `data` holds `len` colour bytes, null when `len` is 0.
    bool i2cWriteFramed(const quint8 *data, qint32 len, quint8 effect, quint8 level, quint8 interval, bool closing);
    bool readLedState(LedControllerState &out); ///< `out` stays as prepared on failure
    /// One frame of live readings to the LCD controller. `time` in seconds, `mode` an LCDDisplayMode.
    bool sendCardInfoToLcd(bool enable, bool autoSwitch, int time, int mode);

private:
    // Owned by the device sources; see NvGpuControl.cpp.
    static constexpr std::size_t kMaxGpus = 64;
    static constexpr std::size_t kMaxDisplays = 128;

    [[nodiscard]] void *currentHandle(); ///< null when no card is there
    void fold(NvExtremeIndex index, qint32 value);

    std::mutex lock; ///< guards currentGpu, the handle look-up and extremes
    NvExtremes extremes;
    quint32 usableGpuCount = 0; ///< entries of gpuHandles; at most kMaxGpus
    quint32 tccGpuCount = 0;
    std::array<void *, kMaxGpus> gpuHandles{}; ///< ordinary cards, then the TCC cards
    std::array<void *, kMaxGpus> tccGpuHandles{};
    quint32 currentGpu = 0;
    std::array<void *, kMaxDisplays> displayHandles{};
    quint32 displayCount = 0;
    quint32 outputId = 0;
    /// Data transfers a clock of the memory type, for the bandwidth; set by any thread that reads the fixed
    /// information.
    std::atomic<qint32> memoryRateFactor{2};
    bool nvApiReady = false;
    bool driverStarted = false; ///< the driver was started: the destructor unloads it
};

/// Shared ownership of a device object; empty for null and for an object without a shared owner.
[[nodiscard]] inline std::shared_ptr<NvGpuControl> shareOf(NvGpuControl *control)
{
    return control ? control->weak_from_this().lock() : nullptr;
}

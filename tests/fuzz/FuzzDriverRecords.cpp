#include "device/NvGpuControl.h"

#include "support/RawDriver.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>

// Every device operation against a driver whose statuses, counts, texts and records are the input's bytes.
//
// The first bytes choose statuses and what the enumerations tell, the rest fills one answer after the other and
// starts again at its end. The device must come back from each operation with its frames intact.

namespace
{

class Bytes
{
public:
    Bytes(const std::uint8_t *input, std::size_t inputSize) : data(input), size(inputSize) {}

    quint8 next()
    {
        if (size == 0)
            return 0;
        const quint8 byte = data[at];
        at = (at + 1) % size;
        return byte;
    }
    quint32 nextWord()
    {
        quint32 word = 0;
        for (int i = 0; i < 4; ++i)
            word = word << 8 | next();
        return word;
    }

private:
    const std::uint8_t *data;
    std::size_t size;
    std::size_t at = 0;
};

/// Ends the run; assertions may be compiled out.
void require(bool holds)
{
    if (!holds)
        std::abort();
}

void readEverything(NvGpuControl &gpu)
{
    NvInfo info;
    gpu.getFixedInfo(info);
    require(info.gpuName.size() <= kNvApiShortTextSize && info.biosVersion.size() <= kNvApiShortTextSize);
    (void)gpu.getGpuName();

    NvPciIds ids;
    NvClockSet clocks;
    NvUsageInfo usage;
    NvThermalInfo thermal;
    NvMemoryInfo memory;
    NvCoolerInfo cooler;
    NvBoardTemperatures board;
    NvExtremes extremes;
    NvClockOffsetRange range;
    NvVoltageInfo voltage;
    NvPowerInfo power;
    NvThermalPolicyInfo policy;
    NvLimitPair pair;
    LedControllerState led;
    gpu.getPciIdentifiers(ids);
    for (quint32 type = kClockTypeCurrent; type <= kClockTypeBoost; ++type)
        gpu.getClockFrequencies(clocks, type);
    gpu.getCurrentClocks(clocks);
    gpu.getGpuUsage(usage);
    gpu.getThermalSensor(thermal);
    gpu.getMemoryInfo(memory);
    gpu.getCoolerInfo(cooler);
    gpu.getBoardTemperatures(board);
    require(board.sensor9E >= -128 && board.sensor9E <= 127);
    gpu.getExtremes(extremes);
    gpu.getBaseClocks(clocks, true);
    gpu.getBaseClocks(clocks, false);
    gpu.getGpuClockRange(range);
    gpu.getMemoryClockRange(range);
    gpu.getVoltageInfo(voltage);
    gpu.getPowerInfo(power);
    gpu.getThermalPolicyInfo(policy);
    gpu.powerToTemperature(quint32(power.policyId), quint32(policy.policyId), 100, pair);
    gpu.temperatureToPower(quint32(power.policyId), quint32(policy.policyId), 80, 110, pair);
    gpu.powerToTemperature(quint32(power.policyId), 0xDEAD, 100, pair);
    gpu.readLedState(led);
    require(led.colourCount >= 0 && led.colourCount <= 7);
}

void writeEverything(NvGpuControl &gpu, Bytes &bytes)
{
    NvPowerInfo power;
    NvThermalPolicyInfo policy;
    gpu.getPowerInfo(power);
    gpu.getThermalPolicyInfo(policy);
    gpu.setGpuClockOffset(qint32(bytes.nextWord()));
    gpu.setMemoryClockOffset(qint32(bytes.nextWord()));
    gpu.setVoltageOffset(qint32(bytes.nextWord()));
    gpu.setPowerLimit(quint32(power.policyId), float(bytes.next()));
    gpu.setThermalLimit(quint32(policy.policyId), float(bytes.next()), true);
    gpu.setThermalPriority(quint32(policy.policyId), bytes.next());
    gpu.setCoolerLevel(-1, 1);
    gpu.setCoolerLevel(bytes.next(), bytes.next());
    gpu.setCoolerAuto();
    gpu.restoreDefaults();
    gpu.i2cWriteFramed(nullptr, 0, 10, 0, 0, false);
    gpu.sendCardInfoToLcd(bytes.next() & 1, bytes.next() & 1, bytes.next(), bytes.next());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr NvAPI_Status statuses[] = {-9, -1, -5, -10, -101, -104, -3, 1};
    Bytes bytes(data, size);
    RawDriver driver;
    const quint8 failureRate = bytes.next();
    const quint8 displays = bytes.next();
    driver.displays = displays == 0xFF ? 0xFFFFFFFF : displays;
    driver.gpuCountTold = bytes.next() & 1 ? bytes.nextWord() : 1;
    driver.tccGpuCountTold = bytes.next() & 1 ? bytes.nextWord() : 0;
    driver.decides = [&]() -> std::optional<NvAPI_Status> {
        if (failureRate == 0 || bytes.next() >= failureRate)
            return std::nullopt;
        return statuses[bytes.next() % std::size(statuses)];
    };
    driver.tamper = [&](quint8 *answer, std::size_t answerSize) {
        // a whole answer, a few of its bytes, or none
        const quint8 how = bytes.next();
        if (how & 1) {
            std::generate(answer, answer + answerSize, [&] { return bytes.next(); });
        } else if (how & 2) {
            for (int i = 0; i < 8; ++i) {
                const std::size_t at = bytes.nextWord() % answerSize;
                answer[at] = bytes.next();
            }
        }
    };
    {
        NvGpuControl gpu;
        require(gpu.gpuCount() <= kNvApiMaxGpus);
        gpu.setCurrentGpu(int(bytes.next()) - 1);
        readEverything(gpu);
        writeEverything(gpu, bytes);
    }
    require(driver.strayCalls() == 0);
    return 0;
}

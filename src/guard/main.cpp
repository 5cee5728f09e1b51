#include "device/NvGpuControl.h"
#include "guard/WatchList.h"
#include "platform/OutliveSession.h"

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string>
#include <thread>

// ovryn-fan-guard: waits for the end of the program that started it. It then returns to the driver the fans that the
// program left at the last level of a curve. It loads the driver only then.

namespace
{

/// A driver that has just lost a process in the middle of a call may refuse for a moment.
constexpr int kTries = 5;
constexpr std::chrono::seconds kBetweenTries(1);

/// A driver that hangs must not leave a process for ever.
constexpr std::chrono::seconds kLimit(60);

void limitRuntime()
{
    std::thread([] {
        std::this_thread::sleep_for(kLimit);
        std::_Exit(EXIT_FAILURE);
    }).detach();
}

bool returnFanToDriver(NvGpuControl &control, qint32 gpuIndex)
{
    control.setCurrentGpu(gpuIndex);
    for (int tries = 0; tries < kTries; ++tries) {
        if (control.setCoolerAuto())
            return true;
        std::this_thread::sleep_for(kBetweenTries);
    }
    return false;
}

} // namespace

int main()
{
    outliveTheSession();
    WatchList list;
    // A line without its end was cut off by the program's death in the middle of writing it.
    for (std::string line; std::getline(std::cin, line) && !std::cin.eof();)
        list.apply(line);
    if (list.cards().empty())
        return EXIT_SUCCESS;

    limitRuntime();
    NvGpuControl control;
    bool allTaken = true;
    for (const qint32 gpuIndex : list.cards())
        allTaken = returnFanToDriver(control, gpuIndex) && allTaken;
    return allTaken ? EXIT_SUCCESS : EXIT_FAILURE;
}

#pragma once

/// Takes the place of the system's calls that change files, in the test program that links this: counts them, ends
/// the process at one of them, or lets them fail from one on. Nothing is counted before `arm`. One thread.
namespace FailingDisk
{

enum class Way
{
    CountOnly,
    EndProcess,   ///< before the call: as a kill or a power cut
    EndInWriting, ///< a write has done half of its work; any other call nothing
    FailOnce,     ///< this call alone fails, with EIO
    DiskFull,     ///< from this call on everything that needs room fails
    ReadOnly,     ///< from this call on everything fails
};

constexpr int kEndedByDisk = 99; ///< exit status of a process that was ended here

void arm(Way way, int call); ///< `call` counts from 1
[[nodiscard]] int calls();   ///< since `arm`

} // namespace FailingDisk

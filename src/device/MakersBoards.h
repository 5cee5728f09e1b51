#pragma once

#include <QtGlobal>

/// \file
/// How the maker's own boards are recognised: by the halves of their PCI subsystem identifier and by the name of the
/// chip.

constexpr quint32 kMakerSubSystemVendor = 0x7377; ///< in PCI's list of vendors

/// Full name, as the driver gives it, of the one model that has a high-performance mode.
constexpr char kHighPerformanceModel[] = "GeForce GTX 1070 Ti";

/// The two halves of a subsystem identifier.
[[nodiscard]] constexpr quint32 subSystemVendorOf(quint32 subSystemId)
{
    return subSystemId & 0xFFFFu;
}
[[nodiscard]] constexpr quint32 subSystemDeviceOf(quint32 subSystemId)
{
    return subSystemId >> 16;
}

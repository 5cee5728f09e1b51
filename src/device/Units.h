#pragma once

#include <QtGlobal>

/// \file
/// The driver's units in the program's units. A quotient has the type of the divided value: an unsigned word stays
/// unsigned, an offset stays signed.

constexpr qint32 kKHzPerMHz = 1000;
constexpr qint32 kMicrovoltsPerMillivolt = 1000;
constexpr qint32 kThousandthsPerPercent = 1000; ///< power policies are in thousandths of a percent
constexpr qint32 kMegabytesPerGigabyte = 1000;  ///< of a bandwidth
constexpr int kKBPerMBBits = 10;                ///< of memory
constexpr qint32 kKBPerMB = 1 << kKBPerMBBits;
constexpr qint32 kMillisecondsPerSecond = 1000;

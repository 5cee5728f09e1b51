#pragma once

#include "device/DeviceRecords.h"

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <vector>

/// \file
/// The messages of the LED controller on the card's I2C bus.
///
/// A write frame: size, effect, level, interval, three bytes (red, green, blue) a colour, checksum. The controller
/// keeps running the last effect that it received.

constexpr quint8 kLedWriteAddress = 0xA0; ///< 8-bit form
constexpr quint8 kLedReadAddress = 0xA1;  ///< 8-bit form, with the direction bit
constexpr quint8 kLedRegister = 0;        ///< never sent: the controller has no registers
constexpr quint32 kLedRegisterSize = 0;   ///< bytes of the register's address

constexpr std::size_t kLedSizeOffset = 0; ///< size of the whole frame, with kLedClosingFlag
constexpr std::size_t kLedEffectOffset = 1;
constexpr std::size_t kLedLevelOffset = 2;
constexpr std::size_t kLedIntervalOffset = 3;
constexpr std::size_t kLedColoursOffset = 4;
constexpr std::size_t kLedChecksumSize = 1;
constexpr std::size_t kLedFrameOverhead = kLedColoursOffset + kLedChecksumSize; ///< a frame without colours

constexpr quint8 kLedClosingFlag = 0x80; ///< in the size byte of the frame that is sent when the page is deleted

constexpr std::size_t kLedMaxColours = 7;
constexpr std::size_t kLedBytesPerColour = 3;

/// The frame of `len` colour bytes. Null `data` or a negative `len` means no colours.
[[nodiscard]] std::vector<quint8> buildLedFrame(const quint8 *data, qint32 len, quint8 effect, quint8 level,
                                                quint8 interval, bool closing);

constexpr std::size_t kLedStatusSize = 27; ///< bytes; the last one is not examined
constexpr std::size_t kLedStatusTypeOffset = 0;
constexpr std::size_t kLedStatusColourCountOffset = 1;
constexpr std::size_t kLedStatusEffectOffset = 2;
constexpr std::size_t kLedStatusLevelOffset = 3;
constexpr std::size_t kLedStatusIntervalOffset = 4;
constexpr std::size_t kLedStatusColoursOffset = 5;

using LedStatusFrame = std::array<quint8, kLedStatusSize>;

/// Copies the status into `out`; colours beyond the frame's count keep what `out` held.
void decodeLedStatus(const LedStatusFrame &frame, LedControllerState &out);

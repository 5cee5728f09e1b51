#pragma once

#include <QtGlobal>

#include <array>
#include <cstddef>
#include <string>

/// \file
/// The frame for the LCD controller on the card's I2C bus. The controller draws; it gets the readings and a command
/// byte that selects the page. Multi-byte fields are little-endian; a field of two bytes holds the low 16 bits of its
/// value.

constexpr quint8 kLcdAddress = 0xAC;    ///< 8-bit form; nothing is ever read from it
constexpr quint8 kLcdRegister = 0;      ///< never sent: the controller has no registers
constexpr quint32 kLcdRegisterSize = 0; ///< bytes of the register's address

constexpr std::size_t kLcdFrameSize = 35;
constexpr std::size_t kLcdMagicOffset = 0; ///< two bytes
constexpr std::size_t kLcdSequenceOffset = 2;
constexpr std::size_t kLcdCommandOffset = 3;
constexpr std::size_t kLcdMemoryTotalOffset = 4;   ///< four bytes, KB
constexpr std::size_t kLcdBaseClockOffset = 8;     ///< two bytes, MHz
constexpr std::size_t kLcdThermalLimitOffset = 10; ///< two bytes, degrees Celsius
constexpr std::size_t kLcdFanMaxRpmOffset = 12;    ///< two bytes
constexpr std::size_t kLcdModelDigitsOffset = 14;  ///< kLcdModelDigitCount bytes
constexpr std::size_t kLcdModelTiOffset = 18;
constexpr std::size_t kLcdFanFlagOffset = 19;
constexpr std::size_t kLcdMemoryUsedOffset = 21;   ///< four bytes, KB
constexpr std::size_t kLcdCurrentClockOffset = 25; ///< two bytes, MHz
constexpr std::size_t kLcdTemperatureOffset = 27;  ///< two bytes, degrees Celsius
constexpr std::size_t kLcdFanRpmOffset = 29;       ///< two bytes
constexpr std::size_t kLcdChecksumOffset = 33;     ///< two bytes, sum of all bytes before it

constexpr quint8 kLcdMagic1 = 0xAA;
constexpr quint8 kLcdMagic2 = 0x88;
constexpr std::size_t kLcdModelDigitCount = 4;

constexpr quint8 kLcdCommandOff = 0xF0;        ///< the LCD goes dark
constexpr quint8 kLcdCommandAutoSwitch = 0xF0; ///< ORed with the code of the switch time

/// The model of a card, from its name.
struct LcdModel
{
    std::array<quint8, kLcdModelDigitCount> digits{}; ///< values 0 to 9, right-aligned; zeros without a number
    bool isTi = false;
};

/// Takes the model from the name, such as "GeForce GTX 1080 Ti"; zeros for a name without "GTX".
[[nodiscard]] LcdModel lcdModelOf(const std::string &gpuName);

/// The command byte: off, the page `mode`, or the switch time (in seconds) at which the controller rotates.
[[nodiscard]] quint8 lcdCommand(bool enable, bool autoSwitch, int timeSeconds, int mode);

/// Whether the frame reports a turning fan: only on cards of one maker, and only when the name has no "Ti".
[[nodiscard]] bool lcdFanFlag(quint32 subSystemId, const std::string &gpuName, qint32 fanRpm);

/// Everything that a frame carries.
struct LcdReadings
{
    quint8 sequence = 0; ///< counts the frames of the process, wrapping
    quint8 command = 0;
    quint32 memoryTotalKB = 0;
    qint32 baseClockMHz = 0;
    qint32 thermalLimit = 0; ///< degrees Celsius
    qint32 fanMaxRpm = 0;
    LcdModel model;
    bool fanFlag = false;
    quint32 memoryUsedKB = 0;
    qint32 currentClockMHz = 0;
    qint32 temperature = 0; ///< degrees Celsius
    qint32 fanRpm = 0;
};

using LcdFrame = std::array<quint8, kLcdFrameSize>;

[[nodiscard]] LcdFrame buildLcdFrame(const LcdReadings &readings);

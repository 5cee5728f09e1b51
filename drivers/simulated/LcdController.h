#pragma once

#include <QtGlobal>

#include <array>
#include <string>
#include <vector>

namespace simulated
{

/// The card's LCD controller at I2C address 0xAC; it is only ever written to.
///
/// A frame of 35 bytes: AA 88, sequence, command, readings, and the 16-bit sum of the 33 bytes before it.
class LcdController
{
public:
    /// The content of the last valid frame.
    struct Frame
    {
        quint8 sequence = 0;
        quint8 command = 0xF0; ///< 0xF0 is off
        quint32 memoryTotalKB = 0;
        quint16 baseClockMHz = 0;
        quint16 thermalLimitC = 0;
        quint16 fanMaxRpm = 0;
        std::array<quint8, 4> modelDigits{};
        quint8 modelTi = 0;
        quint8 fanFlag = 0;
        quint32 memoryUsedKB = 0;
        quint16 currentClockMHz = 0;
        quint16 temperatureC = 0;
        quint16 fanRpm = 0;
    };

    /// Why the controller refuses a frame; an empty text for a valid one.
    [[nodiscard]] static std::string faultOf(const std::vector<quint8> &bytes);

    /// Takes a frame. Returns an empty text for a valid one, else what is wrong with it.
    std::string write(const std::vector<quint8> &bytes);

    Frame shown;
    std::vector<quint8> lastFrame; ///< the last good frame
    int acceptedFrames = 0;
    int refusedFrames = 0;
};

} // namespace simulated

#pragma once

#include <QtGlobal>

#include <string>
#include <vector>

namespace simulated
{

/// The card's LED controller at I2C address 0xA0 (write) and 0xA1 (read).
///
/// A frame: size with the closing flag in bit 7, effect, level, interval, red-green-blue triples, and the
/// complement of the 8-bit sum of all that. It is taken whole or not at all.
class LedController
{
public:
    struct Frame
    {
        quint8 effect = 0;
        quint8 level = 0;
        quint8 interval = 0;
        bool closing = false;
        std::vector<quint8> colours; ///< red, green, blue each
    };

    explicit LedController(quint8 controllerType) : type(controllerType) {}

    /// Why the controller refuses a frame; an empty text for a valid one.
    [[nodiscard]] static std::string faultOf(const std::vector<quint8> &bytes);

    /// Takes a frame. Returns an empty text for a valid one, else what is wrong with it.
    std::string write(const std::vector<quint8> &bytes);

    /// The status frame of 27 bytes.
    [[nodiscard]] std::vector<quint8> status() const;

    quint8 type;
    Frame shown;                   ///< what the LEDs show; a probe does not change it
    std::vector<quint8> lastFrame; ///< the last good frame, probes included
    int acceptedFrames = 0;
    int refusedFrames = 0;
};

} // namespace simulated

#pragma once

#include "support/RawCard.h"
#include "support/StandInDriver.h"

#include <array>

/// What a driver of raw records answers. A test edits it before or between the calls.
struct RawMachine
{
    std::vector<RawCard> cards{1};
    quint32 displays = 1;
    NvAPI_Status displayWalkEnd = NVAPI_END_ENUMERATION;
    std::optional<quint32> gpuCountTold;    ///< in place of the true number of ordinary cards
    std::optional<quint32> tccGpuCountTold; ///< in place of the true number of TCC cards
    quint32 driverVersion = 38532;
    NvApiChipsetInfo chipset{};
    /// Overwrites what an answer has just filled: the bytes after a record's version word, a text, a number, or the
    /// data of an I2C read.
    std::function<void(quint8 *bytes, std::size_t size)> tamper;
};

/// A driver that answers with the records that the test writes, at the versions that it is to know, and takes every
/// write without keeping it. For bytes, hostile records, and drivers that do not keep what is written.
///
/// It writes no byte beyond the size that a record's version word tells, and older record versions in their own entry
/// sizes. Calls are not judged.
class RawDriver : public RawMachine, public StandInDriver
{
public:
    enum class I2cRecordSize
    {
        OfVersionTable, ///< as every stand-in wants the version words
        OfThisProcess,  ///< as the card driver's own library wants them
    };

    explicit RawDriver(I2cRecordSize i2cRecordSize = I2cRecordSize::OfVersionTable);

    RawCard &card(std::size_t index = 0) { return cards.at(index); }
    /// For a change of a card that other threads ask: no call is answered meanwhile.
    void edit(std::size_t index, const std::function<void(RawCard &)> &change);
};

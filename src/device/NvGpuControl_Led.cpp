#include "device/NvGpuControl.h"

#include "device/LedFrame.h"

// The LED controller.

bool NvGpuControl::i2cWriteFramed(const quint8 *data, qint32 len, quint8 effect, quint8 level, quint8 interval,
                                  bool closing)
{
    std::vector<quint8> frame = buildLedFrame(data, len, effect, level, interval, closing);
    return i2cWrite(kLedWriteAddress, kLedRegister, kLedRegisterSize, frame.data(),
                    static_cast<quint32>(frame.size()));
}

bool NvGpuControl::readLedState(LedControllerState &out)
{
    LedStatusFrame frame{};
    if (!i2cRead(kLedReadAddress, kLedRegister, kLedRegisterSize, frame.data(), kLedStatusSize))
        return false;
    decodeLedStatus(frame, out);
    return true;
}

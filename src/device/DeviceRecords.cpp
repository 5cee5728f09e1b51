#include "device/DeviceRecords.h"

void registerDeviceMetaTypes()
{
    qRegisterMetaType<NvCardBaseInfo>("NvCardBaseInfo");
    qRegisterMetaType<NvInfo>("NvInfo");
    qRegisterMetaType<BoardTempCompleteInfo>("BoardTempCompleteInfo");
}

#include "device/nvapi/DriverText.h"

#include <algorithm>

std::string driverText(const DriverTextBuffer &buffer)
{
    return std::string(buffer.begin(), std::find(buffer.begin(), buffer.end(), '\0'));
}

void dropErrorText(NvAPI_Status status)
{
    DriverTextBuffer text{};
    NvAPI_GetErrorMessage(status, text.data());
}

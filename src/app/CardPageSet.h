#pragma once

#include <memory>

class NvGpuControl;
class Ovryn_BoardInfoMainWidget;
class Ovryn_ColorPaletteBox;
class Ovryn_GpuFixedInfo;
class Ovryn_GpuInfoCircleBox;
class Ovryn_LCDControllorWidget;
class Ovryn_LEDControlWidget;
class Ovryn_NvCardInfoWidget;
class Ovryn_OverClockingWidget;
class Ovryn_SendNvCardInfoThread;
class QWidget;

/// One card's pages and its sampling worker. The dialog owns every set; the pages belong to the widget tree, and the
/// dialog deletes the worker and the pages that have one in a fixed order. The workers share the device object.
struct CardPageSet
{
    Ovryn_NvCardInfoWidget *monitorPage = nullptr;
    Ovryn_OverClockingWidget *adjustPage = nullptr;
    Ovryn_LEDControlWidget *ledPage = nullptr;
    Ovryn_LCDControllorWidget *lcdPage = nullptr;
    Ovryn_GpuInfoCircleBox *circleBox = nullptr;
    Ovryn_ColorPaletteBox *colorPalette = nullptr; ///< takes the gauge's place beside the LED page
    Ovryn_GpuFixedInfo *fixedInfoPage = nullptr;
    Ovryn_SendNvCardInfoThread *infoWorker = nullptr;
    std::shared_ptr<NvGpuControl> gpuControl;
    Ovryn_BoardInfoMainWidget *boardInfoPage = nullptr; ///< nothing feeds it and nothing leads to it
};

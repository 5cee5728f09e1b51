#pragma once

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

/// One card's pages and its sampling worker. The dialog owns every set; the pages themselves belong to
/// the widget tree, the worker and the device object are deleted by hand, worker first.
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
    NvGpuControl *gpuControl = nullptr;
    Ovryn_BoardInfoMainWidget *boardInfoPage = nullptr; ///< nothing feeds it and nothing leads to it
};

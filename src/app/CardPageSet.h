#pragma once

#include "app/CardDetection.h"
#include "app/Page.h"

#include <QList>

#include <memory>

class FanGuard;
class NvGpuControl;
class Ovryn_BoardInfoMainWidget;
class Ovryn_ColorPaletteBox;
class Ovryn_ConfigFile;
class Ovryn_GpuFixedInfo;
class Ovryn_GpuInfoCircleBox;
class Ovryn_LCDControllorWidget;
class Ovryn_LEDControlWidget;
class Ovryn_LanguageTable;
class Ovryn_NvCardInfoWidget;
class Ovryn_OverClockingWidget;
class Ovryn_SendNvCardInfoThread;
class QWidget;
struct PageTimings;

/// Everything that the program has for one card: its device object, its pages and its sampling worker. This is the
/// only class that knows all pages of a card; the main dialog knows them as numbers of `Page`.
///
/// The dialog owns every set. The pages are children of the dialog's window from the start; the set deletes those
/// that have a worker, and its own worker, in a fixed order, and the window deletes the others. GUI thread only. A
/// failed read of the card shows as zeros on its pages.
class CardPageSet
{
public:
    /// Makes the pages, each from what `saved` keeps for the card, and starts the sampling worker. A null `saved`
    /// makes all of them without saved values. The guard is borrowed.
    CardPageSet(const GpuCardInfo &card, const Ovryn_ConfigFile *saved, const PageTimings &timings,
                FanGuard &fanGuard, QWidget *window);
    ~CardPageSet();
    CardPageSet(const CardPageSet &) = delete;
    CardPageSet &operator=(const CardPageSet &) = delete;

    [[nodiscard]] const GpuCardInfo &card() const { return cardInfo; }
    [[nodiscard]] Ovryn_OverClockingWidget *adjust() const { return adjustPage; }

    [[nodiscard]] QList<QWidget *> rollingPages() const; ///< for the stack of pages, in its order
    [[nodiscard]] QList<QWidget *> gaugeWidgets() const; ///< for the stack at the gauge's place

    struct View
    {
        QWidget *page;   ///< null for the home page
        QWidget *beside; ///< at the gauge's place
    };
    /// The widgets of a page of this card. A card without LEDs or an LCD shows its information in their place.
    [[nodiscard]] View view(Page page) const;

    void setLanguage(const Ovryn_LanguageTable &texts);
    void setAdvancedEffects(bool advanced);
    void setRefreshTime(unsigned int ms);
    void keepSettings(Ovryn_ConfigFile &file) const; ///< each page's section, under the card's name and subsystem

    void requestEnd();        ///< asks every worker of the card to end; waits for nothing
    void returnFanToDriver(); ///< to the driver, where the user's curve drives it; this ends the adjust page's work

private:
    void connectPages();

    const GpuCardInfo cardInfo;
    Ovryn_NvCardInfoWidget *monitorPage = nullptr;
    Ovryn_OverClockingWidget *adjustPage = nullptr;
    Ovryn_LEDControlWidget *ledPage = nullptr;
    Ovryn_LCDControllorWidget *lcdPage = nullptr;
    Ovryn_GpuInfoCircleBox *circleBox = nullptr;
    Ovryn_ColorPaletteBox *colorPalette = nullptr; ///< takes the gauge's place beside the LED page
    Ovryn_GpuFixedInfo *fixedInfoPage = nullptr;
    Ovryn_SendNvCardInfoThread *infoWorker = nullptr;
    std::shared_ptr<NvGpuControl> gpuControl;           ///< the workers have shares of it
    Ovryn_BoardInfoMainWidget *boardInfoPage = nullptr; ///< it gets no data, and no button leads to it
};

#pragma once

#include "device/DeviceRecords.h"
#include "monitor/graphs/GraphStackView.h"
#include "ui/Ovryn_LanguageTable.h"

/// The graph view of a card's monitor page: a scrolling stack of the graphs of the quantities that are ticked
/// on the rows view. Starts with the temperature alone. Owned by the page, GUI thread.
class Ovryn_GPUInfoMonitorWidget : public GraphStackView
{
    Q_OBJECT

public:
    explicit Ovryn_GPUInfoMonitorWidget(QWidget *parent = nullptr);

    void setLanguage(Lang_Monitor newTexts, LanguageType newLanguage);

public slots:
    void receiveNvCardBaseInfo(NvCardBaseInfo sample);

private:
    NvCardBaseInfo nvCardBaseInfo; ///< as last received
    Lang_Monitor texts;
    LanguageType language = kLanguageChinese;
};

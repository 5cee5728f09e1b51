#pragma once

#include "device/DeviceRecords.h"
#include "monitor/graphs/RowListView.h"
#include "ui/Ovryn_LanguageTable.h"

/// The rows view of a card's monitor page: six quantities with current, highest and lowest value, each with a
/// check box that puts its graph on the other view. Owned by the page, GUI thread.
class Ovryn_GPUInfoWidget : public RowListView
{
    Q_OBJECT

public:
    explicit Ovryn_GPUInfoWidget(QWidget *parent = nullptr);

    void setLanguage(Lang_Monitor newTexts, LanguageType newLanguage);

public slots:
    void receiveNvCardBaseInfo(NvCardBaseInfo sample);

private:
    NvCardBaseInfo nvCardBaseInfo; ///< as last received
    Lang_Monitor texts;
    LanguageType language = kLanguageChinese;
};

#pragma once

#include "device/DeviceRecords.h"
#include "monitor/graphs/RowListView.h"
#include "ui/Ovryn_LanguageTable.h"

/// The rows view of the board temperatures: four sensors with current, highest and lowest value in degrees Celsius,
/// each with a check box that puts its graph on the other view. Owned by the page, GUI thread. A sensor that is not
/// there reads 0.
class Ovryn_BoardInfoWidget : public RowListView
{
    Q_OBJECT

public:
    explicit Ovryn_BoardInfoWidget(QWidget *parent = nullptr);

    void setLanguage(Lang_BoardInfo newTexts, LanguageType newLanguage);

public slots:
    void receiveBoardTempCompleteInfo(BoardTempCompleteInfo boardTempCompleteInfo);

private:
    BoardTempCompleteInfo lastSample;
    Lang_BoardInfo texts;
    LanguageType language = kLanguageChinese;
};

#pragma once

#include "device/DeviceRecords.h"
#include "monitor/graphs/GraphStackView.h"
#include "ui/Ovryn_LanguageTable.h"

/// The graph view of the board temperatures: a scrolling stack of the graphs of the sensors that are ticked on the
/// rows view. Starts with none. Owned by the page, GUI thread.
class Ovryn_BoardInfoMonitorWidget : public GraphStackView
{
    Q_OBJECT

public:
    explicit Ovryn_BoardInfoMonitorWidget(QWidget *parent = nullptr);

    void setLanguage(Lang_BoardInfo newTexts, LanguageType newLanguage);

public slots:
    void receiveBoardTempCompleteInfo(BoardTempCompleteInfo boardTempCompleteInfo);

private:
    BoardTempCompleteInfo lastSample;
    Lang_BoardInfo texts;
    LanguageType language = kLanguageChinese;
};

#include "board/temperatures/Ovryn_BoardInfoWidget.h"

#include "board/temperatures/BoardSensors.h"
#include "monitor/graphs/MonitorQuantities.h"

#include <utility>

namespace
{
constexpr int kRowsPerHeight = kMonitorQuantityCount; // rows as high as those of the card's monitor page
}

Ovryn_BoardInfoWidget::Ovryn_BoardInfoWidget(QWidget *parent) : RowListView(kBoardSensorCount, kRowsPerHeight, parent)
{
    setLanguage(Ovryn_LanguageTable().boardInfo, kLanguageChinese);
}

void Ovryn_BoardInfoWidget::setLanguage(Lang_BoardInfo newTexts, LanguageType newLanguage)
{
    texts = std::move(newTexts);
    language = newLanguage;
    for (int i = 0; i < kBoardSensorCount; ++i)
        setRowTitle(i, texts.*kBoardSensors[i].title);
}

void Ovryn_BoardInfoWidget::receiveBoardTempCompleteInfo(BoardTempCompleteInfo boardTempCompleteInfo)
{
    lastSample = boardTempCompleteInfo;
    for (int i = 0; i < kBoardSensorCount; ++i)
        setRowValues(i, lastSample.*kBoardSensors[i].value, QString());
    repaint();
}

#include "board/temperatures/Ovryn_BoardInfoMonitorWidget.h"

#include "board/temperatures/BoardSensors.h"

#include <utility>

Ovryn_BoardInfoMonitorWidget::Ovryn_BoardInfoMonitorWidget(QWidget *parent)
    : GraphStackView(kBoardSensorCount, 0, parent)
{
    setLanguage(Ovryn_LanguageTable().boardInfo, kLanguageChinese);
}

void Ovryn_BoardInfoMonitorWidget::setLanguage(Lang_BoardInfo newTexts, LanguageType newLanguage)
{
    texts = std::move(newTexts);
    language = newLanguage;
    for (int i = 0; i < kBoardSensorCount; ++i)
        setBoxTitle(i, texts.*kBoardSensors[i].title);
}

void Ovryn_BoardInfoMonitorWidget::receiveBoardTempCompleteInfo(BoardTempCompleteInfo boardTempCompleteInfo)
{
    lastSample = boardTempCompleteInfo;
    for (int i = 0; i < kBoardSensorCount; ++i)
        addSample(i, lastSample.*kBoardSensors[i].value, QString());
}

#include "board/temperatures/Ovryn_BoardInfoMainWidget.h"

#include "board/temperatures/Ovryn_BoardInfoMonitorWidget.h"
#include "board/temperatures/Ovryn_BoardInfoWidget.h"

#include <utility>

Ovryn_BoardInfoMainWidget::Ovryn_BoardInfoMainWidget(QWidget *parent)
    : Ovryn_BoardInfoMainWidget(new Ovryn_BoardInfoWidget, new Ovryn_BoardInfoMonitorWidget, parent)
{
}

Ovryn_BoardInfoMainWidget::Ovryn_BoardInfoMainWidget(Ovryn_BoardInfoWidget *rows,
                                                     Ovryn_BoardInfoMonitorWidget *graphs, QWidget *parent)
    : RowsAndGraphsPage(rows, graphs, parent), boardRows(rows), boardGraphs(graphs)
{
    setLanguage(Ovryn_LanguageTable().boardInfo, kLanguageChinese);
}

void Ovryn_BoardInfoMainWidget::setLanguage(Lang_BoardInfo newTexts, LanguageType newLanguage)
{
    boardRows->setLanguage(newTexts, newLanguage);
    const QString caption = newTexts.boardTemp;
    boardGraphs->setLanguage(std::move(newTexts), newLanguage);
    setTitle(caption, newLanguage);
}

void Ovryn_BoardInfoMainWidget::recvBoardTempCompleteInfo(BoardTempCompleteInfo boardTempCompleteInfo)
{
    boardRows->receiveBoardTempCompleteInfo(boardTempCompleteInfo);
    boardGraphs->receiveBoardTempCompleteInfo(boardTempCompleteInfo);
}

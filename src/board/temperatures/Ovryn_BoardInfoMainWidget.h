#pragma once

#include "device/DeviceRecords.h"
#include "monitor/graphs/RowsAndGraphsPage.h"
#include "ui/Ovryn_LanguageTable.h"

class Ovryn_BoardInfoMonitorWidget;
class Ovryn_BoardInfoWidget;

/// The board temperatures of a card: four sensors as rows or as graphs. Owned by the main dialog's page set, GUI
/// thread. Nothing is stored of it, and nothing in the program feeds it or leads to it: one connection of each brings
/// it to life.
class Ovryn_BoardInfoMainWidget : public RowsAndGraphsPage
{
    Q_OBJECT

public:
    explicit Ovryn_BoardInfoMainWidget(QWidget *parent = nullptr);

    void setLanguage(Lang_BoardInfo newTexts, LanguageType newLanguage);

public slots:
    void recvBoardTempCompleteInfo(BoardTempCompleteInfo boardTempCompleteInfo);

private:
    Ovryn_BoardInfoMainWidget(Ovryn_BoardInfoWidget *rows, Ovryn_BoardInfoMonitorWidget *graphs, QWidget *parent);

    Ovryn_BoardInfoWidget *boardRows;
    Ovryn_BoardInfoMonitorWidget *boardGraphs;
};

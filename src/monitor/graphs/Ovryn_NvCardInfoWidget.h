#pragma once

#include "device/DeviceRecords.h"
#include "monitor/graphs/RowsAndGraphsPage.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QString>

class NvGpuControl;
class Ovryn_GPUInfoMonitorWidget;
class Ovryn_GPUInfoWidget;

/// The monitor page of a card: six quantities as rows or as graphs, and the driver's version in the band.
/// Owned by the main dialog's page set, GUI thread. The selection is saved by the main dialog alone.
class Ovryn_NvCardInfoWidget : public RowsAndGraphsPage
{
    Q_OBJECT

public:
    /// With the stored mask of ticked rows. `control` is asked for the driver's version and not kept; without
    /// one the version is unknown.
    Ovryn_NvCardInfoWidget(int selectOption, NvGpuControl *control, QWidget *parent = nullptr);
    /// For a card without stored settings: no row is ticked.
    explicit Ovryn_NvCardInfoWidget(NvGpuControl *control, QWidget *parent = nullptr);

    void getSelectOption(int *out) const;
    void setLanguage(Lang_Monitor newTexts, LanguageType newLanguage);

    [[nodiscard]] QString driverVersionText() const { return driverVersion; }

public slots:
    void recvNvCardInfo(NvCardBaseInfo nvCardBaseInfo);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Ovryn_NvCardInfoWidget(Ovryn_GPUInfoWidget *rows, Ovryn_GPUInfoMonitorWidget *graphs, NvGpuControl *control,
                           QWidget *parent);

    Ovryn_GPUInfoWidget *cardRows;
    Ovryn_GPUInfoMonitorWidget *cardGraphs;
    QString driverVersion; ///< "388.13"; "XXX.XX" when the driver did not tell
};

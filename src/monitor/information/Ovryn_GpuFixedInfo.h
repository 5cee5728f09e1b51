#pragma once

#include "device/DeviceRecords.h"
#include "device/NvGpuControl.h"
#include "monitor/information/GpuFixedInfoUi.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QPixmap>
#include <QString>
#include <QWidget>

/// The card information page: what does not change with load, and by how much the customised clocks differ from the
/// stock ones. Read-only; its fields are empty until the first record. Owned by the widget tree, GUI thread; a value
/// that could not be read shows as the record tells it.
class Ovryn_GpuFixedInfo : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_GpuFixedInfo(QWidget *parent = nullptr);

    /// The change captions read as for a rise until the next record puts them right.
    void setLanguage(Lang_GpuFixedInfo newTexts, LanguageType newLanguage);

public slots:
    void recvGpuFixedInfo(NvInfo info); ///< once a sampling cycle

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void drawBackground();

    NvGpuControl control; ///< holds the driver loaded for as long as the page lives; nothing is read from it
    GpuFixedInfoUi ui;
    GpuFixedInfoLayout rects;
    QPixmap background;
    QString versionText;
    Lang_GpuFixedInfo texts;
    LanguageType language = kLanguageChinese;
};

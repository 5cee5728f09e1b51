#pragma once

#include "config/ConfigRecords.h"
#include "ui/Ovryn_LanguageTable.h"

#include <QTimer>
#include <QWidget>

class Ovryn_SettingWidget;

/// The settings panel: holds the settings page and slides it in over the main dialog, from the right. Owned by
/// the main dialog, hidden until it is asked for; GUI thread.
class Ovryn_SettingParentWidget : public QWidget
{
    Q_OBJECT

public:
    Ovryn_SettingParentWidget(const GeneralSettingInfo &general, const UpdateSettingInfo &update, QWidget *parent);

    void getSettings(GeneralSettingInfo &general, UpdateSettingInfo &update);
    void setLanguage(Lang_Setting group, LanguageType number);
    [[nodiscard]] bool isShowing() const { return showing; } ///< also true while it slides in

public slots:
    void setShowSettingWidget(bool bShow); ///< starts the slide, in either direction
    void onDetectButtonClick();
    void _languageChanged();
    void _pageEffectChanged();
    void _refreshTimeChanged();
    void onSettingTimerTimeout(); ///< one step of the slide

signals:
    void languageChanged();
    void detectUpdate();
    void pageEffectChanged();
    void refreshTimeChanged();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void connectPage();

    Ovryn_SettingWidget *settingWidget;
    QTimer slideTimer;
    int slideX = 0;
    int slideY = 0;
    bool showing = false;
};

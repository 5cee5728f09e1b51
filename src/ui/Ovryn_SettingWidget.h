#pragma once

#include "config/ConfigRecords.h"
#include "ui/Ovryn_LanguageTable.h"
#include "ui/SettingPageUi.h"

#include <QPixmap>
#include <QWidget>

/// The page of program-wide settings. It shows two records, returns them, and emits a signal for a choice that takes
/// effect at once. It does not access the file. Owned by the settings panel; GUI thread.
class Ovryn_SettingWidget : public QWidget
{
    Q_OBJECT

public:
    explicit Ovryn_SettingWidget(QWidget *parent = nullptr);

    void getGeneralSetting(GeneralSettingInfo &info);       ///< as the controls show it
    void getUpdateSetting(UpdateSettingInfo &info);         ///< UpdateMode is 0 or 2; UpdateStatus as it was set
    void setGeneralSetting(const GeneralSettingInfo &info); ///< a value that is in no list changes no selection
    void setUpdateSetting(const UpdateSettingInfo &info);
    void setLanguage(Lang_Setting group, LanguageType number); ///< changes captions, never a selection

public slots:
    void onBtnDectectUpdateClick();
    void onCmbLanguageChanged(int index);
    void onCmbPageEffectChanged(int index);
    void onCmbPageRefreshChanged(int index);
    void onBtnUpdateLogClick();

signals:
    void dectectUpdate();
    void _languageChanged();
    void _pageEffectChanged();
    void _refreshTimeChanged();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void fillLists();
    void connectControls();

    GeneralSettingInfo generalSetting;
    UpdateSettingInfo updateSetting;
    Lang_Setting texts;
    LanguageType language = kLanguageChinese;
    QPixmap background;
    SettingPageUi ui;
};

#include "ui/Ovryn_SettingWidget.h"

#include "ui/Ovryn_UpdateLogWidget.h"
#include "ui/UiStyle.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>

#include <iterator>

namespace
{

struct ListText
{
    QString Lang_Setting::*text;
    int value;
};

constexpr int kNeverCheck = 10000; // days

constexpr int kRefreshSeconds[] = {1, 3, 5, 10};

constexpr ListText kCheckIntervals[] = {
    // text, days
    {&Lang_Setting::never, kNeverCheck},
    {&Lang_Setting::oneWeek, 7},
    {&Lang_Setting::oneMonth, 30},
    {&Lang_Setting::threeMonths, 90},
};

void selectValue(QComboBox *box, const QVariant &value)
{
    const int index = box->findData(value);
    if (index >= 0)
        box->setCurrentIndex(index);
}

} // namespace

Ovryn_SettingWidget::Ovryn_SettingWidget(QWidget *parent)
    : QWidget(parent, Qt::FramelessWindowHint), background(QStringLiteral(":/images/images/SettingBKImage.png"))
{
    setWindowOpacity(1.0);
    setAttribute(Qt::WA_TranslucentBackground);
    setStyleSheet(UiStyle::settingPage());
    resize(background.size());
    ui.build(this);
    fillLists();
    setLanguage(Ovryn_LanguageTable().setting, kLanguageChinese);
    connectControls();
}

void Ovryn_SettingWidget::fillLists()
{
    // Each language is listed under its own name in either language of the interface.
    ui.cmb_language->addItem(QStringLiteral("简体中文"), QStringLiteral("lang_ch"));
    ui.cmb_language->addItem(QStringLiteral("English"), QStringLiteral("lang_en"));
    ui.cmb_PageEffect->addItem(QString(), QStringLiteral("normal"));
    ui.cmb_PageEffect->addItem(QString(), QStringLiteral("advanced"));
    for (int seconds : kRefreshSeconds)
        ui.cmb_RefreshTime->addItem(QString::number(seconds), seconds);
    for (const ListText &row : kCheckIntervals)
        ui.cmb_UpdateFre->addItem(QString(), row.value);
}

void Ovryn_SettingWidget::connectControls()
{
    connect(ui.btnDetectUpdate, SIGNAL(released()), this, SLOT(onBtnDectectUpdateClick()));
    connect(ui.cmb_language, SIGNAL(currentIndexChanged(int)), this, SLOT(onCmbLanguageChanged(int)));
    connect(ui.cmb_PageEffect, SIGNAL(currentIndexChanged(int)), this, SLOT(onCmbPageEffectChanged(int)));
    connect(ui.cmb_RefreshTime, SIGNAL(currentIndexChanged(int)), this, SLOT(onCmbPageRefreshChanged(int)));
    connect(ui.btnUpdateLog, SIGNAL(released()), this, SLOT(onBtnUpdateLogClick()));
}

void Ovryn_SettingWidget::getGeneralSetting(GeneralSettingInfo &info)
{
    generalSetting.StartOnBoot = ui.ckb_StartOnBoot->isChecked();
    generalSetting.MinimizeOnStart = ui.ckb_MinimizeOnStart->isChecked();
    generalSetting.ApplyLastParamOnStart = ui.ckb_ApplyLastSettingOnStart->isChecked();
    generalSetting.Language = ui.cmb_language->currentData(Qt::UserRole).toString();
    generalSetting.RefreshTimeOfMonitor = ui.cmb_RefreshTime->currentData(Qt::UserRole).toInt();
    generalSetting.PageEffects = ui.cmb_PageEffect->currentData(Qt::UserRole).toString();
    info = generalSetting;
}

void Ovryn_SettingWidget::getUpdateSetting(UpdateSettingInfo &info)
{
    updateSetting.CheckInterval = ui.cmb_UpdateFre->currentData(Qt::UserRole).toInt();
    updateSetting.UpdateMode =
        ui.rdb_AutomaticDownloadAndInstall->isChecked() ? kUpdateModeInstall : kUpdateModeNotify;
    info = updateSetting;
}

void Ovryn_SettingWidget::setGeneralSetting(const GeneralSettingInfo &info)
{
    generalSetting = info;
    ui.ckb_StartOnBoot->setChecked(info.StartOnBoot);
    ui.ckb_MinimizeOnStart->setChecked(info.MinimizeOnStart);
    ui.ckb_ApplyLastSettingOnStart->setChecked(info.ApplyLastParamOnStart);
    selectValue(ui.cmb_language, info.Language);
    selectValue(ui.cmb_PageEffect, info.PageEffects);
    selectValue(ui.cmb_RefreshTime, info.RefreshTimeOfMonitor);
}

void Ovryn_SettingWidget::setUpdateSetting(const UpdateSettingInfo &info)
{
    updateSetting = info;
    selectValue(ui.cmb_UpdateFre, info.CheckInterval);
    if (info.UpdateMode == kUpdateModeInstall)
        ui.rdb_AutomaticDownloadAndInstall->setChecked(true);
    else
        ui.rdb_TellMeButDoNotDownload->setChecked(true);
}

void Ovryn_SettingWidget::setLanguage(Lang_Setting group, LanguageType number)
{
    texts = group;
    language = number;

    ui.lbl_Setting->setText(texts.settings);
    ui.lbl_Boot->setText(texts.startup);
    ui.ckb_StartOnBoot->setText(texts.startOnBoot);
    ui.ckb_MinimizeOnStart->setText(texts.minimizeOnStart);
    ui.ckb_ApplyLastSettingOnStart->setText(texts.applyLastSetting);
    ui.lbl_PageEffect->setText(texts.effects);
    ui.lbl_Language->setText(texts.language);
    ui.lbl_Monitor->setText(texts.monitorSetting);
    ui.lbl_RefreshTime->setText(texts.refreshFrequency);
    ui.lbl_UpdateInOnline->setText(texts.liveUpdate);
    ui.lbl_UpdateFre->setText(texts.updateFrequency);
    ui.rdb_AutomaticDownloadAndInstall->setText(texts.downloadAndInstall);
    ui.rdb_TellMeButDoNotDownload->setText(texts.notifyOnly);
    ui.btnDetectUpdate->setText(texts.detectUpdate);
    ui.btnUpdateLog->setText(texts.history);

    if (ui.cmb_PageEffect->count() >= 2) {
        ui.cmb_PageEffect->setItemText(0, texts.normal);
        ui.cmb_PageEffect->setItemText(1, texts.advanced);
    }
    if (ui.cmb_UpdateFre->count() >= static_cast<int>(std::size(kCheckIntervals))) {
        int index = 0;
        for (const ListText &row : kCheckIntervals)
            ui.cmb_UpdateFre->setItemText(index++, texts.*row.text);
    }
}

void Ovryn_SettingWidget::onBtnDectectUpdateClick()
{
    emit dectectUpdate();
}

void Ovryn_SettingWidget::onCmbLanguageChanged(int)
{
    emit _languageChanged();
}

void Ovryn_SettingWidget::onCmbPageEffectChanged(int)
{
    emit _pageEffectChanged();
}

void Ovryn_SettingWidget::onCmbPageRefreshChanged(int)
{
    emit _refreshTimeChanged();
}

void Ovryn_SettingWidget::onBtnUpdateLogClick()
{
    Ovryn_UpdateLogWidget log(language, this);
    log.exec();
}

void Ovryn_SettingWidget::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(0, 0, background);
}

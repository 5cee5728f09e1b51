#include "ui/Ovryn_SettingParentWidget.h"

#include "ui/Ovryn_SettingWidget.h"

#include <QBitmap>
#include <QPixmap>

namespace
{

constexpr int kTickMs = 15;
constexpr int kPixelsPerTick = 30;

} // namespace

// The page's signals are connected last: the stored settings select entries of its lists, and the main dialog must
// not take that for a choice by the user.
Ovryn_SettingParentWidget::Ovryn_SettingParentWidget(const GeneralSettingInfo &general,
                                                     const UpdateSettingInfo &update, QWidget *parent)
    : QWidget(parent), settingWidget(new Ovryn_SettingWidget(this)), slideTimer(this)
{
    settingWidget->setGeneralSetting(general);
    settingWidget->setUpdateSetting(update);

    slideTimer.setInterval(kTickMs);
    connect(&slideTimer, SIGNAL(timeout()), this, SLOT(onSettingTimerTimeout()));

    const QPixmap image(QStringLiteral(":/images/images/SettingBKImage.png"));
    resize(image.size());
    setMask(image.mask());
    slideX = width();
    settingWidget->move(slideX, slideY);
    hide();

    connectPage();
}

void Ovryn_SettingParentWidget::connectPage()
{
    connect(settingWidget, SIGNAL(dectectUpdate()), this, SLOT(onDetectButtonClick()));
    connect(settingWidget, SIGNAL(_languageChanged()), this, SLOT(_languageChanged()));
    connect(settingWidget, SIGNAL(_pageEffectChanged()), this, SLOT(_pageEffectChanged()));
    connect(settingWidget, SIGNAL(_refreshTimeChanged()), this, SLOT(_refreshTimeChanged()));
}

void Ovryn_SettingParentWidget::getSettings(GeneralSettingInfo &general, UpdateSettingInfo &update)
{
    settingWidget->getGeneralSetting(general);
    settingWidget->getUpdateSetting(update);
}

void Ovryn_SettingParentWidget::setLanguage(Lang_Setting group, LanguageType number)
{
    settingWidget->setLanguage(group, number);
}

void Ovryn_SettingParentWidget::setShowSettingWidget(bool bShow)
{
    showing = bShow;
    slideTimer.start();
}

void Ovryn_SettingParentWidget::onDetectButtonClick()
{
    emit detectUpdate();
}

void Ovryn_SettingParentWidget::_languageChanged()
{
    emit languageChanged();
}

void Ovryn_SettingParentWidget::_pageEffectChanged()
{
    emit pageEffectChanged();
}

void Ovryn_SettingParentWidget::_refreshTimeChanged()
{
    emit refreshTimeChanged();
}

void Ovryn_SettingParentWidget::onSettingTimerTimeout()
{
    if (showing) {
        setVisible(true);
        slideX -= kPixelsPerTick;
        if (slideX <= 0) {
            slideX = 0;
            slideTimer.stop();
        }
    } else {
        slideX += kPixelsPerTick;
        if (slideX >= width()) {
            slideX = width();
            setVisible(false);
            slideTimer.stop();
        }
    }
    settingWidget->move(slideX, slideY);
}

void Ovryn_SettingParentWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    slideX = width();
    slideY = 0;
    settingWidget->move(slideX, slideY);
}

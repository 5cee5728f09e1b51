#include "ui/SettingPageUi.h"

#include "ui/NoFocusFrameDelegate.h"
#include "ui/SettledComboBox.h"
#include "ui/UiStyle.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QListView>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <initializer_list>

namespace
{

constexpr int kTitleBandHeight = 46; // the band that the page's picture shows
constexpr int kSideMargin = 26;
constexpr int kBottomMargin = 20; // pixels, above the picture's cut corner
constexpr int kIndent = 11;       // of a group's controls against its title
constexpr int kGroupGap = 10;
constexpr int kRowGap = 6;
constexpr int kButtonHeight = 26;
constexpr int kComboHeight = 24;

template <typename Control>
Control *named(Control *control, const char *name)
{
    control->setObjectName(QString::fromLatin1(name));
    return control;
}

QComboBox *makeCombo(QWidget *page, const char *name)
{
    auto *box = named(static_cast<QComboBox *>(new SettledComboBox(page)), name);
    auto *list = new QListView(box);
    list->setStyleSheet(UiStyle::settingList());
    box->setView(list);
    box->setItemDelegate(new NoFocusFrameDelegate(box));
    box->setFixedHeight(kComboHeight);
    return box;
}

/// A caption at the left and its control at the right edge.
QHBoxLayout *captionRow(QHBoxLayout *row, QWidget *caption, QWidget *control)
{
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(caption);
    row->addStretch();
    row->addWidget(control);
    return row;
}

QVBoxLayout *column(const char *name, int spacing, int indent = 0)
{
    auto *layout = named(new QVBoxLayout, name);
    layout->setContentsMargins(indent, 0, 0, 0);
    layout->setSpacing(spacing);
    return layout;
}

} // namespace

void SettingPageUi::build(QWidget *page)
{
    makeControls(page);
    layOut(page);
}

void SettingPageUi::makeControls(QWidget *page)
{
    lbl_Setting = named(new QLabel(page), "lbl_Setting");
    lbl_Boot = named(new QLabel(page), "lbl_Boot");
    ckb_StartOnBoot = named(new QCheckBox(page), "ckb_StartOnBoot");
    ckb_MinimizeOnStart = named(new QCheckBox(page), "ckb_MinimizeOnStart");
    ckb_ApplyLastSettingOnStart = named(new QCheckBox(page), "ckb_ApplyLastSettingOnStart");
    lbl_PageEffect = named(new QLabel(page), "lbl_PageEffect");
    cmb_PageEffect = makeCombo(page, "cmb_PageEffect");
    lbl_Language = named(new QLabel(page), "lbl_Language");
    cmb_language = makeCombo(page, "cmb_language");
    lbl_Monitor = named(new QLabel(page), "lbl_Monitor");
    lbl_RefreshTime = named(new QLabel(page), "lbl_RefreshTime");
    cmb_RefreshTime = makeCombo(page, "cmb_RefreshTime");
    lbl_UpdateInOnline = named(new QLabel(page), "lbl_UpdateInOnline");
    lbl_UpdateFre = named(new QLabel(page), "lbl_UpdateFre");
    cmb_UpdateFre = makeCombo(page, "cmb_UpdateFre");
    rdb_AutomaticDownloadAndInstall = named(new QRadioButton(page), "rdb_AutomaticDownloadAndInstall");
    rdb_TellMeButDoNotDownload = named(new QRadioButton(page), "rdb_TellMeButDoNotDownload");
    btnDetectUpdate = named(new QPushButton(page), "btnDetectUpdate");
    btnUpdateLog = named(new QPushButton(page), "btnUpdateLog");
    btnDetectUpdate->setFixedHeight(kButtonHeight);
    btnUpdateLog->setFixedHeight(kButtonHeight);
    // The focus frame is for the keyboard: a click gives no focus.
    for (QAbstractButton *button : std::initializer_list<QAbstractButton *>{
             ckb_StartOnBoot, ckb_MinimizeOnStart, ckb_ApplyLastSettingOnStart, rdb_AutomaticDownloadAndInstall,
             rdb_TellMeButDoNotDownload, btnDetectUpdate, btnUpdateLog})
        button->setFocusPolicy(Qt::TabFocus);
}

void SettingPageUi::layOut(QWidget *page)
{
    auto *container = named(new QWidget(page), "verticalLayoutWidget_8");
    container->setGeometry(0, 0, page->width(), page->height());

    auto *main = named(new QVBoxLayout(container), "verticalLayout_main");
    main->setContentsMargins(kSideMargin, 0, kSideMargin, kBottomMargin);
    main->setSpacing(0);
    lbl_Setting->setFixedHeight(kTitleBandHeight);
    main->addWidget(lbl_Setting);
    main->addSpacing(kGroupGap);

    auto *startup = column("verticalLayout", kRowGap);
    startup->addWidget(lbl_Boot);
    auto *startupBoxes = column("verticalLayout_2", kRowGap, kIndent);
    startupBoxes->addWidget(ckb_StartOnBoot);
    startupBoxes->addWidget(ckb_MinimizeOnStart);
    startupBoxes->addWidget(ckb_ApplyLastSettingOnStart);
    startup->addLayout(startupBoxes);
    auto *looks = column("verticalLayout_3", kRowGap, kIndent);
    looks->addLayout(captionRow(named(new QHBoxLayout, "horizontalLayout"), lbl_PageEffect, cmb_PageEffect));
    looks->addLayout(captionRow(named(new QHBoxLayout, "horizontalLayout_2"), lbl_Language, cmb_language));
    startup->addLayout(looks);
    main->addLayout(startup);
    main->addSpacing(kGroupGap);
    main->addStretch();

    auto *monitor = column("verticalLayout_4", kRowGap);
    monitor->addWidget(lbl_Monitor);
    auto *refresh = named(new QWidget(container), "widget");
    captionRow(named(new QHBoxLayout(refresh), "horizontalLayout_3"), lbl_RefreshTime, cmb_RefreshTime)
        ->setContentsMargins(kIndent, 0, 0, 0);
    monitor->addWidget(refresh);
    main->addLayout(monitor);
    main->addSpacing(kGroupGap);
    main->addStretch();

    auto *update = column("verticalLayout_5", kRowGap);
    update->addWidget(lbl_UpdateInOnline);
    auto *updateControls = column("verticalLayout_6", kRowGap, kIndent);
    updateControls->addLayout(captionRow(named(new QHBoxLayout, "horizontalLayout_4"), lbl_UpdateFre, cmb_UpdateFre));
    auto *modes = named(new QWidget(container), "widget_4");
    auto *modeColumn = named(new QVBoxLayout(modes), "verticalLayout_7");
    modeColumn->setContentsMargins(0, 0, 0, 0);
    modeColumn->setSpacing(kRowGap);
    modeColumn->addWidget(rdb_AutomaticDownloadAndInstall);
    modeColumn->addWidget(rdb_TellMeButDoNotDownload);
    updateControls->addWidget(modes);
    auto *buttons = named(new QHBoxLayout, "horizontalLayout_5");
    buttons->setSpacing(kSideMargin);
    buttons->addStretch();
    buttons->addWidget(btnDetectUpdate);
    buttons->addWidget(btnUpdateLog);
    buttons->addStretch();
    updateControls->addSpacing(kRowGap);
    updateControls->addLayout(buttons);
    update->addLayout(updateControls);
    main->addLayout(update);
}

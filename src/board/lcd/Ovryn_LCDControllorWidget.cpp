#include "board/lcd/Ovryn_LCDControllorWidget.h"

#include "board/lcd/LcdPageStyle.h"
#include "board/lcd/Ovryn_GlobalShortCut.h"
#include "board/lcd/Ovryn_HotKeyEdit.h"
#include "ui/ModifySpinBox.h"
#include "ui/PageFrame.h"
#include "ui/UiStyle.h"

#include <QCheckBox>
#include <QFontMetrics>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QResizeEvent>

#include <algorithm>

// Construction, looks and what the controls show. What the user does stands in Ovryn_LCDControllorWidget_Slots.cpp.

namespace
{

constexpr int kFieldPixels = 13; // font of the fields
constexpr int kCaptionWeight = 50;

} // namespace

Ovryn_LCDControllorWidget::Ovryn_LCDControllorWidget(NvGpuControl *card, QWidget *parent, quint32 frameIntervalMs)
    : QWidget(parent), control(card), intervalMs(frameIntervalMs)
{
    initWidget();
}

Ovryn_LCDControllorWidget::Ovryn_LCDControllorWidget(const LcdModuleInfo &info, NvGpuControl *card, QWidget *parent,
                                                     quint32 frameIntervalMs)
    : QWidget(parent), control(card), intervalMs(frameIntervalMs), applied(info)
{
    setStyleSheet(QStringLiteral("Ovryn_HotKeyEdit{font-size:13px;}\t\t\t\t\t\tModifySpinBox{font-size:13px;}"));
    initWidget();
}

void Ovryn_LCDControllorWidget::initWidget()
{
    build();
    setLanguage(Ovryn_LanguageTable().lcd, kLanguageChinese);
    connectAll();
    sendNvInfoThread = newWorker();
    sendNvInfoThread->setAutoSwitch(applied.AutoSwitch, int(applied.SwitchTime));
    sendNvInfoThread->setEnableLCD(applied.EnableLcd);
    sendNvInfoThread->startSending();
    if (!applied.AutoSwitch)
        globalShortCut->setShortcut(int(applied.ModifierKey), int(applied.NormalKey));
    // After the connections: the values count as changes, so the page comes up with both buttons. Wanted so.
    showParam();
}

void Ovryn_LCDControllorWidget::build()
{
    const auto named = [](auto *widget, const char *name, const QString &styleSheet) {
        widget->setObjectName(QLatin1String(name));
        widget->setStyleSheet(styleSheet);
        return widget;
    };
    rdbAutoSwitch = named(new QRadioButton(this), "rdbAutoSwitch", LcdPageStyle::radio());
    rdbManualSwitch = named(new QRadioButton(this), "rdbManualSwitch", LcdPageStyle::radio());
    hotKeyModifier = named(new Ovryn_HotKeyEdit(true, this), "hotKeyModifier", LcdPageStyle::keyField());
    hotKeyNormal = named(new Ovryn_HotKeyEdit(false, this), "hotKeyNormal", LcdPageStyle::keyField());
    spinSwitchTime = named(new ModifySpinBox(this), "spinSwitchTime", LcdPageStyle::switchTime());
    spinSwitchTime->setRange(int(Ovryn_SendNvInfoToLCDThread::kShortestSwitchTime),
                             int(Ovryn_SendNvInfoToLCDThread::kLongestSwitchTime));
    cbLcd = named(new QCheckBox(this), "CbLCD", LcdPageStyle::lcdSwitch());
    btnConfirm = named(new QPushButton(this), "btnConfirm", UiStyle::actionButton());
    btnCancel = named(new QPushButton(this), "btnCancel", UiStyle::actionButton());
    globalShortCut = new Ovryn_GlobalShortCut(this);
}

void Ovryn_LCDControllorWidget::connectAll()
{
    connect(rdbAutoSwitch, SIGNAL(toggled(bool)), this, SLOT(onAutoSwitchToggled(bool)));
    connect(cbLcd, SIGNAL(toggled(bool)), this, SLOT(onEnableLCDToggled(bool)));
    connect(btnConfirm, SIGNAL(pressed()), this, SLOT(onConfirmClick()));
    connect(btnCancel, SIGNAL(pressed()), this, SLOT(onCancelClick()));
    connect(globalShortCut, SIGNAL(activated()), this, SLOT(onHotKeyActivated()));
    connect(hotKeyModifier, SIGNAL(textChanged(QString)), this, SLOT(onLineEditTextChanged(QString)));
    connect(hotKeyNormal, SIGNAL(textChanged(QString)), this, SLOT(onLineEditTextChanged(QString)));
    connect(spinSwitchTime, SIGNAL(valueChanged(int)), this, SLOT(onSpinBoxValueChanged(int)));
}

Ovryn_LCDControllorWidget::~Ovryn_LCDControllorWidget()
{
    WorkerThread::endAndDelete(sendNvInfoThread); // one that hangs in the driver stays
}

void Ovryn_LCDControllorWidget::requestEnd()
{
    if (sendNvInfoThread)
        sendNvInfoThread->requestEnd();
}

Ovryn_SendNvInfoToLCDThread *Ovryn_LCDControllorWidget::newWorker()
{
    auto *worker = new Ovryn_SendNvInfoToLCDThread(control, this, intervalMs);
    connect(worker, SIGNAL(sendDataToLCDResult(bool)), this, SLOT(onSendNvDataToLCDSuccess(bool)));
    return worker;
}

void Ovryn_LCDControllorWidget::getLcdModuleInfo(LcdModuleInfo &out) const
{
    out = applied;
}

void Ovryn_LCDControllorWidget::showParam()
{
    // In this order: what the switch's and the radio's slots enable depends on it.
    spinSwitchTime->setValue(int(applied.SwitchTime)); // outside 1 to 30 the box shows its own limit
    cbLcd->setChecked(applied.EnableLcd);
    (applied.AutoSwitch ? rdbAutoSwitch : rdbManualSwitch)->setChecked(true);
    hotKeyModifier->setKey(applied.ModifierKey); // a code that the field doesn't know changes nothing
    hotKeyNormal->setKey(applied.NormalKey);
}

void Ovryn_LCDControllorWidget::setLanguage(const Lang_LCD &words, LanguageType newLanguage)
{
    texts = words;
    languageType = newLanguage;
    cbLcd->setToolTip(texts.turnOnOff);
    rdbAutoSwitch->setText(texts.autoSwitch);
    rdbManualSwitch->setText(texts.manualSwitch);
    btnConfirm->setText(texts.apply);
    btnCancel->setText(texts.cancel);
    QResizeEvent sameSize(size(), size()); // the widths of the texts are part of the layout
    resizeEvent(&sameSize);
    update();
}

QFont Ovryn_LCDControllorWidget::fontOf(int pixels) const
{
    QFont font(PageFrame::fontFamily(languageType));
    font.setPixelSize(std::max(1, pixels));
    return font;
}

LcdTextWidths Ovryn_LCDControllorWidget::textWidths() const
{
    const QFontMetrics radio(fontOf(LcdPageLayout::radioPixels));
    const QFontMetrics caption(fontOf(LcdPageLayout::captionPixels));
    return {radio.horizontalAdvance(texts.autoSwitch), radio.horizontalAdvance(texts.manualSwitch),
            caption.horizontalAdvance(texts.time), caption.horizontalAdvance(texts.hotkey)};
}

void Ovryn_LCDControllorWidget::setFonts()
{
    for (QWidget *radio : {rdbAutoSwitch, rdbManualSwitch})
        radio->setFont(fontOf(LcdPageLayout::radioPixels));
    for (QWidget *field : std::initializer_list<QWidget *>{hotKeyModifier, hotKeyNormal, spinSwitchTime})
        field->setFont(fontOf(kFieldPixels));
    for (QWidget *button : {btnConfirm, btnCancel})
        button->setFont(fontOf(rects.buttonPixels));
}

void Ovryn_LCDControllorWidget::drawBackground()
{
    background = PageFrame::background(size(), rects.titleHeight, rects.title, texts.title, rects.titlePixels,
                                       languageType, PageFrame::BandRule::LeftOut);
    if (background.isNull())
        return;
    QPainter painter(&background);
    QFont font = fontOf(LcdPageLayout::captionPixels);
    font.setWeight(kCaptionWeight);
    painter.setFont(font);
    painter.setPen(Qt::white);
    constexpr int kCaptionFlags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip;
    painter.drawText(rects.timeCaption, kCaptionFlags, texts.time);
    painter.drawText(rects.hotkeyCaption, kCaptionFlags, texts.hotkey);
    font.setFamily(QStringLiteral("Arial"));
    painter.setFont(font);
    painter.drawText(rects.plus, Qt::AlignCenter, QStringLiteral("+"));
}

void Ovryn_LCDControllorWidget::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(0, 0, background);
}

void Ovryn_LCDControllorWidget::resizeEvent(QResizeEvent *)
{
    rects = lcdPageLayoutFor(size(), textWidths());
    rdbAutoSwitch->setGeometry(rects.autoSwitch);
    rdbManualSwitch->setGeometry(rects.manualSwitch);
    cbLcd->setGeometry(rects.enableLcd);
    spinSwitchTime->setGeometry(rects.switchTime);
    hotKeyModifier->setGeometry(rects.modifierKey);
    hotKeyNormal->setGeometry(rects.normalKey);
    btnConfirm->setGeometry(rects.confirm);
    btnCancel->setGeometry(rects.cancel);
    setFonts();
    drawBackground();
}

#include "board/led/Ovryn_LEDControlWidget.h"

#include "board/led/LedPageStyle.h"
#include "board/led/Ovryn_ColorButton.h"
#include "board/led/Ovryn_ColorButtonGroup.h"
#include "board/led/Ovryn_SendColorToLed.h"
#include "device/LedFrame.h"
#include "device/NvGpuControl.h"
#include "ui/ModifySpinBox.h"
#include "ui/PageFrame.h"

#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QRadioButton>
#include <QThread>
#include <QTimer>

#include <algorithm>

// Construction, looks and what the controls show. What the user does stands in Ovryn_LEDControlWidget_Slots.cpp.

namespace
{

constexpr std::array<QRgb, LedPageLayout::colorCount> kPresetColors = {
    0xFFFF0000, 0xFFFFA500, 0xFFFFFF00, 0xFF00FF00, 0xFF007FFF, 0xFF0000FF, 0xFF8B00FF,
};
constexpr int kSelectionLimit = int(kLedMaxColours); // more do not fit into a frame
constexpr int kFontPixels = 16;
constexpr int kNumberPixels = 14;
constexpr int kResetIconMargin = 8; // pixels, both sides together

bool isInMask(quint8 mask, std::size_t index)
{
    return (mask >> index & 1) != 0;
}

template <typename Buttons>
quint8 maskOf(const Buttons &buttons)
{
    quint8 mask = 0;
    for (std::size_t i = 0; i < buttons.size(); ++i) {
        if (buttons[i]->isChecked())
            mask = quint8(mask | 1 << i);
    }
    return mask;
}

} // namespace

Ovryn_LEDControlWidget::Ovryn_LEDControlWidget(NvGpuControl *card, QWidget *parent, const LedTimings &pauses)
    : Ovryn_LEDControlWidget(nullptr, card, parent, pauses)
{
}

Ovryn_LEDControlWidget::Ovryn_LEDControlWidget(const LedModuleInfo &info, NvGpuControl *card, QWidget *parent,
                                               const LedTimings &pauses)
    : Ovryn_LEDControlWidget(&info, card, parent, pauses)
{
}

Ovryn_LEDControlWidget::Ovryn_LEDControlWidget(const LedModuleInfo *saved, NvGpuControl *card, QWidget *parent,
                                               const LedTimings &pauses)
    : QWidget(parent), timings(pauses), control(card)
{
    build();
    setLanguage(Ovryn_LanguageTable().led, kLanguageChinese);
    if (saved)
        showSaved(*saved);
    else
        showDefaults();
    // After the values, so that showing them sends nothing: the LEDs keep what the controller last ran, and
    // the worker stays idle until the user chooses.
    connectAll();
    readController();
}

Ovryn_LEDControlWidget::~Ovryn_LEDControlWidget()
{
    // A worker that hangs in the driver holds its mutex, and the closing frame would wait for it without limit.
    if (controllerType == kLedControllerWithGradient && sendColorThread->endsInTime())
        sendCurrentEffect(true);
    WorkerThread::endAndDelete(sendColorThread); // one that hangs in the driver stays
}

void Ovryn_LEDControlWidget::requestEnd()
{
    sendColorThread->requestEnd();
}

void Ovryn_LEDControlWidget::build()
{
    const auto newRadio = [this](const char *name) {
        auto *radio = new QRadioButton(this);
        radio->setObjectName(QLatin1String(name));
        return radio;
    };
    rdbSingleBreath = newRadio("rdbSingleBreath");
    rdbSingleBright = newRadio("rdbSingleBright");
    rdbMultipleBreath = newRadio("rdbMultipleBreath");
    rdbMultipleBright = newRadio("rdbMultipleBright");
    rdbState = newRadio("rdbState");
    rdbGradient = newRadio("rdbGradient");
    rdbSleep = newRadio("rdbSleep");
    rdbSingleBreath->hide();
    rdbSingleBright->hide();

    lblInterval = new QLabel(this);
    lblInterval->setObjectName(QStringLiteral("lblInterval"));
    spinInterval = new ModifySpinBox(this);
    spinInterval->setObjectName(QStringLiteral("spinInterval"));
    spinInterval->setRange(kMinLedInterval, kMaxLedInterval);
    btnReset = new QPushButton(this);
    btnReset->setObjectName(QStringLiteral("ResetDynamicColors"));
    btnReset->setFocusPolicy(Qt::NoFocus);

    colorGroup = new Ovryn_ColorButtonGroup(this);
    colorGroup->setLimit(kSelectionLimit);
    const auto newColorButton = [this](const QString &name, std::size_t index) {
        auto *button = new Ovryn_ColorButton(this);
        button->setObjectName(name + QString::number(index));
        colorGroup->addButton(button);
        return button;
    };
    for (std::size_t i = 0; i < presetButtons.size(); ++i) {
        presetButtons[i] = newColorButton(QStringLiteral("preset"), i);
        presetButtons[i]->setColor(QColor(kPresetColors[i]));
    }
    for (std::size_t i = 0; i < customButtons.size(); ++i)
        customButtons[i] = newColorButton(QStringLiteral("custom"), i);

    colorChangedTimer = new QTimer(this);
    colorChangedTimer->setInterval(timings.colorChangedMs);
    sendColorThread = new Ovryn_SendColorToLed(control, this, timings.workerSleepMs);
    setStyleSheet(LedPageStyle::page());
}

void Ovryn_LEDControlWidget::connectAll()
{
    connect(rdbSingleBreath, SIGNAL(toggled(bool)), this, SLOT(onRdbSingleToggled(bool)));
    connect(rdbSingleBright, SIGNAL(toggled(bool)), this, SLOT(onRdbSingleToggled(bool)));
    connect(rdbMultipleBreath, SIGNAL(toggled(bool)), this, SLOT(onRdbMultipleToggled(bool)));
    connect(rdbMultipleBright, SIGNAL(toggled(bool)), this, SLOT(onRdbMultipleToggled(bool)));
    connect(rdbState, SIGNAL(toggled(bool)), this, SLOT(onRdbStateToggled(bool)));
    connect(rdbGradient, SIGNAL(toggled(bool)), this, SLOT(onRdbGradientToggled(bool)));
    connect(rdbSleep, SIGNAL(toggled(bool)), this, SLOT(onRdbSleepToggled(bool)));
    for (auto *buttons : {&presetButtons, &customButtons}) {
        for (Ovryn_ColorButton *button : *buttons)
            connect(button, SIGNAL(onMouseClick(Ovryn_ColorButton *)), this,
                    SLOT(onColorButtonClick(Ovryn_ColorButton *)));
    }
    connect(colorChangedTimer, SIGNAL(timeout()), this, SLOT(onColorChangedTimerout()));
    connect(btnReset, SIGNAL(pressed()), this, SLOT(onResetButtonClick()));
    connect(spinInterval, SIGNAL(valueChanged(int)), this, SLOT(onSpinBoxIntervalValueChanged(int)));
}

void Ovryn_LEDControlWidget::showDefaults()
{
    QThread::msleep(timings.beforeDefaultsMs);
    rdbSingleBreath->setChecked(true);
    presetButtons.front()->setCheck(true);
}

void Ovryn_LEDControlWidget::showSaved(const LedModuleInfo &info)
{
    // Unsigned, so that a negative number is held at the upper end.
    interval = qint32(std::clamp(quint32(info.Interval), quint32(kMinLedInterval), quint32(kMaxLedInterval)));
    spinInterval->setValue(interval);

    const LedMode mode = ledModeOf(info.LedMode);
    if (isSingle(mode))
        useGroupMode(Ovryn_ColorButtonGroup::Single);
    else if (isMultiple(mode))
        useGroupMode(Ovryn_ColorButtonGroup::Multiple);
    else
        enableColorControls(false);
    radioOf(mode)->setChecked(true);

    for (std::size_t i = 0; i < customButtons.size(); ++i)
        customButtons[i]->setColor(QColor(QRgb(info.Colors[i]))); // drops the top byte
    // The group's rules decide what stays selected, and so does this order: custom buttons first.
    for (std::size_t i = 0; i < customButtons.size(); ++i)
        customButtons[i]->setCheck(isInMask(info.CheckedColorButtonDynamic, i));
    for (std::size_t i = 0; i < presetButtons.size(); ++i)
        presetButtons[i]->setCheck(isInMask(info.CheckedColorButtonStatic, i));
}

void Ovryn_LEDControlWidget::readController()
{
    LedControllerState state;
    if (control)
        control->readLedState(state); // a failed read leaves type 0
    controllerType = state.controllerType;
    if (controllerType != kLedControllerWithGradient) {
        rdbGradient->hide();
        if (rdbGradient->isChecked())
            rdbSingleBreath->setChecked(true);
    }
    QThread::msleep(timings.afterStatusMs);
}

void Ovryn_LEDControlWidget::getLedModuleInfo(LedModuleInfo &out) const
{
    out.LedMode = qint32(checkedMode());
    out.CheckedColorButtonStatic = maskOf(presetButtons);
    out.CheckedColorButtonDynamic = maskOf(customButtons);
    out.Interval = interval;
    for (std::size_t i = 0; i < customButtons.size(); ++i)
        out.Colors[i] = customButtons[i]->getColor().rgb();
}

QRadioButton *Ovryn_LEDControlWidget::radioOf(LedMode mode) const
{
    switch (mode) {
    case LedMode::SingleBreath:
        return rdbSingleBreath;
    case LedMode::SingleBright:
        return rdbSingleBright;
    case LedMode::MultipleBreath:
        return rdbMultipleBreath;
    case LedMode::MultipleBright:
        return rdbMultipleBright;
    case LedMode::StateDisplay:
        return rdbState;
    case LedMode::Gradient:
        return rdbGradient;
    case LedMode::Sleep:
        break;
    }
    return rdbSleep;
}

LedMode Ovryn_LEDControlWidget::checkedMode() const
{
    for (int number = 0; number < kLedModeCount; ++number) {
        if (radioOf(LedMode(number))->isChecked())
            return LedMode(number);
    }
    return LedMode::Sleep;
}

void Ovryn_LEDControlWidget::setLanguage(const Lang_LED &words, LanguageType newLanguage)
{
    texts = words;
    languageType = newLanguage;
    rdbSingleBreath->setText(texts.breathSingle);
    rdbSingleBright->setText(texts.brightSingle);
    rdbMultipleBreath->setText(texts.breathMulti);
    rdbMultipleBright->setText(texts.brightMulti);
    lblInterval->setText(texts.interval);
    rdbState->setText(texts.stateDisplay);
    rdbSleep->setText(texts.ledOff);
    rdbGradient->setText(texts.gradient);
    btnReset->setToolTip(texts.reset);
    setFonts();
    drawBackground();
    update();
}

void Ovryn_LEDControlWidget::setFonts()
{
    QFont font(PageFrame::fontFamily(languageType));
    font.setPixelSize(kFontPixels);
    for (QWidget *widget :
         std::initializer_list<QWidget *>{rdbSingleBreath, rdbSingleBright, rdbMultipleBreath, rdbMultipleBright,
                                          rdbState, rdbGradient, rdbSleep, lblInterval})
        widget->setFont(font);
    font.setPixelSize(kNumberPixels);
    spinInterval->setFont(font);
}

void Ovryn_LEDControlWidget::drawBackground()
{
    background = PageFrame::background(size(), rects.titleHeight, rects.title, texts.light, rects.titlePixels,
                                       languageType, PageFrame::BandRule::LeftOut);
}

void Ovryn_LEDControlWidget::paintEvent(QPaintEvent *)
{
    QPainter(this).drawPixmap(0, 0, background);
}

void Ovryn_LEDControlWidget::resizeEvent(QResizeEvent *)
{
    rects = ledPageLayoutFor(size());
    rdbSingleBreath->setGeometry(rects.breath);
    rdbMultipleBreath->setGeometry(rects.breath);
    rdbSingleBright->setGeometry(rects.bright);
    rdbMultipleBright->setGeometry(rects.bright);
    lblInterval->setGeometry(rects.intervalCaption);
    spinInterval->setGeometry(rects.interval);
    for (std::size_t i = 0; i < presetButtons.size(); ++i) {
        presetButtons[i]->setGeometry(rects.presets[i]);
        customButtons[i]->setGeometry(rects.customs[i]);
    }
    btnReset->setGeometry(rects.reset);
    rdbState->setGeometry(rects.state);
    rdbSleep->setGeometry(rects.sleep);
    rdbGradient->setGeometry(rects.gradient);

    const int iconSize = std::max(1, rects.reset.height() - kResetIconMargin);
    btnReset->setIcon(LedPageStyle::resetIcon(iconSize));
    btnReset->setIconSize(QSize(iconSize, iconSize));
    drawBackground();
}

#include "overclock/Ovryn_OverClockingWidget.h"

#include "overclock/AdjustPageStyle.h"
#include "overclock/Ovryn_SliderWidget.h"
#include "overclock/Ovryn_UserDefineFanSpeed.h"
#include "ui/PageFrame.h"
#include "ui/UiStyle.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QPainter>
#include <QPushButton>
#include <QSignalBlocker>

#include <algorithm>
#include <utility>

// Construction, looks and what the rows show. The user's actions are in Ovryn_OverClockingWidget_Slots.cpp.

namespace
{

constexpr int kActionFontWeight = 57;
constexpr int kFanFontWeight = 50;
constexpr int kIconMargin = 4; // pixels between the curve button's edge and its picture

/// Captions that are the same in every language.
constexpr char kAutoCaption[] = "AUT";
constexpr char kManualCaption[] = "MAN";
constexpr char kUserDefinedCaption[] = "UDF";

QPushButton *newButton(const char *name, const QString &style, QWidget *parent)
{
    auto *button = new QPushButton(parent);
    button->setObjectName(QString::fromLatin1(name));
    button->setStyleSheet(style);
    // The Return key in a number box must not press a button of the page.
    button->setAutoDefault(false);
    return button;
}

QFont buttonFont(const QString &family, int weight, int pixelSize)
{
    QFont font(family);
    font.setWeight(weight);
    font.setPixelSize(std::max(1, pixelSize));
    return font;
}

} // namespace

Ovryn_OverClockingWidget::Ovryn_OverClockingWidget(NvGpuControl *control, QWidget *parent,
                                                   const AdjustTimings &pauses, FanWatch watch)
    : Ovryn_OverClockingWidget(nullptr, control, parent, pauses, std::move(watch))
{
}

Ovryn_OverClockingWidget::Ovryn_OverClockingWidget(const AdjustModuleInfo &saved, NvGpuControl *control,
                                                   QWidget *parent, const AdjustTimings &pauses, FanWatch watch)
    : Ovryn_OverClockingWidget(&saved, control, parent, pauses, std::move(watch))
{
}

Ovryn_OverClockingWidget::Ovryn_OverClockingWidget(const AdjustModuleInfo *saved, NvGpuControl *control,
                                                   QWidget *parent, const AdjustTimings &pauses, FanWatch watch)
    : QWidget(parent), card(control, pauses, std::move(watch))
{
    build();
    connectAll();
    Ovryn_LanguageTable table; // until the owner sets its own texts
    table.setLanguage(kLanguageEnglish);
    setLanguage(table.overClock, table.language());

    if (saved)
        card.startFromSaved(*saved);
    else
        card.startFromCard();
    showLink(card.snapshot().linkOfPowerWithTemperature); // without a card the saved values are not in the snapshot
    hideApplyAndCancel();
}

void Ovryn_OverClockingWidget::build()
{
    // A click beside the widgets takes the focus and so ends the edit in a number box.
    setFocusPolicy(Qt::ClickFocus);
    setStyleSheet(UiStyle::numberBoxes());

    for (std::size_t index = 0; index < rows.size(); ++index) {
        rows[index] = new Ovryn_SliderWidget(this);
        rows[index]->setObjectName(QString::fromLatin1(kAdjustRows[index].objectName));
    }
    editor = new Ovryn_UserDefineFanSpeed(this);
    editor->setObjectName(QStringLiteral("fanCurveEditor"));
    editor->hide();

    // After the rows and the editor, over which they lie.
    btnApply = newButton("btnApply", UiStyle::actionButton(), this);
    btnCancel = newButton("btnCancel", UiStyle::actionButton(), this);
    btnDefault = newButton("btnDefault", UiStyle::actionButton(), this);

    btnFanAuto = newButton("btnFanAuto", AdjustPageStyle::fanButton(), this);
    btnFanManual = newButton("btnFanManual", AdjustPageStyle::fanButton(), this);
    btnFanUserDefined = newButton("btnFanUserDefined", AdjustPageStyle::fanButton(), this);
    btnFanAuto->setText(QString::fromLatin1(kAutoCaption));
    btnFanManual->setText(QString::fromLatin1(kManualCaption));
    btnFanUserDefined->setText(QString::fromLatin1(kUserDefinedCaption));
    auto *fanModes = new QButtonGroup(this);
    fanModes->setExclusive(true);
    for (QPushButton *button : {btnFanAuto, btnFanManual, btnFanUserDefined}) {
        button->setCheckable(true);
        fanModes->addButton(button);
    }
    btnFanAuto->setChecked(true);

    btnUserDefineConfig = newButton("btnUserDefineConfig", AdjustPageStyle::fanButton(), this);
    LinkCheckBox = new QCheckBox(this);
    LinkCheckBox->setObjectName(QStringLiteral("LinkCheckBox"));
    LinkCheckBox->setStyleSheet(AdjustPageStyle::linkBox());
}

void Ovryn_OverClockingWidget::connectAll()
{
    for (Ovryn_SliderWidget *row : rows) {
        connect(row, SIGNAL(valueChanged(Ovryn_SliderWidget *)), this, SLOT(onSliderChanged(Ovryn_SliderWidget *)));
        connect(row, SIGNAL(sliderMoved(Ovryn_SliderWidget *, int)), this,
                SLOT(onSliderMoved(Ovryn_SliderWidget *, int)));
        connect(row, SIGNAL(sliderReleased(Ovryn_SliderWidget *)), this,
                SLOT(onSliderReleased(Ovryn_SliderWidget *)));
    }
    connect(btnApply, SIGNAL(released()), this, SLOT(onBtnApplyClick()));
    connect(btnCancel, SIGNAL(released()), this, SLOT(onBtnCancleClick()));
    connect(btnDefault, SIGNAL(released()), this, SLOT(onBtnDefaultClick()));
    connect(btnFanAuto, SIGNAL(released()), this, SLOT(onBtnFanAutoClick()));
    connect(btnFanManual, SIGNAL(released()), this, SLOT(onBtnFanManualClick()));
    connect(btnFanUserDefined, SIGNAL(released()), this, SLOT(onBtnFanUserDefinedClick()));
    connect(btnUserDefineConfig, SIGNAL(released()), this, SLOT(onBtnUserDefineConfigClick()));
    connect(LinkCheckBox, SIGNAL(toggled(bool)), this, SLOT(onLinkCheckBoxToggle(bool)));
    connect(&card, SIGNAL(snapshotRead()), this, SLOT(showSnapshot()));
    connect(&card, SIGNAL(highPerformanceModeChanged(bool)), this, SIGNAL(highPerformanceModeChanged(bool)));
}

void Ovryn_OverClockingWidget::showSnapshot()
{
    showParam(card.snapshot());
    hideApplyAndCancel();
}

void Ovryn_OverClockingWidget::showLink(bool linked)
{
    const QSignalBlocker silent(LinkCheckBox); // the rows come from the snapshot, not from the link
    LinkCheckBox->setChecked(linked);
}

void Ovryn_OverClockingWidget::showParam(OverClockingParam param)
{
    showLink(param.linkOfPowerWithTemperature);
    for (AdjustRowIndex index : {RowGpuClock, RowMemoryClock, RowFan, RowTemperature, RowPower, RowVoltage}) {
        const AdjustRow &row = kAdjustRows[index];
        const AdjustRange range = row.range(param);
        rows[index]->setRange(range.minimum, range.maximum);
        rows[index]->setValue(row.value(param));
        rows[index]->setEnabled(row.editable(param));
    }

    const bool controllable = isFanControllable(param);
    if (!controllable || param.fanMode == FanAuto)
        btnFanAuto->setChecked(true);
    else if (param.fanMode == FanManual)
        btnFanManual->setChecked(true);
    else
        btnFanUserDefined->setChecked(true);
    for (QPushButton *button : {btnFanAuto, btnFanManual, btnFanUserDefined})
        button->setEnabled(controllable);
}

OverClockingParam Ovryn_OverClockingWidget::readSliders() const
{
    OverClockingParam edited = card.snapshot();
    for (std::size_t index = 0; index < rows.size(); ++index)
        kAdjustRows[index].value(edited) = rows[index]->value();
    edited.linkOfPowerWithTemperature = LinkCheckBox->isChecked();
    if (btnFanManual->isChecked())
        edited.fanMode = FanManual;
    else if (btnFanUserDefined->isChecked())
        edited.fanMode = FanUserDefined;
    else
        edited.fanMode = FanAuto;
    return edited;
}

void Ovryn_OverClockingWidget::setLanguage(Lang_OverClock texts, LanguageType newLanguage)
{
    for (std::size_t index = 0; index < rows.size(); ++index)
        rows[index]->setText(texts.*kAdjustRows[index].caption);
    btnApply->setText(texts.apply);
    btnCancel->setText(texts.cancel);
    btnDefault->setText(texts.defaults);
    applyPrompt = std::move(texts.applyQuestion);
    language = newLanguage;
    setFonts();
    drawFrame();
    update();
}

void Ovryn_OverClockingWidget::setFonts()
{
    const QString family = PageFrame::fontFamily(language);
    for (Ovryn_SliderWidget *row : rows)
        row->setFont(QFont(family));

    const QFont actionFont = buttonFont(family, kActionFontWeight, rects.applyButton.height() - 3);
    for (QPushButton *button : {btnApply, btnCancel, btnDefault})
        button->setFont(actionFont);

    const QFont fanFont = buttonFont(QStringLiteral("Arial"), kFanFontWeight, rects.autoButton.height() - 1);
    for (QPushButton *button : {btnFanAuto, btnFanManual, btnFanUserDefined})
        button->setFont(fanFont);
}

void Ovryn_OverClockingWidget::resizeEvent(QResizeEvent *)
{
    rects = adjustPageLayoutFor(size());
    for (std::size_t index = 0; index < rows.size(); ++index)
        rows[index]->setGeometry(rects.rows[index]);
    editor->setGeometry(rects.editor);
    btnApply->setGeometry(rects.applyButton);
    btnCancel->setGeometry(rects.cancelButton);
    btnDefault->setGeometry(rects.defaultButton);
    btnFanAuto->setGeometry(rects.autoButton);
    btnFanManual->setGeometry(rects.manualButton);
    btnFanUserDefined->setGeometry(rects.userDefinedButton);
    btnUserDefineConfig->setGeometry(rects.configButton);
    LinkCheckBox->setGeometry(rects.linkBox);

    const int iconSize = std::max(1, rects.configButton.height() - kIconMargin);
    btnUserDefineConfig->setIconSize(QSize(iconSize, iconSize));
    btnUserDefineConfig->setIcon(AdjustPageStyle::curveIcon(iconSize));
    drawFrame();
    setFonts();
}

void Ovryn_OverClockingWidget::drawFrame()
{
    background = QPixmap(size());
    background.fill(Qt::transparent);
    if (background.isNull())
        return;
    const QPainterPath frame = adjustFramePath(size());
    QPainter painter(&background);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.fillPath(frame, fillColor);
    painter.strokePath(frame, QPen(frameColor, AdjustPageLayout::frameWidth));
}

void Ovryn_OverClockingWidget::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.drawPixmap(0, 0, background);
}

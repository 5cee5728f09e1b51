#include "ui/UiStyle.h"

#include "ui/Reds.h"

#include <QPainter>
#include <QPalette>
#include <QSize>
#include <QToolTip>

namespace
{

constexpr double kGlassRadius = 10;
constexpr double kGlassEdgeWidth = 2.5;
const QColor kGlassColor(0, 0, 0, 220);
const QColor kGlassEdgeColor = Reds::glass();
const QColor kToolTipColor(26, 8, 12);
const QColor kToolTipTextColor(230, 230, 230);

/// White indicators of the message box folder, at their own 18 by 18 pixels.
QString checkBoxIndicator()
{
    return QStringLiteral(
        "QCheckBox::indicator{width:18px;height:18px;}"
        "QCheckBox::indicator:unchecked{image:url(:/images/images/messageBox/unchecked.png);}"
        "QCheckBox::indicator:unchecked:hover{image:url(:/images/images/messageBox/hover_unchecked.png);}"
        "QCheckBox::indicator:checked{image:url(:/images/images/messageBox/checked.png);}"
        "QCheckBox::indicator:checked:hover{image:url(:/images/images/messageBox/hover_checked.png);}");
}

/// White frames; a pressed caption is a pixel smaller and a hovered one a pixel larger than the usual 12.
QString settingButton()
{
    return Reds::inSheet(
        QStringLiteral("QPushButton{border:1px solid white; padding: 1px 2px 1px 2px; min-width: 9em;"
                       "background-color:white;color:black;}"
                       "QPushButton{outline:none;}"
                       "QPushButton:focus{border:1px solid rgb(@glass);}"
                       "QPushButton:hover{font-size:13px;}"
                       "QPushButton:pressed{font-size:11px;}"));
}

QString comboArrow()
{
    return QStringLiteral("QComboBox::drop-down{width:22px;}"
                          "QComboBox::down-arrow{image:url(:/images/images/combo/arrow_down.png);"
                          "width:12px;height:8px;}"
                          "QComboBox::down-arrow:hover,QComboBox::down-arrow:on{"
                          "image:url(:/images/images/combo/arrow_hover.png);}");
}

QString settingFont()
{
    return QStringLiteral("QWidget{font-family:微软雅黑;}");
}

QString thinScrollBar()
{
    return Reds::inSheet(
        QStringLiteral("QScrollBar:vertical{background:transparent;width:8px;margin:0px;}"
                       "QScrollBar::handle:vertical{background:rgba(@gauge,180);border-radius:4px;"
                       "min-height:24px;}"
                       "QScrollBar::handle:vertical:hover{background:rgb(@glass);}"
                       "QScrollBar::add-line:vertical,QScrollBar::sub-line:vertical{height:0px;}"
                       "QScrollBar::add-page:vertical,QScrollBar::sub-page:vertical{background:transparent;}"));
}

} // namespace

QString UiStyle::messageBox()
{
    return Reds::inSheet(QStringLiteral("QLabel{color:rgb(255,255,255);}"
                                        "QPushButton{border: 1px solid rgba(@glass,150);"
                                        "background-color:rgba(@glass,80);"
                                        "color:rgb(220, 220, 220);}"
                                        "QPushButton:hover{border: 1px solid rgba(@glass,180);"
                                        "background-color:rgba(@glass,150);}"
                                        "QPushButton:pressed{border: 1px solid rgba(@glass,200);"
                                        "background-color:rgba(@glass,140);}"
                                        "QPushButton:checked{background-color:rgba(@glass,120);}"),
                         QStringLiteral(", ")) +
           checkBoxIndicator() + QStringLiteral("QCheckBox{color:rgb(220, 220, 220);spacing:8px;}");
}

QString UiStyle::settingPage()
{
    return settingFont() +
           QStringLiteral("QComboBox{ border: 1px solid white; padding: 1px 2px 1px 2px; min-width: 9em; }"
                          "QComboBox::drop-down{ border-left-color: rgba(0,0,0,0);}") +
           settingButton() +
           Reds::inSheet(QStringLiteral(
               "QLabel,QCheckBox,QRadioButton{color:rgb(230,230,230);font-size:13px;}"
               "QLabel#lbl_Setting{color:white;font-size:20px;}"
               "QLabel#lbl_Boot,QLabel#lbl_Monitor,QLabel#lbl_UpdateInOnline{color:white;font-size:15px;"
               "border:0px solid rgb(@gauge);border-left-width:3px;padding-left:8px;}"
               "QCheckBox:hover,QRadioButton:hover{color:white;}"
               "QCheckBox:focus,QRadioButton:focus{color:rgb(255,120,140);}"
               "QCheckBox,QRadioButton{spacing:8px;outline:none;}"
               "QPushButton,QComboBox{font-size:12px;}"
               "QComboBox{color:white;background-color:rgba(0,0,0,90);combobox-popup:0;}"
               "QComboBox:hover,QComboBox:on{background-color:rgba(@glass,70);}")) +
           comboArrow() + checkBoxIndicator() + radioButtonIndicator();
}

QString UiStyle::settingList()
{
    return QStringLiteral("QListView{font-family:微软雅黑;}"
                          "QListView::item:selected:active{background-color:rgba(255,0,0,230);}"
                          "QListView::item:selected{color: white;}"
                          "QListView{color:white;background-color:rgb(26,8,12);border:1px solid white;outline:0px;"
                          "font-size:12px;}"
                          "QListView::item{min-height:22px;}");
}

QString UiStyle::updateLog()
{
    return settingButton() + QStringLiteral("QTextEdit{background-color:rgba(0,0,0,0);color:white;border:0px;}") +
           settingFont() + QStringLiteral("QTextEdit{font-size:13px;}QPushButton{font-size:12px;min-height:24px;}") +
           thinScrollBar();
}

QString UiStyle::cardSelector()
{
    return Reds::inSheet(
               QStringLiteral("QComboBox{background-color:rgba(255,255,255,0);}"
                              "QListView{color:white;background-color:rgba(255,255,255,0);border-top:1px solid red;"
                              "border-right:1px solid red;border-bottom :1px solid red; border-left:1px solid red; }"
                              "QListView::item{ background-color:rgba(255,255,255,0);}"
                              "QListView::item:selected:active{background-color:rgba(255,0,0,0);color:rgb(@gauge); }"
                              "QListView::item:selected{ color: rgba(255,255,255,255); "
                              "background-color:rgba(255,255,255,0);}"
                              "QComboBox{color:white;border:0px;combobox-popup:0;}"
                              "QListView{outline:0px;}")) +
           comboArrow();
}

QString UiStyle::radioButtonIndicator()
{
    return Reds::inSheet(QStringLiteral(
        "QRadioButton::indicator{width:14px;height:14px;border-radius:8px;"
        "border:1px solid rgba(@glass,200);background-color:rgba(0,0,0,120);}"
        "QRadioButton::indicator:hover{border:1px solid rgb(255,70,100);}"
        "QRadioButton::indicator:checked{background-color:qradialgradient(cx:0.5,cy:0.5,radius:0.5,fx:0.5,fy:0.5,"
        "stop:0 rgb(255,70,100),stop:0.5 rgb(@gauge),stop:0.6 rgba(0,0,0,120),stop:1 rgba(0,0,0,120));}"));
}

QString UiStyle::smallCheckBoxIndicator()
{
    return QStringLiteral("QCheckBox::indicator{width:14px;height:14px;}"
                          "QCheckBox::indicator:unchecked{image:url(:/images/images/checkbox/check_off.png);}"
                          "QCheckBox::indicator:unchecked:hover{image:url(:/images/images/checkbox/check_hover.png);}"
                          "QCheckBox::indicator:checked{image:url(:/images/images/checkbox/check_on.png);}");
}

QString UiStyle::numberBoxes()
{
    return Reds::inSheet(
        QStringLiteral("ModifySpinBox{border:1px solid rgba(@glass,130);background-color:rgba(0,0,0,120);"
                       "color:rgb(238,238,238);padding-left:4px;"
                       "selection-background-color:rgb(@gauge);selection-color:white;}"
                       "ModifySpinBox:focus{border:1px solid rgb(@glass);}"
                       "ModifySpinBox:disabled{border:1px solid rgba(140,140,140,90);"
                       "background-color:rgba(0,0,0,60);color:rgb(120,120,120);}"));
}

QString UiStyle::radioButtons()
{
    return radioButtonIndicator() +
           QStringLiteral("QRadioButton{color:rgb(225,225,225);spacing:8px;outline:none;}"
                          "QRadioButton:hover{color:white;}"
                          "QRadioButton:disabled{color:rgb(120,120,120);}"
                          "QRadioButton::indicator:disabled{border:1px solid rgba(140,140,140,130);}"
                          "QRadioButton::indicator:checked:disabled{"
                          "background-color:qradialgradient(cx:0.5,cy:0.5,radius:0.5,fx:0.5,fy:0.5,"
                          "stop:0 rgb(120,120,120),stop:0.5 rgb(110,110,110),stop:0.6 rgba(0,0,0,120),stop:1 "
                          "rgba(0,0,0,120));}");
}

QString UiStyle::numberBoxButtons()
{
    return Reds::inSheet(QStringLiteral("ModifySpinBox::up-button,ModifySpinBox::down-button{border:none;"
                                        "background-color:rgba(@glass,60);}"
                                        "ModifySpinBox::up-button:hover,ModifySpinBox::down-button:hover{"
                                        "background-color:rgba(@glass,150);}"
                                        "ModifySpinBox::up-button:disabled,ModifySpinBox::down-button:disabled{"
                                        "background-color:rgba(140,140,140,30);}"
                                        "ModifySpinBox::up-arrow{image:url(:/images/images/spin/arrow_up.png);"
                                        "width:8px;height:5px;}"
                                        "ModifySpinBox::down-arrow{image:url(:/images/images/spin/arrow_down.png);"
                                        "width:8px;height:5px;}"
                                        "ModifySpinBox::up-arrow:disabled,ModifySpinBox::up-arrow:off{"
                                        "image:url(:/images/images/spin/arrow_up_off.png);}"
                                        "ModifySpinBox::down-arrow:disabled,ModifySpinBox::down-arrow:off{"
                                        "image:url(:/images/images/spin/arrow_down_off.png);}"));
}

QString UiStyle::actionButton()
{
    return Reds::inSheet(
        QStringLiteral("QPushButton{border:1px solid rgba(@glass,150);background-color:rgba(@glass,80);"
                       "color:rgb(230,230,230);padding:0px;outline:none;}"
                       "QPushButton:hover{border:1px solid rgba(@glass,220);"
                       "background-color:rgba(@glass,150);color:white;}"
                       "QPushButton:pressed{border:1px solid rgba(@glass,255);"
                       "background-color:rgba(@glass,110);}"));
}

void UiStyle::paintDialogGlass(QPainter &painter, QSize size)
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(kGlassColor);
    painter.setPen(QPen(kGlassEdgeColor, kGlassEdgeWidth));
    painter.drawRoundedRect(QRect(QPoint(0, 0), size), kGlassRadius, kGlassRadius);
    painter.restore();
}

void UiStyle::colorToolTips()
{
    QPalette palette = QToolTip::palette();
    for (const QPalette::ColorRole role : {QPalette::Window, QPalette::ToolTipBase})
        palette.setColor(role, kToolTipColor);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::ToolTipText})
        palette.setColor(role, kToolTipTextColor);
    QToolTip::setPalette(palette);
}

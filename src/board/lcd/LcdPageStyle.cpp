#include "board/lcd/LcdPageStyle.h"

#include "ui/Reds.h"
#include "ui/UiStyle.h"

QString LcdPageStyle::radio()
{
    return UiStyle::radioButtons();
}

QString LcdPageStyle::keyField()
{
    return Reds::inSheet(
        QStringLiteral("QLineEdit{border:1px solid rgba(@glass,130);background-color:rgba(0,0,0,120);"
                       "color:rgb(238,238,238);padding:0px;"
                       "selection-background-color:rgb(@gauge);selection-color:white;}"
                       "QLineEdit:hover{border:1px solid rgba(@glass,220);}"
                       "QLineEdit:focus{border:1px solid rgb(@glass);background-color:rgba(@glass,70);}"
                       "QLineEdit:disabled{border:1px solid rgba(140,140,140,90);"
                       "background-color:rgba(0,0,0,60);color:rgb(120,120,120);}"
                       // the captions reach up to the fields: these stand off by a margin of their own
                       "QLineEdit#hotKeyModifier{margin-left:4px;}"));
}

QString LcdPageStyle::switchTime()
{
    return UiStyle::numberBoxes() + UiStyle::numberBoxButtons() +
           QStringLiteral("ModifySpinBox{padding:0px 0px 0px 4px;margin-left:4px;}"
                          "ModifySpinBox::up-button,ModifySpinBox::down-button{width:14px;}");
}

QString LcdPageStyle::lcdSwitch()
{
    return QStringLiteral("QCheckBox{spacing:0px;outline:none;}"
                          "QCheckBox::indicator{width:92px;height:26px;}"
                          "QCheckBox::indicator:unchecked{image:url(:/images/images/lcdSwitch/lcd_off.png);}"
                          "QCheckBox::indicator:unchecked:hover{"
                          "image:url(:/images/images/lcdSwitch/lcd_off_hover.png);}"
                          "QCheckBox::indicator:checked{image:url(:/images/images/lcdSwitch/lcd_on.png);}"
                          "QCheckBox::indicator:checked:hover{"
                          "image:url(:/images/images/lcdSwitch/lcd_on_hover.png);}");
}

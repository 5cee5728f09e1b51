#include "app/MainDialogStyle.h"

#include "ui/Reds.h"

#include <QFont>
#include <QPushButton>

#include <algorithm>

namespace MainDialogStyle
{

namespace
{

QString imageRule(const QString &selector, const QString &picture)
{
    return QStringLiteral("%1{border-image:url(:/images/images/%2);}").arg(selector, picture);
}

} // namespace

QString textButton()
{
    return Reds::inSheet(QStringLiteral("QPushButton{ background-color:rgba(0,0,0,0);"
                                        "\t\t\t\t\t\t\tborder: 0px solid rgba(0, 0, 0,0);"
                                        "\t\t\t\t\t\t\tcolor:rgba(255, 255, 255,255);}"
                                        "QPushButton:hover{color:rgb(255, 120, 140);}"
                                        "QPushButton:checked{color:rgb(@glass);}"),
                         QStringLiteral(", "));
}

QString pictureButton(const QString &name)
{
    const QString folder = QStringLiteral("buttons/") + name;
    return QStringLiteral("QPushButton{background:transparent;border:none;}") +
           imageRule(QStringLiteral("QPushButton"), folder + QStringLiteral(".png")) +
           imageRule(QStringLiteral("QPushButton:hover"), folder + QStringLiteral("_hover.png")) +
           imageRule(QStringLiteral("QPushButton:checked"), folder + QStringLiteral("_press.png")) +
           imageRule(QStringLiteral("QPushButton:pressed"), folder + QStringLiteral("_press.png"));
}

QString slotButton(const QString &name)
{
    const QString plate = QStringLiteral("TopButton/") + name;
    return QStringLiteral("QPushButton{background:transparent;border:none;color:white;}") +
           imageRule(QStringLiteral("QPushButton"), plate + QStringLiteral("_off.png")) +
           imageRule(QStringLiteral("QPushButton:hover"), plate + QStringLiteral("_on.png")) +
           imageRule(QStringLiteral("QPushButton:checked"), plate + QStringLiteral("_on.png"));
}

QString highPerformanceSwitch()
{
    const QString folder = QStringLiteral("hightPerformanceSwitch/hps_");
    return QStringLiteral("QPushButton{background:transparent;border:none;color:white;}") +
           imageRule(QStringLiteral("QPushButton"), folder + QStringLiteral("off.png")) +
           imageRule(QStringLiteral("QPushButton:hover"), folder + QStringLiteral("over.png")) +
           imageRule(QStringLiteral("QPushButton:checked"), folder + QStringLiteral("on.png"));
}

void setCaptionFonts(const QList<QPushButton *> &buttons, const QString &family)
{
    for (QPushButton *button : buttons) {
        QFont font = button->font();
        if (!family.isEmpty())
            font.setFamily(family);
        font.setPixelSize(std::max(1, button->height() * 3 / 4));
        button->setFont(font);
    }
}

} // namespace MainDialogStyle

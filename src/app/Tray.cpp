#include "app/Tray.h"

#include "ui/Ovryn_LanguageTable.h"

#include <QAction>
#include <QIcon>

namespace
{

constexpr int kMenuMinimumWidth = 150; // pixels

} // namespace

Tray::Tray(QObject *parent) : QObject(parent), icon(QIcon(QStringLiteral(":/images/images/icon.png")), this)
{
    menu.setFont(QFont(QStringLiteral("微软雅黑")));
    menu.setMinimumWidth(kMenuMinimumWidth);
    showMainAction = menu.addAction(QString());
    menu.addSeparator();
    exitAppAction = menu.addAction(QString());
    connect(showMainAction, SIGNAL(triggered()), this, SIGNAL(displayChosen()));
    connect(exitAppAction, SIGNAL(triggered()), this, SIGNAL(exitChosen()));

    icon.setToolTip(QStringLiteral("OvrynDeck2"));
    icon.setContextMenu(&menu);
    connect(&icon, SIGNAL(activated(QSystemTrayIcon::ActivationReason)), this,
            SIGNAL(activated(QSystemTrayIcon::ActivationReason)));
    icon.show();
}

void Tray::setLanguage(const Lang_MainDialog &words)
{
    showMainAction->setText(words.display);
    exitAppAction->setText(words.exit);
}

#pragma once

#include <QMenu>
#include <QObject>
#include <QSystemTrayIcon>

struct Lang_MainDialog;
class QAction;

/// The program's icon in the tray with its menu of two items. Visible until `hide` is called or the object is
/// deleted. Owned by the main dialog; GUI thread only. A system without a tray shows nothing.
class Tray : public QObject
{
    Q_OBJECT

public:
    explicit Tray(QObject *parent = nullptr);

    void setLanguage(const Lang_MainDialog &words); ///< captions of the menu
    void hide() { icon.hide(); }

signals:
    void activated(QSystemTrayIcon::ActivationReason reason); ///< of the icon
    void displayChosen();                                     ///< in the menu
    void exitChosen();                                        ///< in the menu

private:
    QMenu menu;
    QAction *showMainAction;
    QAction *exitAppAction;
    QSystemTrayIcon icon;
};

#include "platform/QtSingleApplication.h"

#include <QWidget>

QtSingleApplication::QtSingleApplication(const QString &id, int &argc, char **argv)
    : QApplication(argc, argv), channel(id)
{
    connect(&channel, SIGNAL(messageReceived(QString)), this, SIGNAL(messageReceived(QString)));
}

bool QtSingleApplication::isRunning()
{
    return !channel.isFirst();
}

bool QtSingleApplication::sendMessage(const QString &message, int timeoutMs)
{
    return channel.send(message, timeoutMs);
}

void QtSingleApplication::setActivationWindow(QWidget *window, bool activateOnMessage)
{
    activationWindow = window;
    disconnect(this, SIGNAL(messageReceived(QString)), this, SLOT(activateWindow()));
    if (activateOnMessage)
        connect(this, SIGNAL(messageReceived(QString)), this, SLOT(activateWindow()));
}

void QtSingleApplication::activateWindow()
{
    if (!activationWindow)
        return;
    activationWindow->setWindowState(activationWindow->windowState() & ~Qt::WindowMinimized);
    activationWindow->show(); // it may be in the tray
    activationWindow->raise();
    activationWindow->activateWindow();
}

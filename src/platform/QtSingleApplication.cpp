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
    if (activationWindow)
        bringToFront(activationWindow);
}

void QtSingleApplication::bringToFront(QWidget *window)
{
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    window->show();
    window->raise();
    window->activateWindow();
}

#pragma once

#include "platform/SingleInstanceChannel.h"

#include <QApplication>
#include <QPointer>

/// The application object of a program that runs once for each user. A further start finds `isRunning`, sends a
/// message and ends; the first one brings its window up.
///
/// Made by `main`, first of all. GUI thread.
class QtSingleApplication : public QApplication
{
    Q_OBJECT

public:
    /// Starts with the same identifier belong together.
    QtSingleApplication(const QString &id, int &argc, char **argv);

    /// True when an earlier start of this user is still running, be it stopped or hanging.
    [[nodiscard]] bool isRunning();

    /// Hands the message to the running instance. False when that has not taken it within the time.
    bool sendMessage(const QString &message, int timeoutMs = 5000);

    /// The window that `activateWindow` brings up; borrowed. With `activateOnMessage` every message does so, whatever
    /// its text.
    void setActivationWindow(QWidget *window, bool activateOnMessage = true);

public slots:
    /// Shows the window if it is hidden or minimised, and brings it to the front.
    void activateWindow();

signals:
    void messageReceived(const QString &message); ///< from a further start

private:
    SingleInstanceChannel channel;
    QPointer<QWidget> activationWindow;
};

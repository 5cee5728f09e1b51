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
    /// Starts with the same identifier are starts of the same program.
    QtSingleApplication(const QString &id, int &argc, char **argv);

    /// True when an earlier start of this user is still running, also one that is stopped or hangs.
    [[nodiscard]] bool isRunning();

    /// Sends the message to the running instance. False when that has not taken it within the time.
    bool sendMessage(const QString &message, int timeoutMs = 5000);

    /// Informs later starts that this instance takes no more messages and ends soon.
    void announceEnd() { channel.announceEnd(); }

    /// Waits until an instance that has announced its end is gone. True when this start has taken its place.
    bool waitForEndOfFirst(int timeoutMs) { return channel.waitForEndOfFirst(timeoutMs); }

    /// Shows a window that is hidden or minimised, and brings it to the front.
    static void bringToFront(QWidget *window);

    /// The window that `activateWindow` brings up; borrowed. With `activateOnMessage` every message does so, whatever
    /// its text.
    void setActivationWindow(QWidget *window, bool activateOnMessage = true);

public slots:
    void activateWindow(); ///< brings the activation window to the front

signals:
    void messageReceived(const QString &message); ///< from a further start

private:
    SingleInstanceChannel channel;
    QPointer<QWidget> activationWindow;
};

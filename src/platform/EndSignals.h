#pragma once

#include <QObject>

/// The system's demand that this process ends, as the desktop's users know it from a logout, a shutdown or Ctrl+C.
///
/// On Unix that is SIGTERM, SIGINT or SIGHUP. The first one is reported on the thread that made the object, from its
/// event loop; a second one of the same kind ends the process at once, for the case that the program hangs. Windows
/// sends no such signals to a program with windows: there the installer sets a named event, and the toolkit's session
/// management reports the end of the session. One object at a time; its destructor restores the usual effect of the
/// signals.
class EndSignals : public QObject
{
    Q_OBJECT

public:
    explicit EndSignals(QObject *parent = nullptr);
    ~EndSignals() override;

signals:
    void endDemanded();

private slots:
    void onSignalArrived();
};

#pragma once

#include <QObject>

/// The system's demand that this process ends, as the desktop's users know it from a logout, a shutdown or Ctrl+C.
///
/// On Unix that is SIGTERM, SIGINT or SIGHUP. The first one is reported on the thread that made the object, from its
/// event loop; a second one of the same kind ends the process at once, for the case that the program hangs. Windows
/// sends no such signals to a program with windows: there nothing is ever reported, and the toolkit's session
/// management takes its place. One object at a time; its destructor restores the usual effect of the signals.
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

/// For a helper process that must outlive the program it serves: the signals that a terminal or a session sends to
/// all of its processes don't reach it from now on. It ends by itself, or is killed.
void outliveTheSession();

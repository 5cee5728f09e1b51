#pragma once

#include <QMutex>
#include <QStringList>
#include <QtGlobal>

/// Collects the toolkit's "QObject::connect:" warnings while it lives; everything is passed on as well.
/// Text-form connections fail only at run time, so each window is built once under a watcher whose list must
/// be empty. One watcher at a time.
class ConnectWarnings
{
public:
    ConnectWarnings();
    ~ConnectWarnings();
    ConnectWarnings(const ConnectWarnings &) = delete;
    ConnectWarnings &operator=(const ConnectWarnings &) = delete;

    [[nodiscard]] QStringList list() const;

private:
    static void handle(QtMsgType type, const QMessageLogContext &context, const QString &message);

    mutable QMutex mutex;
    QStringList warnings; ///< guarded by `mutex`: messages come from any thread
    QtMessageHandler previous;
};

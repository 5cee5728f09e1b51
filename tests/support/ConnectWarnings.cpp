#include "support/ConnectWarnings.h"

#include <QMutexLocker>

namespace
{

ConnectWarnings *watcher = nullptr;

} // namespace

ConnectWarnings::ConnectWarnings()
{
    Q_ASSERT(!watcher);
    watcher = this;
    previous = qInstallMessageHandler(handle);
}

ConnectWarnings::~ConnectWarnings()
{
    qInstallMessageHandler(previous);
    watcher = nullptr;
}

QStringList ConnectWarnings::list() const
{
    QMutexLocker locker(&mutex);
    return warnings;
}

void ConnectWarnings::handle(QtMsgType type, const QMessageLogContext &context, const QString &message)
{
    if (message.startsWith(QStringLiteral("QObject::connect"))) {
        QMutexLocker locker(&watcher->mutex);
        watcher->warnings.append(message);
    }
    if (watcher->previous)
        watcher->previous(type, context, message);
}

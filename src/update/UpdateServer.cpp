#include "update/UpdateServer.h"

QString updateServer()
{
    return QStringLiteral(OVRYN_UPDATE_SERVER);
}

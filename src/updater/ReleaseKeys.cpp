#include "updater/ReleaseKeys.h"

QByteArray releaseKeys()
{
    return QByteArrayLiteral(OVRYN_RELEASE_KEYS);
}

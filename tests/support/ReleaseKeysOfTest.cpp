#include "updater/ReleaseKeys.h"

#include <QtGlobal>

// In place of the shipped updater's keys.
QByteArray releaseKeys()
{
    return qgetenv("OVRYN_TEST_RELEASE_KEYS");
}

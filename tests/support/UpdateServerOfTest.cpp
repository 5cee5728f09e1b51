#include "update/UpdateServer.h"

// In place of the shipped program's server: linked as an object, it goes before the library's.
QString updateServer()
{
    return qEnvironmentVariable("OVRYN_TEST_UPDATE_SERVER");
}

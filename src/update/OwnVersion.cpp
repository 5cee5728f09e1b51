#include "ui/ProgramVersion.h"
#include "update/UpdateDecision.h"

// Alone in its source, so that a test program can be of another version.
QString ownVersion()
{
    return QString::fromLatin1(kProgramVersion);
}

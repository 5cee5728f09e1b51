#include "platform/ExecutableName.h"

QString executableFileName(const QString &program)
{
    return program;
}

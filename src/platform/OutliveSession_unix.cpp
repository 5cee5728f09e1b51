#include "platform/OutliveSession.h"

#include "platform/EndSignalNumbers.h"

#include <unistd.h>

void outliveTheSession()
{
    setsid(); // fails for the leader of a process group, which a helper is not
    for (const int signalNumber : kEndSignals)
        std::signal(signalNumber, SIG_IGN);
}

#include "platform/OutliveSession.h"

void outliveTheSession() {} // a process without a window and a console is sent nothing

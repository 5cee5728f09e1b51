#include "platform/ScreenScaling.h"

void followScreenScaling() {}

#include "platform/EndSignals.h"

EndSignals::EndSignals(QObject *parent) : QObject(parent) {}

EndSignals::~EndSignals() = default;

void EndSignals::onSignalArrived() {}

void outliveTheSession() {} // a process without a window and a console is sent nothing

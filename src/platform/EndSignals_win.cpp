#include "platform/EndSignals.h"

#include <QWinEventNotifier>

#include <windows.h>

namespace
{

// In the name space of the user's session. The installer sets it; see tools/windows/installer.nsi.
const wchar_t *const kEndEvent = L"Local\\OvrynDeck2_end";

HANDLE endEvent = nullptr;

} // namespace

EndSignals::EndSignals(QObject *parent) : QObject(parent)
{
    const BOOL onlyByHand = FALSE;
    const BOOL setFromTheStart = FALSE;
    endEvent = CreateEventW(nullptr, onlyByHand, setFromTheStart, kEndEvent);
    if (!endEvent)
        return; // nobody can demand the end
    auto *notifier = new QWinEventNotifier(endEvent, this);
    connect(notifier, SIGNAL(activated(HANDLE)), this, SLOT(onSignalArrived()));
}

EndSignals::~EndSignals()
{
    if (!endEvent)
        return;
    delete findChild<QWinEventNotifier *>(); // before what it waits for
    CloseHandle(endEvent);
    endEvent = nullptr;
}

void EndSignals::onSignalArrived()
{
    emit endDemanded();
}

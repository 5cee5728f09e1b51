#include "platform/EndSignals.h"

#include "platform/EndSignalNumbers.h"

#include <QSocketNotifier>

#include <array>
#include <atomic>
#include <csignal>

#include <fcntl.h>
#include <unistd.h>

namespace
{

// A handler may do next to nothing, so it writes a byte that the event loop reads.
std::array<int, 2> signalPipe = {-1, -1};
std::atomic<int> signalPipeEnd{-1};

void reportToLoop(int)
{
    const char anything = 0;
    const auto written = write(signalPipeEnd, &anything, sizeof anything);
    (void)written; // a full pipe has reported already
}

void setDisposition(int signalNumber, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART | SA_RESETHAND;
    sigaction(signalNumber, &action, nullptr);
}

} // namespace

EndSignals::EndSignals(QObject *parent) : QObject(parent)
{
    if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0)
        return; // the signals keep their usual effect
    signalPipeEnd = signalPipe[1];
    auto *notifier = new QSocketNotifier(signalPipe[0], QSocketNotifier::Read, this);
    connect(notifier, SIGNAL(activated(QSocketDescriptor, QSocketNotifier::Type)), this, SLOT(onSignalArrived()));
    for (const int signalNumber : kEndSignals)
        setDisposition(signalNumber, reportToLoop);
}

EndSignals::~EndSignals()
{
    if (signalPipeEnd < 0)
        return;
    for (const int signalNumber : kEndSignals)
        setDisposition(signalNumber, SIG_DFL);
    signalPipeEnd = -1;
    for (int &end : signalPipe) {
        close(end);
        end = -1;
    }
}

void EndSignals::onSignalArrived()
{
    std::array<char, 16> bytes{};
    while (read(signalPipe[0], bytes.data(), bytes.size()) > 0) {
    }
    emit endDemanded();
}

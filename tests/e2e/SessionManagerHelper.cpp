// A session manager with one client, for the end-to-end tests. It prints the address that clients find in
// SESSION_MANAGER, then reads orders from its standard input, a line each: "save" asks the client to save itself
// because the session may end, "cancel" cancels that end, "die" ends the session for the client. It prints "saved"
// when the client has saved itself and "gone" when the client's connection is closed, and ends with its input.

#include <X11/ICE/ICElib.h>
#include <X11/ICE/ICEutil.h>
#include <X11/SM/SMlib.h>

#include <poll.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <string>
#include <vector>

namespace
{

SmsConn client = nullptr;
std::vector<IceConn> connections;

void say(const char *word)
{
    std::cout << word << std::endl;
}

Status registerClient(SmsConn connection, SmPointer, char *previousId)
{
    if (previousId) {
        free(previousId);
        return 0; // no earlier session is known: the client comes again as a new one
    }
    SmsRegisterClientReply(connection, SmsGenerateClientID(connection));
    client = connection;
    SmsSaveYourself(connection, SmSaveLocal, False, SmInteractStyleNone, False); // as the protocol wants it first
    return 1;
}

void saveYourselfDone(SmsConn connection, SmPointer, Bool)
{
    static bool first = true;
    if (first)
        SmsSaveComplete(connection);
    else
        say("saved");
    if (first)
        say("registered");
    first = false;
}

void closeConnection(SmsConn connection, SmPointer, int count, char **reasons)
{
    SmFreeReasons(count, reasons);
    const IceConn ice = SmsGetIceConnection(connection);
    SmsCleanUp(connection);
    IceSetShutdownNegotiation(ice, False);
    IceCloseConnection(ice);
    client = nullptr;
    say("gone");
}

Status newClient(SmsConn, SmPointer, unsigned long *mask, SmsCallbacks *callbacks, char **)
{
    *mask = SmsRegisterClientProcMask | SmsInteractRequestProcMask | SmsInteractDoneProcMask |
            SmsSaveYourselfRequestProcMask | SmsSaveYourselfP2RequestProcMask | SmsSaveYourselfDoneProcMask |
            SmsCloseConnectionProcMask | SmsSetPropertiesProcMask | SmsDeletePropertiesProcMask |
            SmsGetPropertiesProcMask;
    std::memset(callbacks, 0, sizeof *callbacks);
    callbacks->register_client.callback = registerClient;
    callbacks->interact_request.callback = [](SmsConn connection, SmPointer, int) {
        SmsInteract(connection);
    };
    callbacks->interact_done.callback = [](SmsConn, SmPointer, Bool) {
    };
    callbacks->save_yourself_request.callback = [](SmsConn, SmPointer, int, Bool, int, Bool, Bool) {
    };
    callbacks->save_yourself_phase2_request.callback = [](SmsConn connection, SmPointer) {
        SmsSaveYourselfPhase2(connection);
    };
    callbacks->save_yourself_done.callback = saveYourselfDone;
    callbacks->close_connection.callback = closeConnection;
    callbacks->set_properties.callback = [](SmsConn, SmPointer, int count, SmProp **properties) {
        for (int i = 0; i < count; ++i)
            SmFreeProperty(properties[i]);
        free(properties);
    };
    callbacks->delete_properties.callback = [](SmsConn, SmPointer, int count, char **names) {
        for (int i = 0; i < count; ++i)
            free(names[i]);
        free(names);
    };
    callbacks->get_properties.callback = [](SmsConn, SmPointer) {
    };
    return 1;
}

void obey(const std::string &order)
{
    if (!client)
        return;
    if (order == "save")
        SmsSaveYourself(client, SmSaveBoth, True, SmInteractStyleNone, False);
    else if (order == "cancel")
        SmsShutdownCancelled(client);
    else if (order == "die")
        SmsDie(client);
}

} // namespace

int main()
{
    char error[256] = "";
    IceListenObj *listeners = nullptr;
    int listenerCount = 0;
    const auto anyHost = [](char *) -> Bool {
        return True;
    };
    if (!SmsInitialize("test", "1", newClient, nullptr, anyHost, sizeof error, error) ||
        !IceListenForConnections(&listenerCount, &listeners, sizeof error, error)) {
        std::cerr << error << std::endl;
        return EXIT_FAILURE;
    }
    for (int i = 0; i < listenerCount; ++i)
        IceSetHostBasedAuthProc(listeners[i], anyHost);
    IceSetIOErrorHandler([](IceConn) {});
    char *const address = IceComposeNetworkIdList(listenerCount, listeners);
    say(address);
    free(address);

    for (;;) {
        std::vector<pollfd> ends = {{STDIN_FILENO, POLLIN, 0}};
        for (int i = 0; i < listenerCount; ++i)
            ends.push_back({IceGetListenConnectionNumber(listeners[i]), POLLIN, 0});
        for (const IceConn connection : connections)
            ends.push_back({IceConnectionNumber(connection), POLLIN, 0});
        if (poll(ends.data(), ends.size(), -1) < 0)
            return EXIT_FAILURE;

        const std::vector<IceConn> known = connections;
        for (std::size_t i = 0; i < known.size(); ++i) {
            if (!ends[1 + std::size_t(listenerCount) + i].revents)
                continue;
            if (IceProcessMessages(known[i], nullptr, nullptr) != IceProcessMessagesSuccess)
                connections.erase(connections.begin() + std::ptrdiff_t(i));
        }
        for (int i = 0; i < listenerCount; ++i) {
            if (!ends[1 + std::size_t(i)].revents)
                continue;
            IceAcceptStatus status = IceAcceptSuccess;
            if (const IceConn connection = IceAcceptConnection(listeners[i], &status))
                connections.push_back(connection);
        }
        if (ends[0].revents) {
            std::string order;
            if (!std::getline(std::cin, order))
                return EXIT_SUCCESS;
            obey(order);
        }
    }
}

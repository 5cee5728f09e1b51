#pragma once

#include <QString>

/// Scheme and host of the update server, without a slash at the end: the build option OVRYN_UPDATE_HOST.
///
/// Plain HTTP unless the option names another scheme: the manifest is public, nothing that comes over this connection
/// is run by this program, and a program without a TLS library could never ask. The separate updater checks what it
/// fetches afterwards. A forged manifest can at worst offer a version that does not exist or hide one; UpdateFiles.h
/// says what it can't reach.
///
/// The function has a source of its own, so that a test program can define it and use its own server. The shipped
/// program has no switch for it.
[[nodiscard]] QString updateServer();

/// The folder of the manifest and its signature on that server.
constexpr const char *kPacketsPath = "/update_packets/OvrynDeck2_UpdateFiles/";

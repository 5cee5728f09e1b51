#pragma once

#include <QString>

/// Scheme and host of the update server, with no slash behind: the build option OVRYN_UPDATE_HOST.
///
/// Plain HTTP unless the option names another scheme: the manifest is public, nothing that comes over this
/// connection is run by this program, and a program without a TLS library beside it could never ask. What the
/// separate updater fetches afterwards is the updater's to check. A manifest from a stranger can at worst offer a
/// version that is none or hide one; see UpdateFiles.h for what it can't reach.
///
/// Alone in its source, so that a test program that defines this function itself brings its own server; the shipped
/// program has no switch for it.
[[nodiscard]] QString updateServer();

/// The folder of the manifest and its signature on that server.
constexpr const char *kPacketsPath = "/update_packets/OvrynDeck2_UpdateFiles/";

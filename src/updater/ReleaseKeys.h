#pragma once

#include <QByteArray>

/// The public keys whose releases are installed, as base64 texts with blanks between them: the build option
/// OVRYN_UPDATE_PUBLIC_KEYS. Empty where the build was given none; nothing is installed then.
///
/// Alone in its source, so that a test program that defines this function itself brings its own key.
[[nodiscard]] QByteArray releaseKeys();

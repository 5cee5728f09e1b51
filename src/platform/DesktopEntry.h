#pragma once

#include <QByteArray>
#include <QString>

/// \file
/// Text of a desktop entry, as sessions that follow freedesktop.org read it. Pure functions; any thread.

/// A command line of one argument, the program itself: quoted, so that every character is taken literally.
[[nodiscard]] QString desktopExecOf(const QString &programPath);

/// A whole entry in UTF-8 that starts the program.
[[nodiscard]] QByteArray desktopEntryOf(const QString &name, const QString &programPath);

#pragma once

#include <QString>

/// \file
/// Where an update may write. What it installs is named by texts from the network, so that the rules are narrow:
/// plain names that mean the same on every system. Any thread.

/// Longest relative path of an installed file, in characters: it has to fit into a path of Windows together with the
/// installation folder.
constexpr int kInstalledPathLengthMax = 120;

/// True for a relative path of plain names with "/" between them that no system reads in another way: letters, digits
/// and "._+- " only, no "." or "..", no name that ends with a point or begins or ends with a blank, no device name of
/// Windows.
[[nodiscard]] bool isPlainRelativePath(const QString &path);

/// True for a plain relative path of a file that an update may install: not the settings file, which is the program's
/// alone, nor a folder in its place, and nothing in the folder temp, where the update itself works.
[[nodiscard]] bool mayBeInstalled(const QString &path);

/// True where no folder between the installation and the file is a link, so that the file lies where its path says.
/// Folders that are missing count as plain ones. `installation` is the canonical path of the folder.
[[nodiscard]] bool leadsThroughPlainFolders(const QString &installation, const QString &relativePath);

#pragma once

#include <QString>

/// One file of the update, as the manifest lists it. Texts from the network: none of them is checked here.
struct UpdateFileInfo
{
    QString fileName;
    QString fileDir;     ///< folder below the installation, with its closing slash
    QString fileVersion; ///< also names the archive in temp that holds a new updater
};

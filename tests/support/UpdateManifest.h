#pragma once

#include <QByteArray>

/// A manifest in the server's form, with the given children of "FileInfos".
inline QByteArray updateManifest(const QByteArray &currentVersion, const QByteArray &manualDownloadVersion = {},
                                 const QByteArray &files = {})
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Update>\n"
           "    <ServerAdress Value=\"http://files.example/packets\"/>\n"
           "    <FileInfos>" +
           files +
           "</FileInfos>\n"
           "    <CurrentVersion Value=\"" +
           currentVersion +
           "\"/>\n"
           "    <ManualDownloadVersion Value=\"" +
           manualDownloadVersion + "\"/>\n</Update>\n";
}

/// One child of "FileInfos".
inline QByteArray manifestFile(const QByteArray &dir, const QByteArray &name, const QByteArray &version)
{
    return "<FileInfo FileDir=\"" + dir + "\" FileName=\"" + name + "\" FileVersion=\"" + version + "\"/>";
}

#pragma once

#include "update/UpdateFileInfo.h"

#include <QList>
#include <QString>

struct XmlError;

/// Largest manifest that is read, in bytes. A real one has a few kilobytes; one of this size takes half a second.
constexpr qint64 kManifestBytesMax = 16 * 1024 * 1024;

/// Size in characters from which a manifest has to have few attributes. The XML library compares each attribute of an
/// element with all before it, so that an element of some hundred thousand would take it hours.
constexpr int kManifestCharactersMaxUnlessPlain = 16 * 1024;

/// Equals signs between two angle brackets, and in all, that such a manifest may have. No element has more attributes
/// than there are equals signs before the next element.
constexpr int kManifestEqualsSignsMaxPerTag = 256;
constexpr int kManifestEqualsSignsMax = 1000000;

/// The update manifest as plain fields. A local object of the function that needs it; GUI thread.
///
/// The manifest comes from the network, so it may hold any bytes. A manifest beyond the bounds above, or beyond those
/// of `walkXml` (a list of a million files, for example), counts as a parse failure. After a failure every text and
/// the list are empty, which offers no new version; so callers need not check the result.
class Ovryn_UpdateInfoReader
{
public:
    /// False: the file is missing, can't be opened or is no manifest.
    bool read(QString path);

    [[nodiscard]] QList<UpdateFileInfo> getFileInfos() const { return fileInfos; }
    [[nodiscard]] QString getServerAddress() const { return serverAddress; }
    [[nodiscard]] QString getCurrentVersion() const { return currentVersion; } ///< the newest there is
    /// The updater can't update a program that is older than this version.
    [[nodiscard]] QString getManualDownloadVersion() const { return manualDownloadVersion; }

    [[nodiscard]] bool isValid() const { return valid; }
    /// Why and where the last text that was parsed was refused; empty and 0 where it was not.
    [[nodiscard]] QString getErrorMessage() const { return errorMessage; }
    [[nodiscard]] int getErrorLine() const { return errorLine; }
    [[nodiscard]] int getErrorColumn() const { return errorColumn; }

private:
    bool parse(const QByteArray &bytes);
    bool takeFields(const QString &text, XmlError &error);
    void clear();

    QList<UpdateFileInfo> fileInfos; ///< in the manifest's order
    QString serverAddress;           ///< of use to the updater alone
    QString currentVersion;
    QString manualDownloadVersion;
    QString errorMessage;
    int errorLine = 0;
    int errorColumn = 0;
    QString fileName = QStringLiteral("update_info.xml");
    bool valid = false;
};

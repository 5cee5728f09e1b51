#include "updater/ReleaseManifest.h"

#include "config/SafeXml.h"
#include "update/InstallationPath.h"

#include <QRegularExpression>
#include <QSet>
#include <QSysInfo>
#include <QXmlStreamReader>

namespace
{

constexpr int kRootDepth = 1;
constexpr int kSectionDepth = 2;
constexpr int kFileDepth = 3;
constexpr int kSha256Bytes = 32;
constexpr int kAddressLengthMax = 200;

bool isVersion(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^[0-9]{1,5}(?:\\.[0-9]{1,5}){1,5}\\z"));
    return form.match(text).hasMatch();
}

/// The hash of its text, or an empty one.
QByteArray sha256Of(const QString &hex)
{
    static const QRegularExpression form(QStringLiteral("^[0-9a-f]{64}\\z"));
    return form.match(hex).hasMatch() ? QByteArray::fromHex(hex.toLatin1()) : QByteArray();
}

/// The bytes of a file, or -1.
qint64 sizeOf(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^[0-9]{1,12}\\z"));
    const qint64 size = form.match(text).hasMatch() ? text.toLongLong() : -1;
    return size <= kReleaseFileBytesMax ? size : -1;
}

bool isFlag(const QString &text)
{
    return text == QLatin1String("0") || text == QLatin1String("1");
}

/// Nothing, or the address of a folder on a web server.
bool isAddress(const QString &text)
{
    static const QRegularExpression form(
        QStringLiteral("^(?:https?://[A-Za-z0-9.:\\[\\]_-]+/(?:[A-Za-z0-9._~+-]+/)*)?\\z"));
    return text.size() <= kAddressLengthMax && form.match(text).hasMatch();
}

/// Nothing where a value has no field that could show that it is wrong; `isSound` sees to the others.
std::optional<ReleaseFile> fileOf(const QXmlStreamAttributes &attributes)
{
    const auto text = [&attributes](const char *name) {
        return attributes.value(QLatin1String(name)).toString();
    };
    if (!isFlag(text("Executable")))
        return std::nullopt;
    ReleaseFile file;
    file.path = text("FileDir") + text("FileName");
    file.version = text("FileVersion");
    file.size = sizeOf(text("Size"));
    file.sha256 = sha256Of(text("Sha256"));
    file.executable = text("Executable") == QLatin1String("1");
    file.archive = text("Archive");
    file.archiveSize = sizeOf(text("ArchiveSize"));
    file.archiveSha256 = sha256Of(text("ArchiveSha256"));
    return file;
}

bool isSound(const ReleaseFile &file)
{
    return mayBeInstalled(file.path) && isVersion(file.version) && file.size >= 0 &&
           file.sha256.size() == kSha256Bytes && isPlainRelativePath(file.archive) && file.archiveSize > 0 &&
           file.archiveSha256.size() == kSha256Bytes;
}

bool isSound(const ReleaseManifest &manifest)
{
    qint64 total = 0;
    QSet<QString> paths;
    for (const ReleaseFile &file : manifest.files) {
        const QString path = file.path.toLower();
        total += file.size + file.archiveSize;
        if (!isSound(file) || paths.contains(path) || total > kReleaseBytesMax)
            return false;
        paths.insert(path);
    }
    // A file can't lie in a place that is another file.
    for (const QString &path : qAsConst(paths)) {
        for (int slash = path.indexOf(QLatin1Char('/')); slash > 0;
             slash = path.indexOf(QLatin1Char('/'), slash + 1)) {
            if (paths.contains(path.left(slash)))
                return false;
        }
    }
    return isAddress(manifest.serverAddress) && !manifest.product.isEmpty() && !manifest.platform.isEmpty() &&
           isVersion(manifest.version) &&
           (manifest.manualDownloadVersion.isEmpty() || isVersion(manifest.manualDownloadVersion)) &&
           !manifest.files.isEmpty();
}

} // namespace

QString ownPlatform()
{
    const QString system =
        QSysInfo::productType() == QLatin1String("windows") || QSysInfo::kernelType() == QLatin1String("winnt")
            ? QStringLiteral("windows")
            : QSysInfo::kernelType();
    const QString processor = QSysInfo::buildCpuArchitecture();
    return system + QLatin1Char('-') + (processor == QLatin1String("i386") ? QStringLiteral("x86") : processor);
}

std::optional<ReleaseManifest> releaseManifestOf(const QByteArray &bytes)
{
    XmlError error;
    QString text;
    if (bytes.size() > kReleaseManifestBytesMax || !decodeXml(bytes, text, error))
        return std::nullopt;

    ReleaseManifest manifest;
    bool isManifest = false;
    bool inFiles = false;
    bool isTwice = false;
    bool isBad = false;
    QSet<QString> seen;
    const auto take = [&](int depth, const QXmlStreamReader &element) {
        const QString name = element.qualifiedName().toString();
        const QXmlStreamAttributes attributes = element.attributes();
        if (depth == kRootDepth) {
            isManifest = name == QLatin1String("Update");
            manifest.product = attributes.value(QLatin1String("Product")).toString();
            manifest.platform = attributes.value(QLatin1String("Platform")).toString();
        } else if (depth == kSectionDepth) {
            inFiles = name == QLatin1String("FileInfos");
            const bool isValue = name == QLatin1String("CurrentVersion") ||
                                 name == QLatin1String("ManualDownloadVersion") ||
                                 name == QLatin1String("ServerAdress"); // spelled so in the format
            if (isValue || inFiles) {
                isTwice |= seen.contains(name);
                seen.insert(name);
            }
            if (name == QLatin1String("CurrentVersion"))
                manifest.version = attributes.value(QLatin1String("Value")).toString();
            else if (name == QLatin1String("ManualDownloadVersion"))
                manifest.manualDownloadVersion = attributes.value(QLatin1String("Value")).toString();
            else if (name == QLatin1String("ServerAdress"))
                manifest.serverAddress = attributes.value(QLatin1String("Value")).toString();
        } else if (depth == kFileDepth && inFiles && name == QLatin1String("FileInfo")) {
            const std::optional<ReleaseFile> file = fileOf(attributes);
            isBad |= !file || manifest.files.size() >= kReleaseFilesMax;
            if (!isBad)
                manifest.files.append(*file);
        }
    };
    if (!walkXml(text, take, error) || !isManifest || isTwice || isBad || !isSound(manifest))
        return std::nullopt;
    return manifest;
}

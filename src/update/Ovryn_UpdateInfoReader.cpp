#include "update/Ovryn_UpdateInfoReader.h"

#include "config/SafeXml.h"

#include <QFile>
#include <QXmlStreamReader>

namespace
{

constexpr int kRootDepth = 1;
constexpr int kSectionDepth = 2; // children of the root
constexpr int kFileDepth = 3;

bool hasFewAttributes(const QString &text)
{
    int inAll = 0;
    int sinceBracket = 0;
    for (const QChar character : text) {
        if (character == QLatin1Char('<')) { // can't be in an attribute's value
            sinceBracket = 0;
        } else if (character == QLatin1Char('=')) {
            if (++sinceBracket > kManifestEqualsSignsMaxPerTag || ++inAll > kManifestEqualsSignsMax)
                return false;
        }
    }
    return true;
}

QString attribute(const QXmlStreamReader &element, const char *name)
{
    return element.attributes().value(QLatin1String(name)).toString();
}

} // namespace

bool Ovryn_UpdateInfoReader::read(QString path)
{
    clear();
    QFile file(path);
    valid = file.exists() && file.open(QIODevice::ReadOnly) && parse(file.read(kManifestBytesMax + 1));
    if (!valid)
        clear();
    return valid;
}

/// False for a text that is no XML, with the error, and for XML that is no manifest.
bool Ovryn_UpdateInfoReader::parse(const QByteArray &bytes)
{
    XmlError error;
    QString text;
    bool isManifest = false;
    if (bytes.size() > kManifestBytesMax)
        error.message = QStringLiteral("too large for a manifest");
    else if (decodeXml(bytes, text, error) && text.size() > kManifestCharactersMaxUnlessPlain &&
             !hasFewAttributes(text))
        error.message = QStringLiteral("too many attributes");
    else if (error.message.isEmpty())
        isManifest = takeFields(text, error);
    errorMessage = error.message;
    errorLine = error.line;
    errorColumn = error.column;
    return isManifest;
}

bool Ovryn_UpdateInfoReader::takeFields(const QString &text, XmlError &error)
{
    bool isManifest = false;
    bool inFileInfos = false;
    const auto take = [&](int depth, const QXmlStreamReader &element) {
        const QStringRef name = element.qualifiedName();
        if (depth == kRootDepth)
            isManifest = name == QLatin1String("Update");
        if (depth == kSectionDepth) {
            inFileInfos = name == QLatin1String("FileInfos");
            if (name == QLatin1String("ServerAdress")) // spelled so in the format
                serverAddress = attribute(element, "Value");
            else if (name == QLatin1String("CurrentVersion"))
                currentVersion = attribute(element, "Value");
            else if (name == QLatin1String("ManualDownloadVersion"))
                manualDownloadVersion = attribute(element, "Value");
        } else if (depth == kFileDepth && inFileInfos && name == QLatin1String("FileInfo")) {
            fileInfos.append(
                {attribute(element, "FileName"), attribute(element, "FileDir"), attribute(element, "FileVersion")});
        }
    };
    return walkXml(text, take, error) && isManifest;
}

void Ovryn_UpdateInfoReader::clear()
{
    fileInfos.clear();
    serverAddress.clear();
    currentVersion.clear();
    manualDownloadVersion.clear();
}

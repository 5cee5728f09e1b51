#include "update/Ovryn_UpdateInfoReader.h"

#include "config/SafeXml.h"

#include <QFile>
#include <QXmlStreamReader>

namespace
{

bool isUtf8(const QByteArray &text)
{
    if (text.contains('\0')) // as every text in UTF-16 or UTF-32
        return false;
    QXmlStreamReader start(text.left(kManifestBytesMaxUnlessPlain));
    start.readNext(); // the XML declaration, also where there is none
    const QStringRef encoding = start.documentEncoding();
    return !start.hasError() &&
           (encoding.isEmpty() || encoding.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) == 0);
}

bool hasFewAttributes(const QByteArray &text)
{
    int inAll = 0;
    int sinceBracket = 0;
    for (const char byte : text) {
        if (byte == '<') { // stands in no attribute's value
            sinceBracket = 0;
        } else if (byte == '=') {
            if (++sinceBracket > kManifestEqualsSignsMaxPerTag || ++inAll > kManifestEqualsSignsMax)
                return false;
        }
    }
    return true;
}

XmlError boundOvershot(const QByteArray &text)
{
    if (text.size() > kManifestBytesMax)
        return {QStringLiteral("too large for a manifest"), 0, 0};
    if (text.size() > kManifestBytesMaxUnlessPlain && !isUtf8(text))
        return {QStringLiteral("too large for a text that is not in UTF-8"), 0, 0};
    if (text.size() > kManifestBytesMaxUnlessPlain && !hasFewAttributes(text))
        return {QStringLiteral("too many attributes"), 0, 0};
    return {};
}

} // namespace

bool Ovryn_UpdateInfoReader::read(QString path)
{
    valid = false;
    fileInfos.clear();
    serverAddress.clear();
    currentVersion.clear();
    manualDownloadVersion.clear();
    document = QDomDocument();

    QFile file(path);
    if (!file.exists() || !file.open(QIODevice::ReadOnly) || !parse(file.read(kManifestBytesMax + 1)))
        return false;
    const QDomElement root = document.documentElement();
    if (root.tagName() != QLatin1String("Update"))
        return false;

    const QString value = QStringLiteral("Value");
    for (QDomElement child = root.firstChildElement(); !child.isNull(); child = child.nextSiblingElement()) {
        const QString name = child.tagName();
        if (name == QLatin1String("ServerAdress")) // spelled so in the format
            serverAddress = child.attribute(value);
        else if (name == QLatin1String("FileInfos"))
            readFileInfos(child);
        else if (name == QLatin1String("CurrentVersion"))
            currentVersion = child.attribute(value);
        else if (name == QLatin1String("ManualDownloadVersion"))
            manualDownloadVersion = child.attribute(value);
    }
    valid = true;
    return true;
}

bool Ovryn_UpdateInfoReader::parse(const QByteArray &text)
{
    XmlError error = boundOvershot(text);
    const bool parsed = error.message.isEmpty() && parseXml(text, document, error);
    errorMessage = error.message;
    errorLine = error.line;
    errorColumn = error.column;
    return parsed;
}

void Ovryn_UpdateInfoReader::readFileInfos(const QDomElement &list)
{
    const QString name = QStringLiteral("FileInfo");
    for (QDomElement child = list.firstChildElement(name); !child.isNull(); child = child.nextSiblingElement(name)) {
        fileInfos.append({child.attribute(QStringLiteral("FileName")), child.attribute(QStringLiteral("FileDir")),
                          child.attribute(QStringLiteral("FileVersion"))});
    }
}

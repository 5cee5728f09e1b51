#include "config/SafeXml.h"

#include <QDomDocument>
#include <QXmlStreamReader>

namespace
{

bool declaresEntities(QByteArray text)
{
    text.replace('\0', QByteArray()); // so that UTF-16 and UTF-32 show their ASCII characters, too
    return text.contains("<!ENTITY");
}

/// Reads until the text's end, its first error, or one level or one element too many.
bool isModest(const QByteArray &text, XmlError &error)
{
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    int depth = 0;
    int elements = 0;
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType token = reader.readNext();
        if (token == QXmlStreamReader::EndElement)
            --depth;
        if (token != QXmlStreamReader::StartElement)
            continue;
        const bool tooDeep = ++depth > kXmlDepthMax;
        if (tooDeep || ++elements > kXmlElementsMax) {
            error = {tooDeep ? QStringLiteral("nested too deeply") : QStringLiteral("too many elements"),
                     qint32(reader.lineNumber()), qint32(reader.columnNumber())};
            return false;
        }
    }
    return true; // what is not well-formed is found again, and told, when the document is built
}

} // namespace

bool parseXml(const QByteArray &text, QDomDocument &document, XmlError &error)
{
    document.clear();
    if (text.size() > kXmlBytesMaxWithEntities && declaresEntities(text)) {
        error = {QStringLiteral("too large for a text that declares entities"), 0, 0};
        return false;
    }
    if (!isModest(text, error))
        return false;
    // The same reader builds the document: another one could see a different nesting in the same text.
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    return document.setContent(&reader, false, &error.message, &error.line, &error.column);
}

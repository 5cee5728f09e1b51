#include "config/SafeXml.h"

#include <QDomDocument>
#include <QTextCodec>
#include <QXmlStreamReader>

namespace
{

constexpr int kDeclarationBytesMax = 1024; // the XML declaration, if any, lies in these first bytes

const QTextCodec *codecOf(const QByteArray &bytes)
{
    const QTextCodec *codec = QTextCodec::codecForUtfText(bytes, nullptr);
    if (codec)
        return codec;
    QXmlStreamReader start(bytes.left(kDeclarationBytesMax));
    start.readNext(); // reads the XML declaration; does no harm where there is none
    codec = QTextCodec::codecForName(start.documentEncoding().toLatin1());
    return codec ? codec : QTextCodec::codecForName("UTF-8"); // the parser refuses an unknown encoding
}

/// The position after the next `end`, or the text's end.
int positionAfter(const QString &text, int from, QLatin1String end)
{
    const int at = text.indexOf(end, from);
    return at < 0 ? text.size() : at + end.size();
}

bool beginsAt(const QString &text, int at, QLatin1String wanted)
{
    return QStringView(text).mid(at, wanted.size()) == wanted;
}

/// The position after the comment or processing instruction at `at`; `at` itself where there is none.
int afterRemark(const QString &text, int at)
{
    if (beginsAt(text, at, QLatin1String("<!--")))
        return positionAfter(text, at + 4, QLatin1String("-->"));
    if (beginsAt(text, at, QLatin1String("<?")))
        return positionAfter(text, at + 2, QLatin1String("?>"));
    return at;
}

/// True where the document type declares entities. The words may also occur in comments and character data, where
/// they declare nothing.
bool declaresEntities(const QString &text)
{
    int at = 0;
    while ((at = text.indexOf(QLatin1Char('<'), at)) >= 0) {
        const int next = afterRemark(text, at);
        if (next == at)
            break;
        at = next;
    }
    if (at < 0 || !beginsAt(text, at, QLatin1String("<!DOCTYPE")))
        return false;

    bool inSubset = false; // between the square brackets, where entities are declared
    while (++at < text.size()) {
        const int next = afterRemark(text, at);
        const QChar character = text.at(at);
        if (next > at)
            at = next - 1;
        else if (beginsAt(text, at, QLatin1String("<!ENTITY")))
            return true;
        else if (character == QLatin1Char('"') || character == QLatin1Char('\''))
            at = positionAfter(text, at + 1, QLatin1String(character == QLatin1Char('"') ? "\"" : "'")) - 1;
        else if (character == QLatin1Char('['))
            inSubset = true;
        else if (character == QLatin1Char(']'))
            inSubset = false;
        else if (character == QLatin1Char('>') && !inSubset)
            return false;
    }
    return false;
}

XmlError errorAt(const QXmlStreamReader &reader, const QString &message)
{
    return {message, qint32(reader.lineNumber()), qint32(reader.columnNumber())};
}

} // namespace

bool decodeXml(const QByteArray &bytes, QString &text, XmlError &error)
{
    QTextCodec::ConverterState state;
    text = codecOf(bytes)->toUnicode(bytes.constData(), bytes.size(), &state);
    if (state.invalidChars == 0 && state.remainingChars == 0)
        return true;
    error = {QStringLiteral("not in its encoding"), 0, 0};
    return false;
}

bool walkXml(const QString &text, const XmlVisitor &visit, XmlError &error)
{
    if (text.size() > kXmlCharactersMaxWithEntities && declaresEntities(text)) {
        error = {QStringLiteral("too large for a text that declares entities"), 0, 0};
        return false;
    }
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
            error =
                errorAt(reader, tooDeep ? QStringLiteral("nested too deeply") : QStringLiteral("too many elements"));
            return false;
        }
        visit(depth, reader);
    }
    if (reader.hasError())
        error = errorAt(reader, reader.errorString());
    return !reader.hasError();
}

bool parseXml(const QByteArray &bytes, QDomDocument &document, XmlError &error)
{
    document.clear();
    QString text;
    if (!decodeXml(bytes, text, error) || !walkXml(
                                              text, [](int, const QXmlStreamReader &) {}, error))
        return false;
    // The same reader builds the document: another one could see a different nesting in the same text.
    QXmlStreamReader reader(text);
    reader.setNamespaceProcessing(false);
    return document.setContent(&reader, false, &error.message, &error.line, &error.column);
}

#pragma once

#include <QByteArray>
#include <QString>

#include <functional>

class QDomDocument;
class QXmlStreamReader;

/// Why and where a text was refused.
struct XmlError
{
    QString message;
    qint32 line = 0;
    qint32 column = 0;
};

/// Nesting up to which a text is accepted. The DOM library frees and writes its tree by recursion, so that a text
/// of some ten thousand levels would run it out of stack.
constexpr int kXmlDepthMax = 200;

/// Characters up to which a text may declare entities of its own. The XML library bounds what one reference expands
/// to, not how many there are.
constexpr int kXmlCharactersMaxWithEntities = 16 * 1024;

/// Elements up to which a text is accepted. The DOM library takes some 3 KB for each with its attributes, and a
/// settings file of this size would hold fifty thousand cards. A larger text is a damaged file, and its document
/// would use up the machine's memory.
constexpr int kXmlElementsMax = 250000;

/// The characters of a text in any encoding: that of its byte order mark, else the one that its XML declaration
/// names, else UTF-8. False where bytes are found that don't belong to that encoding.
[[nodiscard]] bool decodeXml(const QByteArray &bytes, QString &text, XmlError &error);

/// Called at the start of an element. The root's depth is 1; the reader gives its name and attributes.
using XmlVisitor = std::function<void(int depth, const QXmlStreamReader &reader)>;

/// Walks through the whole text, element by element, and keeps none of it. False where the text is not well-formed,
/// is nested deeper than `kXmlDepthMax` levels, has more than `kXmlElementsMax` elements, or declares entities and
/// has more than `kXmlCharactersMaxWithEntities` characters; some elements were visited then and the error says why.
[[nodiscard]] bool walkXml(const QString &text, const XmlVisitor &visit, XmlError &error);

/// Parses the text, in any encoding, into the document, whose old content goes. False where the text can't be decoded
/// or walked through; the document then is empty and the error says why.
[[nodiscard]] bool parseXml(const QByteArray &bytes, QDomDocument &document, XmlError &error);

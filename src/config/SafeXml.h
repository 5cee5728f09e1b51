#pragma once

#include <QByteArray>
#include <QString>

class QDomDocument;

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

/// Size up to which a text may declare entities of its own. The DOM library bounds what one reference expands to,
/// not how many there are.
constexpr int kXmlBytesMaxWithEntities = 16 * 1024;

/// Elements up to which a text is accepted. The DOM library takes some 3 KB for each with its attributes, and a
/// settings file of this size would hold fifty thousand cards: a text beyond it is no settings file but damage, and
/// building its document would run the machine out of memory.
constexpr int kXmlElementsMax = 250000;

/// Parses the text into the document, whose old content goes. False where the text is not well-formed, is nested
/// deeper than `kXmlDepthMax` levels, has more than `kXmlElementsMax` elements, or declares entities and is larger
/// than `kXmlBytesMaxWithEntities`; the document then holds an arbitrary part of it and the error says why.
[[nodiscard]] bool parseXml(const QByteArray &text, QDomDocument &document, XmlError &error);

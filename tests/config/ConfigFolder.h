#pragma once

#include <QByteArray>
#include <QDomDocument>
#include <QDomElement>
#include <QFile>
#include <QStringList>
#include <QTemporaryDir>

/// A temporary folder with a config.xml that the test writes and looks into.
class ConfigFolder
{
public:
    [[nodiscard]] QString path() const { return folder.filePath(QStringLiteral("config.xml")); }
    [[nodiscard]] bool exists() const { return QFile::exists(path()); }

    void write(const QByteArray &text) const
    {
        QFile file(path());
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
            qFatal("cannot write %s", qPrintable(path()));
    }

    [[nodiscard]] QByteArray text() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    /// The root element of what the file holds; null where it is no XML.
    [[nodiscard]] QDomElement root() const
    {
        QDomDocument document;
        const bool read = document.setContent(text());
        parsed.append(document);
        return read ? document.documentElement() : QDomElement();
    }

    [[nodiscard]] QDomElement section(const char *name) const
    {
        return root().firstChildElement(QLatin1String(name));
    }

    /// The cards in the file, in its order.
    [[nodiscard]] QList<QDomElement> gpus() const
    {
        QList<QDomElement> found;
        for (QDomElement gpu = section("GpuSettings").firstChildElement(); !gpu.isNull();
             gpu = gpu.nextSiblingElement())
            found.append(gpu);
        return found;
    }

private:
    QTemporaryDir folder;
    mutable QList<QDomDocument> parsed; ///< elements live no longer than their document
};

/// The names of all children in order, comments and texts included (as #comment and #text).
inline QStringList childNames(const QDomElement &element)
{
    QStringList names;
    for (QDomNode child = element.firstChild(); !child.isNull(); child = child.nextSibling())
        names.append(child.nodeName());
    return names;
}

/// The root element around the given sections.
inline QByteArray document(const QByteArray &sections)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<OvrynParameter>" + sections + "</OvrynParameter>\n";
}

/// A document with nothing but the given children of `GpuSettings`.
inline QByteArray cards(const QByteArray &children)
{
    return document("<GpuSettings>" + children + "</GpuSettings>");
}

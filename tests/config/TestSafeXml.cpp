#include "config/SafeXml.h"

#include <QDomDocument>
#include <QTextCodec>
#include <QtTest>

namespace
{

QByteArray nested(int depth)
{
    return QByteArray("<a>").repeated(depth) + QByteArray("</a>").repeated(depth);
}

/// Ten entities, each ten times the one before.
QByteArray bomb(const QByteArray &body)
{
    QByteArray text = "<!DOCTYPE a [<!ENTITY e0 \"lol\">";
    for (int level = 1; level < 10; ++level) {
        const QByteArray below = "&e" + QByteArray::number(level - 1) + ";";
        text += "<!ENTITY e" + QByteArray::number(level) + " \"" + below.repeated(10) + "\">";
    }
    return text + "]>" + body;
}

/// One entity of a thousand characters, referenced as often as wanted.
QByteArray flatBomb(int references)
{
    return "<!DOCTYPE a [<!ENTITY e \"" + QByteArray(1000, 'x') + "\">]><a>" +
           QByteArray("&e;").repeated(references) + "</a>";
}

QByteArray parameterBomb(int references)
{
    return "<!DOCTYPE a [<!ENTITY % p \"" + QByteArray(4000, ' ') + "\">" + QByteArray("%p;").repeated(references) +
           "]><a/>";
}

QByteArray inEncoding(const char *name, const QString &text)
{
    return QTextCodec::codecForName(name)->fromUnicode(text);
}

QByteArray utf16(const QByteArray &text)
{
    return inEncoding("UTF-16", QString::fromLatin1(text));
}

constexpr int kMany = 2000000;

} // namespace

class TestSafeXml : public QObject
{
    Q_OBJECT

private slots:
    void parses_data();
    void parses();
    void keepsPrefixes();
    void expandsItsOwnEntities();
    void replacesTheDocument();
    void reportsWhereItStopped();
};

void TestSafeXml::parses_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("one element") << QByteArray("<a/>") << true;
    QTest::newRow("prefixes without a name space") << QByteArray("<x:a y:b='1'/>") << true;
    QTest::newRow("UTF-16") << utf16("<a/>") << true;
    QTest::newRow("declared encoding") << QByteArray("<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE4'/>")
                                       << true;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("no XML") << QByteArray("StartOnBoot=1") << false;
    QTest::newRow("zeros") << QByteArray(100, '\0') << false;
    QTest::newRow("not closed") << QByteArray("<a>") << false;
    QTest::newRow("two roots") << QByteArray("<a/><a/>") << false;
    QTest::newRow("attribute twice") << QByteArray("<a b='1' b='2'/>") << false;
    QTest::newRow("broken UTF-8") << QByteArray("<a b='\xFF'/>") << false;
    QTest::newRow("entity that nobody declared") << QByteArray("<a>&b;</a>") << false;
    QTest::newRow("as deep as allowed") << nested(kXmlDepthMax) << true;
    QTest::newRow("one level deeper") << nested(kXmlDepthMax + 1) << false;
    QTest::newRow("deep enough to exhaust the stack") << nested(kMany) << false;
    QTest::newRow("deep and never closed") << QByteArray("<a>").repeated(kMany) << false;
    QTest::newRow("wide is no depth") << QByteArray("<a>" + QByteArray("<b/>").repeated(1000) + "</a>") << true;
    QTest::newRow("as many elements as allowed")
        << QByteArray("<a>" + QByteArray("<b/>").repeated(kXmlElementsMax - 1) + "</a>") << true;
    QTest::newRow("one element more") << QByteArray("<a>" + QByteArray("<b/>").repeated(kXmlElementsMax) + "</a>")
                                      << false;
    QTest::newRow("exponential entities") << bomb("<a>&e9;</a>") << false;
    QTest::newRow("exponential entities in an attribute") << bomb("<a b='&e9;'/>") << false;
    QTest::newRow("entity of itself") << QByteArray("<!DOCTYPE a [<!ENTITY e '&f;'><!ENTITY f '&e;'>]><a>&e;</a>")
                                      << false;
    QTest::newRow("few references to a long entity") << flatBomb(10) << true;
    QTest::newRow("many references to a long entity") << flatBomb(kMany) << false;
    QTest::newRow("many references in UTF-16") << utf16(flatBomb(kMany)) << false;
    QTest::newRow("many parameter entities") << parameterBomb(kMany) << false;
    QTest::newRow("large without entities of its own")
        << "<a>" + QByteArray("&amp;").repeated(100000) + "</a>" << true;

    const QByteArray words = "<!ENTITY e 'x'>"; // no declaration at the places below
    const QByteArray filler(20000, ' ');
    QTest::newRow("large, the words in a comment") << "<a><!-- " + words + " -->" + filler + "</a>" << true;
    QTest::newRow("large, the words in a comment before the root")
        << "<?xml version='1.0'?><!-- " + words + " --><a>" + filler + "</a>" << true;
    QTest::newRow("large, the words in a comment after the root")
        << "<a>" + filler + "</a><!-- " + words + " -->" << true;
    QTest::newRow("large, the words in an instruction") << "<?x " + words + "?><a>" + filler + "</a>" << true;
    QTest::newRow("large, the words as character data")
        << "<a><![CDATA[<!DOCTYPE a [" + words + "]>]]>" + filler + "</a>" << true;
    QTest::newRow("large, the words in a comment after a bare document type")
        << "<!DOCTYPE a><!-- " + words + " --><a>" + filler + "</a>" << true;
    QTest::newRow("large, the words in a comment of the document type")
        << "<!DOCTYPE a [<!-- ]> " + words + " --><?x " + words + "?><!ELEMENT a ANY>]><a>" + filler + "</a>" << true;

    QTest::newRow("large, entity declared") << "<!DOCTYPE a [" + words + "]><a>" + filler + "</a>" << false;
    QTest::newRow("large, entity declared late")
        << "<?xml version='1.0'?>\n<!-- c -->\n<!DOCTYPE a [<!ELEMENT a ANY> <!-- c -->" + filler + words +
               "]><a></a>"
        << false;
    QTest::newRow("large, entity after a comment with a quote")
        << "<!DOCTYPE a [<!-- it's --><?x it's ?>" + words + "]><a>" + filler + "</a>" << false;
    QTest::newRow("large, entity after a value that looks like the end")
        << "<!DOCTYPE a [<!ATTLIST a b CDATA \"'-->]>\" c CDATA ']>'>" + words + "]><a>" + filler + "</a>" << false;
    QTest::newRow("large, entity after a name that looks like the end")
        << "<!DOCTYPE a SYSTEM \"]>'\" [" + words + "]><a>" + filler + "</a>" << false;

    QTest::newRow("large, in GB 18030")
        << inEncoding("GB18030", QStringLiteral("<?xml version='1.0' encoding='GB18030'?><a b='核心频率'>") +
                                     QString(30000, QChar(0x9891)) + QStringLiteral("</a>"))
        << true;
    QTest::newRow("entities disguised by their encoding")
        << QByteArray("<?xml version='1.0' encoding='UTF-7'?>+ADwAIQ-DOCTYPE a [+ADwAIQ-ENTITY e 'x'+AD4]>"
                      "<a>" +
                      filler + "</a>")
        << false;
    QTest::newRow("encoding that nobody knows") << QByteArray("<?xml version='1.0' encoding='nobody'?><a/>") << false;
    QTest::newRow("byte order mark of UTF-8") << QByteArray("\xEF\xBB\xBF<a/>") << true;
    QTest::newRow("UTF-16 that calls itself UTF-8")
        << utf16("<?xml version='1.0' encoding='UTF-8'?><a/>") << true; // some editors leave the declaration
}

void TestSafeXml::parses()
{
    QFETCH(QByteArray, text);
    QFETCH(bool, accepted);
    QDomDocument document;
    XmlError error;
    QCOMPARE(parseXml(text, document, error), accepted);
    QCOMPARE(error.message.isEmpty(), accepted);
}

void TestSafeXml::keepsPrefixes()
{
    QDomDocument document;
    XmlError error;
    QVERIFY(parseXml("<x:a y:b='1'/>", document, error));
    QCOMPARE(document.documentElement().tagName(), QString("x:a"));
    QCOMPARE(document.documentElement().attribute("y:b"), QString("1"));
}

void TestSafeXml::expandsItsOwnEntities()
{
    QDomDocument document;
    XmlError error;
    QVERIFY(parseXml("<!DOCTYPE a [<!ENTITY e 'text'>]><a b='&e;'>&e;</a>", document, error));
    QCOMPARE(document.documentElement().attribute("b"), QString("text"));
    QCOMPARE(document.documentElement().text(), QString("text"));
}

void TestSafeXml::replacesTheDocument()
{
    QDomDocument document;
    XmlError error;
    QVERIFY(parseXml("<old/>", document, error));
    QVERIFY(parseXml("<new/>", document, error));
    QCOMPARE(document.documentElement().tagName(), QString("new"));
}

void TestSafeXml::reportsWhereItStopped()
{
    QDomDocument document;
    XmlError error;
    QVERIFY(!parseXml("<a>\n  <b>\n</a>", document, error));
    QCOMPARE(error.line, 3);
    QVERIFY(error.column > 0);
}

QTEST_APPLESS_MAIN(TestSafeXml)
#include "TestSafeXml.moc"

#include "support/MinisignKey.h"
#include "updater/DetachedSignature.h"

#include <QTest>

/// What is accepted as signed. The signatures are the tool's, and the tool is asked about each of them too.
class TestDetachedSignature : public QObject
{
    Q_OBJECT

private slots:
    void keys_data();
    void keys();
    void signedFiles_data();
    void signedFiles();
    void otherBytes_data();
    void otherBytes();
    void anotherKey();
    void signatureOfAnotherFile();
    void numberOfOneKeyAndSignatureOfAnother();
    void formerFormat();
    void damagedFiles_data();
    void damagedFiles();
    void everyChangedCharacter();
    void everyLengthCutOff();
    void harmlessForms_data();
    void harmlessForms();

private:
    [[nodiscard]] bool isAccepted(const QByteArray &bytes, const QByteArray &signatureFile) const
    {
        const std::optional<ReleaseKey> key = releaseKeyOf(own.publicText());
        return key && isSignedBy(*key, bytes, signatureFile);
    }

    const MinisignKey own;
    const QByteArray text = "what a release consists of\n";
    const QByteArray signature = own.sign(text, {"-t", "OvrynDeck2 1.0.2.5"});
};

namespace
{

constexpr int kLines = 4; ///< of a signature file: comment, signature, signed comment, its signature

QByteArrayList linesOf(const QByteArray &signatureFile)
{
    QByteArrayList lines = signatureFile.split('\n');
    lines.removeLast(); // after the last line's end
    if (lines.size() != kLines)
        qFatal("no signature file: %s", signatureFile.constData());
    return lines;
}

QByteArray fileOf(const QByteArrayList &lines)
{
    return lines.join('\n') + '\n';
}

} // namespace

void TestDetachedSignature::keys_data()
{
    const QByteArray good = own.publicText();
    const QByteArray raw = QByteArray::fromBase64(good);
    QTest::addColumn<QByteArray>("base64");
    QTest::addColumn<bool>("isKey");
    QTest::newRow("the tool's") << good << true;
    QTest::newRow("empty") << QByteArray() << false;
    QTest::newRow("one byte less") << raw.left(41).toBase64() << false;
    QTest::newRow("one byte more") << QByteArray(raw + 'x').toBase64() << false;
    QTest::newRow("another algorithm") << QByteArray("ED" + raw.mid(2)).toBase64() << false;
    QTest::newRow("no algorithm") << QByteArray(QByteArray(2, '\0') + raw.mid(2)).toBase64() << false;
    QTest::newRow("no base64 inside") << good.left(20) + '!' + good.mid(21) << false;
    QTest::newRow("a whole key file") << QByteArray("untrusted comment: a\n" + good + '\n') << false;
    QTest::newRow("text") << QByteArray("a key") << false;
    QTest::newRow("a megabyte") << QByteArray(1024 * 1024, 'A') << false;
}

void TestDetachedSignature::keys()
{
    QFETCH(QByteArray, base64);
    QTEST(releaseKeyOf(base64).has_value(), "isKey");
}

void TestDetachedSignature::signedFiles_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("a text") << text << QStringList();
    QTest::newRow("nothing") << QByteArray() << QStringList();
    QTest::newRow("every byte") << [] {
        QByteArray bytes;
        for (int i = 0; i < 256; ++i)
            bytes.append(char(i));
        return bytes;
    }() << QStringList();
    QTest::newRow("two megabytes") << QByteArray(2 * 1024 * 1024, 'x') << QStringList();
    QTest::newRow("signed comment") << text << QStringList{"-t", "OvrynDeck2 1.0.2.5"};
    QTest::newRow("Chinese comments") << text << QStringList{"-t", "版本", "-c", "签名"};
    QTest::newRow("long comment") << text << QStringList{"-t", QString(1000, 'x')};
}

void TestDetachedSignature::signedFiles()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QStringList, arguments);
    QVERIFY(isAccepted(bytes, own.sign(bytes, arguments)));
}

void TestDetachedSignature::otherBytes_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("nothing") << QByteArray();
    QTest::newRow("one less") << text.left(text.size() - 1);
    QTest::newRow("one more") << text + 'x';
    QTest::newRow("twice") << text + text;
    QTest::newRow("line end of another system") << QByteArray(text).replace("\n", "\r\n");
    QByteArray changed = text;
    changed[0] = char(changed.at(0) ^ 1);
    QTest::newRow("first bit") << changed;
    changed = text;
    changed[changed.size() - 1] = char(changed.at(changed.size() - 1) ^ 0x80);
    QTest::newRow("last bit") << changed;
}

void TestDetachedSignature::otherBytes()
{
    QFETCH(QByteArray, bytes);
    QVERIFY(!own.accepts(bytes, signature));
    QVERIFY(!isAccepted(bytes, signature));
}

void TestDetachedSignature::anotherKey()
{
    const MinisignKey other;
    QVERIFY(!isAccepted(text, other.sign(text)));
    QVERIFY(other.accepts(text, other.sign(text)));
}

void TestDetachedSignature::signatureOfAnotherFile()
{
    const QByteArray another = own.sign("what another release consists of\n");
    QVERIFY(!own.accepts(text, another));
    QVERIFY(!isAccepted(text, another));
}

/// The number is no secret, so it alone proves nothing; and a signature under another number is another key's.
void TestDetachedSignature::numberOfOneKeyAndSignatureOfAnother()
{
    const MinisignKey other;
    const auto withNumberOf = [](const QByteArray &signatureFile, const MinisignKey &key) {
        QByteArrayList lines = linesOf(signatureFile);
        QByteArray raw = QByteArray::fromBase64(lines.at(1));
        raw.replace(2, 8, QByteArray::fromBase64(key.publicText()).mid(2, 8));
        lines[1] = raw.toBase64();
        return fileOf(lines);
    };
    QVERIFY(isAccepted(text, withNumberOf(signature, own)));
    QVERIFY(!isAccepted(text, withNumberOf(signature, other)));
    QVERIFY(!isAccepted(text, withNumberOf(other.sign(text), own)));
}

void TestDetachedSignature::formerFormat()
{
    const QByteArray former = own.sign(text, {"-l"});
    QVERIFY(former != signature);
    QVERIFY(!isAccepted(text, former));
    // neither is it one that only says that it is of the hash
    QByteArrayList lines = linesOf(former);
    QByteArray raw = QByteArray::fromBase64(lines.at(1));
    raw.replace(0, 2, "ED");
    lines[1] = raw.toBase64();
    QVERIFY(!own.accepts(text, fileOf(lines)));
    QVERIFY(!isAccepted(text, fileOf(lines)));
}

void TestDetachedSignature::damagedFiles_data()
{
    const QByteArrayList lines = linesOf(signature);
    const QByteArrayList others = linesOf(own.sign("another file\n", {"-t", "OvrynDeck2 9"}));
    const auto with = [&lines](int line, const QByteArray &content) {
        QByteArrayList changed = lines;
        changed[line] = content;
        return fileOf(changed);
    };
    const QByteArray raw = QByteArray::fromBase64(lines.at(1));
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("empty") << QByteArray();
    QTest::newRow("line ends alone") << QByteArray("\n\n\n\n");
    QTest::newRow("no signature") << with(1, {});
    QTest::newRow("signature too short") << with(1, raw.left(73).toBase64());
    QTest::newRow("signature too long") << with(1, QByteArray(raw + 'x').toBase64());
    QTest::newRow("another algorithm") << with(1, QByteArray("XX" + raw.mid(2)).toBase64());
    QTest::newRow("signature of zeros") << with(1, QByteArray(raw.left(10) + QByteArray(64, '\0')).toBase64());
    QTest::newRow("signature of ones") << with(1, QByteArray(raw.left(10) + QByteArray(64, '\xFF')).toBase64());
    QTest::newRow("changed signed comment") << with(2, "trusted comment: OvrynDeck2 9");
    QTest::newRow("signed comment of another file") << with(2, others.at(2));
    QTest::newRow("signed comment and its signature of another file")
        << fileOf({lines.at(0), lines.at(1), others.at(2), others.at(3)});
    QTest::newRow("no signed comment") << with(2, {});
    QTest::newRow("signed comment without its mark") << with(2, lines.at(2).mid(int(strlen("trusted comment: "))));
    QTest::newRow("no signature of the comment") << with(3, {});
    QTest::newRow("signature of the comment too short")
        << with(3, QByteArray::fromBase64(lines.at(3)).left(63).toBase64());
    QTest::newRow("signature of the comment of zeros") << with(3, QByteArray(64, '\0').toBase64());
    QTest::newRow("lines in another order") << fileOf({lines.at(2), lines.at(3), lines.at(0), lines.at(1)});
    QTest::newRow("without the first line") << fileOf(lines.mid(1));
    QTest::newRow("without the last line") << fileOf(lines.mid(0, 3));
    QTest::newRow("a line more in front") << '\n' + signature;
    QTest::newRow("public key in its place") << QByteArray("untrusted comment: key\n" + own.publicText() + '\n');
    QTest::newRow("huge comment") << with(0, "untrusted comment: " + QByteArray(kSignatureBytesMax, 'x'));
    QTest::newRow("a hundred megabytes") << QByteArray(100 * 1024 * 1024, 'A');
    QTest::newRow("line ends, a hundred megabytes") << QByteArray(100 * 1024 * 1024, '\n');
    QTest::newRow("zero bytes") << QByteArray(300, '\0');
}

void TestDetachedSignature::damagedFiles()
{
    QFETCH(QByteArray, file);
    QVERIFY(!isAccepted(text, file));
}

/// Whatever the tool takes no more, the updater doesn't take either. (The first line is no part of the signature.)
void TestDetachedSignature::everyChangedCharacter()
{
    const int signedFrom = signature.indexOf('\n') + 1;
    int refused = 0;
    for (int i = signedFrom; i < signature.size(); ++i) {
        QByteArray changed = signature;
        changed[i] = changed.at(i) == 'A' ? 'B' : 'A';
        const bool toolAccepts = own.accepts(text, changed);
        if (!toolAccepts)
            ++refused;
        QVERIFY2(toolAccepts || !isAccepted(text, changed), qPrintable(QStringLiteral("character %1").arg(i)));
    }
    QVERIFY(refused > 200);
}

void TestDetachedSignature::everyLengthCutOff()
{
    for (int length = 0; length < signature.size() - 1; ++length)
        QVERIFY2(!isAccepted(text, signature.left(length)), qPrintable(QString::number(length)));
}

/// Forms that the tool accepts: refusing them too would be safe, so what counts is that nothing else is accepted by
/// their way.
void TestDetachedSignature::harmlessForms_data()
{
    const QByteArrayList lines = linesOf(signature);
    QTest::addColumn<QByteArray>("file");
    QTest::newRow("no line end at the end") << signature.left(signature.size() - 1);
    QTest::newRow("line ends of another system") << QByteArray(signature).replace("\n", "\r\n");
    QTest::newRow("another comment") << fileOf({"untrusted comment: x", lines.at(1), lines.at(2), lines.at(3)});
    QTest::newRow("lines more at the end") << signature + "more\n\n";
}

void TestDetachedSignature::harmlessForms()
{
    QFETCH(QByteArray, file);
    QVERIFY(own.accepts(text, file) || !isAccepted(text, file));
    QVERIFY(!isAccepted(text + 'x', file));
    QByteArray otherComment = file;
    otherComment.replace("OvrynDeck2 1.0.2.5", "OvrynDeck2 1.0.2.6");
    QVERIFY(otherComment != file);
    QVERIFY(!isAccepted(text, otherComment));
}

QTEST_GUILESS_MAIN(TestDetachedSignature)
#include "TestDetachedSignature.moc"

#include "updater/DetachedSignature.h"

#include <QtGlobal>

/// \file
/// Any bytes as a signature file and as the text of a key. The one signature that is right is known here, so that
/// accepting another one is found, too.

namespace
{

void require(bool condition, const char *what)
{
    if (!condition)
        qFatal("%s", what);
}

// Made with the tool for this purpose alone: nothing real is signed with this key.
const QByteArray kKey = QByteArrayLiteral("RWT04IgKnvFx43wUOpYtvG0UCtBE14Ozl34Y66MsdXSDAbzhfIoyXpbG");
const QByteArray kSigned = QByteArrayLiteral("fuzzed\n");
const QByteArray kSignature = QByteArrayLiteral(
    "RUT04IgKnvFx49W5jUHIMVgmwclGp0zcPHH4QM18tqbPOhaRK0l90tsp2LO47O3O5CKaLbZbt3aJ9b5/XeVynUJ5CqWzax/53gE=");
const QByteArray kComment = QByteArrayLiteral("trusted comment: OvrynDeck2 1.0.2.5");
const QByteArray kCommentSignature =
    QByteArrayLiteral("mh+McYL6zDYyHB9DOv0HJHsCznL2BLKCcgHRm10NOym/Nc3Z7tEhlBFdTVX8BhApQ0aYNC0cqaw99IZNMWKUCw==");

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const quint8 *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), int(size));
    const std::optional<ReleaseKey> known = releaseKeyOf(kKey);
    require(known.has_value(), "the key is one");
    if (isSignedBy(*known, kSigned, bytes)) {
        // below its first line, which nobody signs, there is one text only
        const QByteArray rest = QByteArray(bytes).replace("\r\n", "\n");
        const QByteArray expected = '\n' + kSignature + '\n' + kComment + '\n' + kCommentSignature;
        const QByteArray below = rest.mid(rest.indexOf('\n'));
        require(below == expected || below == expected + '\n', "another text is accepted as the signature");
    }
    require(!isSignedBy(*known, bytes, kSigned), "a letter is no signature");

    const std::optional<ReleaseKey> key = releaseKeyOf(bytes);
    if (key) {
        require(bytes.trimmed() == QByteArray::fromBase64(bytes).toBase64(), "a key has one text");
        static_cast<void>(isSignedBy(*key, kSigned, bytes));
    }
    return 0;
}

#include "updater/DetachedSignature.h"

#include <QList>

#include <sodium.h>

#include <algorithm>

namespace
{

// How the two base64 lines of a signature file and the one of a key begin: "ED" is Ed25519 over a BLAKE2b-512 hash. A
// key says "Ed". Signatures over the bare file, "Ed" too, are of old versions of the tool and not accepted.
constexpr char kHashedAlgorithm[] = {'E', 'D'};
constexpr char kKeyAlgorithm[] = {'E', 'd'};
constexpr int kAlgorithmBytes = 2;
constexpr int kKeyNumberBytes = 8;
constexpr int kKeyBytes = crypto_sign_PUBLICKEYBYTES;
constexpr int kSignatureBytes = crypto_sign_BYTES;
constexpr int kFileHashBytes = crypto_generichash_BYTES_MAX;

const QByteArray kUntrustedComment = QByteArrayLiteral("untrusted comment:");
const QByteArray kTrustedComment = QByteArrayLiteral("trusted comment: ");

const unsigned char *bytesOf(const QByteArray &array)
{
    return reinterpret_cast<const unsigned char *>(array.constData());
}

/// Strict base64 of exactly that many bytes; nothing otherwise. The toolkit's own check lets padding be missing and
/// spare bits be set, so that one signature would have many texts.
std::optional<QByteArray> decoded(const QByteArray &base64, int size)
{
    const QByteArray result = QByteArray::fromBase64(base64);
    if (result.size() != size || result.toBase64() != base64)
        return std::nullopt;
    return result;
}

bool beginsWith(const QByteArray &bytes, const char (&algorithm)[kAlgorithmBytes])
{
    return std::equal(std::begin(algorithm), std::end(algorithm), bytes.cbegin());
}

bool verifies(const QByteArray &signature, const QByteArray &message, const ReleaseKey &key)
{
    return crypto_sign_verify_detached(bytesOf(signature), bytesOf(message),
                                       static_cast<unsigned long long>(message.size()), key.key.data()) == 0;
}

/// The lines of the file, without line ends of either system. The last one may have none.
QList<QByteArray> linesOf(const QByteArray &file)
{
    QList<QByteArray> lines = file.split('\n');
    if (lines.constLast().isEmpty())
        lines.removeLast();
    for (QByteArray &line : lines) {
        if (line.endsWith('\r'))
            line.chop(1);
    }
    return lines;
}

} // namespace

std::optional<ReleaseKey> releaseKeyOf(const QByteArray &base64)
{
    const auto bytes = decoded(base64.trimmed(), kAlgorithmBytes + kKeyNumberBytes + kKeyBytes);
    if (!bytes || !beginsWith(*bytes, kKeyAlgorithm))
        return std::nullopt;
    ReleaseKey key;
    std::copy_n(bytesOf(*bytes) + kAlgorithmBytes, kKeyNumberBytes, key.number.begin());
    std::copy_n(bytesOf(*bytes) + kAlgorithmBytes + kKeyNumberBytes, kKeyBytes, key.key.begin());
    return key;
}

bool isSignedBy(const ReleaseKey &key, const QByteArray &bytes, const QByteArray &signatureFile)
{
    if (sodium_init() < 0 || signatureFile.size() > kSignatureBytesMax || signatureFile.isEmpty())
        return false;
    const QList<QByteArray> lines = linesOf(signatureFile);
    if (lines.size() != 4 || !lines.at(0).startsWith(kUntrustedComment) || !lines.at(2).startsWith(kTrustedComment))
        return false;
    const auto head = decoded(lines.at(1), kAlgorithmBytes + kKeyNumberBytes + kSignatureBytes);
    const auto commentSignature = decoded(lines.at(3), kSignatureBytes);
    if (!head || !commentSignature || !beginsWith(*head, kHashedAlgorithm) ||
        !std::equal(key.number.cbegin(), key.number.cend(), bytesOf(*head) + kAlgorithmBytes))
        return false;

    QByteArray hash(kFileHashBytes, '\0');
    crypto_generichash(reinterpret_cast<unsigned char *>(hash.data()), static_cast<std::size_t>(hash.size()),
                       bytesOf(bytes), static_cast<unsigned long long>(bytes.size()), nullptr, 0);
    const QByteArray signature = head->right(kSignatureBytes);
    return verifies(signature, hash, key) &&
           verifies(*commentSignature, signature + lines.at(2).mid(kTrustedComment.size()), key);
}

#pragma once

#include <QByteArray>

#include <array>
#include <optional>

/// \file
/// Signatures in the form of minisign: Ed25519 over the BLAKE2b hash of a file, with a comment that is signed too.
/// Pure functions; any thread.

/// A public key in the form of minisign.
struct ReleaseKey
{
    std::array<unsigned char, 8> number{}; ///< says which key made a signature; no secret, no proof
    std::array<unsigned char, 32> key{};
};

/// The key of its base64 text, the second line of a public key file. Nothing where the text is no such key.
[[nodiscard]] std::optional<ReleaseKey> releaseKeyOf(const QByteArray &base64);

/// Longest signature file that is looked at, bytes. A real one has some 300.
constexpr int kSignatureBytesMax = 4096;

/// True where the signature file, with its signed comment, was made of exactly these bytes by the owner of the key.
[[nodiscard]] bool isSignedBy(const ReleaseKey &key, const QByteArray &bytes, const QByteArray &signatureFile);

#include <ORLFoundation/security/primitives/ORLFDataSignature.h>

#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/Bytes.h>

#include <optional>
#include <string>
#include <string_view>

namespace ORLFoundation {
namespace {

using internal::base::bytesOf;

constexpr std::string_view kMarker = "Signature: ";
constexpr int kLeastKeyBits = 2048;

struct SignedText {
  std::string_view text, signature;
};

/// nil for data without a signature.
std::optional<SignedText> signedTextOf(std::string_view data) {
  for (std::size_t at = data.rfind(kMarker); at != data.npos;
       at = at == 0 ? data.npos : data.rfind(kMarker, at - 1)) {
    const bool beginsLine = at == 0 || data[at - 1] == '\n';
    if (!beginsLine) continue;
    std::string_view text = data.substr(0, at);
    if (text.ends_with('\n')) text.remove_suffix(1);
    if (text.ends_with('\r')) text.remove_suffix(1);
    return SignedText{text, data.substr(at + kMarker.size())};
  }
  return std::nullopt;
}

/// nil for what is no Base64 text once its line breaks are gone.
std::optional<std::string> signatureBytes(std::string_view text) {
  std::string joined(text);
  std::erase_if(joined, [](char c) { return c == '\r' || c == '\n'; });
  return internal::base::bytesOfBase64Text(joined);
}

std::optional<SecKeyAlgorithm> algorithmOf(ORLFSignatureEncoding encoding) {
  switch (encoding) {
    case ORLFSignatureEncodingRSASHA256:
      return kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA256;
    case ORLFSignatureEncodingRSASHA1:
      return kSecKeyAlgorithmRSASignatureMessagePKCS1v15SHA1;
  }
  return std::nullopt;
}

bool fail(NSErrorSlot error, ORLFSignatureError code, std::string_view text) {
  return NSFillErrorSlot(error, ORLFSecurityErrorDomain, code, text);
}

}  // namespace

bool orlfVerifySignatureWithKey(const NSData& data, const SecKey* key,
                                ORLFSignatureEncoding encoding, bool optional, NSErrorSlot error) {
  const std::optional<SignedText> parts = signedTextOf(data.text());
  if (!parts)
    return optional || fail(error, ORLFSignatureErrorMissing, "The data carries no signature.");
  if (key == nullptr || key->sizeInBits() < kLeastKeyBits)
    return fail(error, ORLFSignatureErrorKey, "The key is missing or has fewer than 2048 bits.");
  const std::optional<SecKeyAlgorithm> algorithm = algorithmOf(encoding);
  if (!algorithm)
    return fail(error, ORLFSignatureErrorEncoding, "The encoding of the signature is unknown.");
  const std::optional<std::string> signature = signatureBytes(parts->signature);
  if (!signature || !key->verifies(bytesOf(parts->text), bytesOf(*signature), *algorithm))
    return fail(error, ORLFSignatureErrorInvalid, "The signature is not the key's over the data.");
  return true;
}

}  // namespace ORLFoundation

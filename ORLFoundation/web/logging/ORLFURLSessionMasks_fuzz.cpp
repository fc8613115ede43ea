// Masks over any text: the field mask gives what its expression gives, and a secret is in nothing
// that comes out, whole or in pieces.
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSRegularExpression.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace ORLFoundation;

void maskField(const std::string& text) {
  static const auto mask = ORLFURLSessionLogReplacement::initWithJSONFieldName("p", "x");
  if (!internal::base::isUTF8(text)) return;
  const auto masked =
      mask->expression()->stringByReplacingMatchesInString(text, mask->replacement());
  if (mask->process(text) != masked) std::abort();
}

/// The first line is the secret.
void maskSecret(std::string_view data) {
  const std::size_t end = data.find('\n');
  const std::string secret(data.substr(0, end));
  if (secret.size() < 6 || secret.size() > 64 || end == std::string_view::npos) return;
  const std::string text(data.substr(end + 1));
  ORLFURLSessionSecretMask mask;
  mask.addSecret(secret);
  const std::string masked = *mask.process(text);
  // Between two masks the text is as it was; only stars could make a secret anew.
  if (secret.find('*') == std::string::npos && masked.find(secret) != std::string::npos)
    std::abort();
  ORLFURLSessionSecretMask::Pieces pieces(mask);
  std::string inPieces;
  for (const char c : text) inPieces += pieces.append({&c, 1});
  if (inPieces + pieces.finish() != masked) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  maskField(text);
  maskSecret(text);
  return 0;
}

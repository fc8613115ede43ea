#include <ORLFoundation/platform/net/internal/DataAddress.h>

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/Base64.h>
#include <ORLFoundation/platform/base/Hexadecimal.h>

namespace ORLFoundation::internal::net {
namespace {

using namespace base;

constexpr std::string_view kScheme = "data:";
constexpr std::string_view kBase64 = ";base64";

std::string unescaped(std::string_view text) {
  std::string bytes;
  bytes.reserve(text.size());
  for (std::size_t index = 0; index < text.size(); ++index) {
    const auto byte = text[index] == '%' ? hexByteAt(text, index + 1) : std::nullopt;
    bytes.push_back(byte ? static_cast<char>(*byte) : text[index]);
    if (byte) index += 2;
  }
  return bytes;
}

/// Reads Base64 whose filling may be left away.
std::optional<std::string> bytesOfBase64(std::string text) {
  while (text.size() % 4 != 0) text.push_back('=');
  return bytesOfBase64Text(text);
}

}  // namespace

std::optional<DataAddress> dataAddressIn(std::string_view address) {
  if (!equalsLower(address.substr(0, kScheme.size()), kScheme)) return std::nullopt;
  address.remove_prefix(kScheme.size());
  address = address.substr(0, address.find('#'));
  const std::size_t comma = address.find(',');
  if (comma == std::string_view::npos) return std::nullopt;
  std::string_view type = address.substr(0, comma);
  std::optional<std::string> bytes = unescaped(address.substr(comma + 1));
  if (type.size() >= kBase64.size() &&
      equalsLower(type.substr(type.size() - kBase64.size()), kBase64)) {
    type.remove_suffix(kBase64.size());
    bytes = bytesOfBase64(*std::move(bytes));
  }
  if (!bytes) return std::nullopt;
  DataAddress data{unescaped(type), *std::move(bytes)};
  if (data.mediaType.empty()) data.mediaType = "text/plain;charset=US-ASCII";
  if (data.mediaType.front() == ';') data.mediaType.insert(0, "text/plain");
  return data;
}

}  // namespace ORLFoundation::internal::net

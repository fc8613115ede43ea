#include "interchange/ofx_document.h"

#include <ORLFoundation/platform/base/UTF8.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "cli/failure.h"

/// Whatever the bytes, they are a document in UTF-8 or a failure; indenting keeps its tags.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view bytes(reinterpret_cast<const char*>(data), size);
  const auto tagsOf = [](std::string_view xml) {
    std::size_t tags = 0;
    for (const char c : xml) tags += c == '<' ? 1 : 0;
    return tags;
  };
  try {
    const auto plain = orlftool::convertOfx(bytes, "a.ofx", {});
    const auto indented = orlftool::convertOfx(bytes, "a.ofx", {.isIndented = true});
    if (!plain.xml.starts_with("<?xml ") || tagsOf(plain.xml) != tagsOf(indented.xml)) std::abort();
    if (!ORLFoundation::internal::base::isUTF8(plain.xml)) std::abort();
  } catch (const orlftool::JobFailure& failure) {
    if (!std::string_view(failure.what()).starts_with("a.ofx: ")) std::abort();
  }
  return 0;
}

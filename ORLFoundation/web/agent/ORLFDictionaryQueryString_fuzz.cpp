// Queries of any bytes; what is read is written and read again the same, as long as no text holds
// what queries leave as it is.
#include <ORLFoundation/web/agent/ORLFDictionaryQueryString.h>

#include <ORLFoundation/platform/object/NSSet.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

namespace {

using namespace ORLFoundation;

bool isPlain(const id& value, std::string_view signs) {
  if (const auto set = value.as<NSSet>()) {
    for (const id& member : set->allObjects())
      if (!isPlain(member, signs)) return false;
    return true;
  }
  return value.get<std::string>()->find_first_of(signs) == std::string::npos;
}

bool arePlain(const NSDictionary& dictionary) {
  for (const auto& [key, value] : dictionary.entries())
    if (!isPlain(key, "&=") || !isPlain(value, "&")) return false;
  return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view query(reinterpret_cast<const char*>(data), size);
  const auto dictionary = orlfDictionaryWithURLQueryString(query);
  for (const NSUInteger options : {0U, 1U, 2U, 3U})
    static_cast<void>(orlfURLQueryStringWithOptions(*dictionary, options));
  const std::string written = orlfURLQueryString(*dictionary);
  const auto again = orlfDictionaryWithURLQueryString(written);
  // A set of one is written as a single value.
  if (arePlain(*dictionary) && orlfURLQueryString(*again) != written) std::abort();
  return 0;
}

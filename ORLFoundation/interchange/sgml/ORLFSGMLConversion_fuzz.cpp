#include <ORLFoundation/interchange/sgml/ORLFSGMLConversion.h>

#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

using namespace ORLFoundation;

// Every tag of the output is closed; escaping leaves no bare mark; unescaping ends.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::string xml = orlfXMLStringConvertedFromSGMLString(text);
  const std::size_t lastOpen = xml.rfind('<');
  if (lastOpen != xml.npos && xml.find('>', lastOpen) == xml.npos) std::abort();
  const auto converted = orlfXMLDataWithSGMLString(text);
  if (converted.has_value() != (text.find('<') != text.npos)) std::abort();
  const std::string escaped = orlfStringByEscapingStandardXMLEntities(text);
  if (escaped.find_first_of("<>\"\t\n") != escaped.npos) std::abort();
  if (orlfStringByUnescapingStandardXMLEntities(text).size() > size) std::abort();
  return 0;
}

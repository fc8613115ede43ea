#include "interchange/ofx_document.h"

#include <ORLFoundation/interchange/sgml/ORLFSGMLConversion.h>
#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "interchange/ofx_tags.h"
#include "io/text_input.h"
#include "values/trimmed.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;
using Encoding = std::optional<NSStringEncoding>;

constexpr std::string_view kAllBlanks = " \t\r\n\f\v";

/// What stands before the first tag and in the processing instructions behind it.
class OfxHeader {
 public:
  explicit OfxHeader(std::string_view text) {
    const std::size_t tag = std::min(text.find('<'), text.size());
    plain_ = text.substr(0, tag);
    text.remove_prefix(tag);
    for (;;) {
      const std::size_t end = text.find('>');
      if (!text.starts_with("<?") || end == text.npos) break;
      const std::string_view instruction = text.substr(0, end);
      if (instruction.starts_with("<?xml")) declaration_ = instruction;
      if (instruction.starts_with("<?OFX")) instruction_ = instruction;
      text = trimmed(text.substr(end + 1), kAllBlanks);
    }
  }

  [[nodiscard]] bool isOfx() const {
    return !instruction_.empty() || plain_.find("OFXHEADER") != plain_.npos;
  }
  [[nodiscard]] bool isDeclared() const { return !declaration_.empty(); }

  /// The value of a field in either form; empty where there is none.
  [[nodiscard]] std::string_view field(std::string_view key) const {
    const std::string_view attribute = attributeOf(instruction_, key);
    return attribute.empty() ? plainField(key) : attribute;
  }
  [[nodiscard]] std::string_view declaredEncoding() const {
    return attributeOf(declaration_, "encoding");
  }

 private:
  /// KEY="VALUE" with either marks.
  static std::string_view attributeOf(std::string_view text, std::string_view key) {
    for (std::size_t at = text.find(key); at != text.npos; at = text.find(key, at + 1)) {
      if (at == 0 || kAllBlanks.find(text[at - 1]) == kAllBlanks.npos) continue;
      std::string_view rest = trimmed(text.substr(at + key.size()), kAllBlanks);
      if (!rest.starts_with('=')) continue;
      rest = trimmed(rest.substr(1), kAllBlanks);
      if (rest.empty() || (rest.front() != '"' && rest.front() != '\'')) continue;
      return rest.substr(1, std::min(rest.find(rest.front(), 1), rest.size()) - 1);
    }
    return {};
  }

  /// KEY:VALUE, on a line of its own or, as some banks have it, all in one without anything
  /// between.
  [[nodiscard]] std::string_view plainField(std::string_view key) const {
    constexpr std::array<std::string_view, 9> kKeys{"OFXHEADER",   "DATA",       "VERSION",
                                                    "SECURITY",    "ENCODING",   "CHARSET",
                                                    "COMPRESSION", "OLDFILEUID", "NEWFILEUID"};
    const std::size_t found = plain_.find(std::string(key) + ":");
    if (found == plain_.npos) return {};
    std::string_view value = plain_.substr(found + key.size() + 1);
    value = value.substr(0, value.find_first_of("\r\n"));
    for (const std::string_view next : kKeys)
      value = value.substr(0, value.find(std::string(next) + ":"));
    return trimmed(value, kAllBlanks);
  }

  std::string_view plain_, declaration_, instruction_;
};

struct Decoded {
  std::string text;
  NSStringEncoding encoding = NSUTF8StringEncoding;
};

std::optional<Decoded> decodedAs(std::string_view bytes, NSStringEncoding encoding) {
  auto text = stringWithData(NSData(bytes), encoding);
  return text ? std::optional(Decoded{std::move(*text), encoding}) : std::nullopt;
}

bool isUTF16(NSStringEncoding encoding) {
  return encoding == NSUTF16StringEncoding || encoding == NSUTF16BigEndianStringEncoding ||
         encoding == NSUTF16LittleEndianStringEncoding;
}

/// UTF-16 by its mark, or by the zeros beside the letters of a header or a tag.
Encoding encodingOfBytes(std::string_view bytes) {
  constexpr std::string_view kZero("\0", 1);
  if (bytes.starts_with("\xEF\xBB\xBF")) return NSUTF8StringEncoding;
  if (bytes.starts_with("\xFE\xFF") || bytes.starts_with("\xFF\xFE")) return NSUTF16StringEncoding;
  if (bytes.size() < 2 || bytes.substr(0, 2) == "\0\0") return std::nullopt;
  if (bytes.substr(0, 1) == kZero) return NSUTF16BigEndianStringEncoding;
  if (bytes.substr(1, 1) == kZero) return NSUTF16LittleEndianStringEncoding;
  return std::nullopt;
}

/// That which ENCODING and CHARSET of the header stand for.
Encoding encodingOfHeader(const OfxHeader& header, std::vector<std::string>& notes) {
  const std::string_view encoding = header.field("ENCODING");
  const std::string_view charset = header.field("CHARSET");
  if (internal::base::equalsIgnoringCase(encoding, "UNICODE")) return NSUTF8StringEncoding;
  const Encoding named = encodingNamed(encoding);
  if (named && named != NSASCIIStringEncoding) return named;
  if (charset.empty() && encoding.empty()) return std::nullopt;
  if (charset.empty() || internal::base::equalsIgnoringCase(charset, "NONE"))
    return NSWindowsCP1252StringEncoding;
  if (const Encoding page = encodingNamed(charset)) return page;
  notes.push_back("the header's CHARSET is unknown: " + quotedForMessage(charset));
  return std::nullopt;
}

Encoding encodingOfDeclaration(const OfxHeader& header, std::vector<std::string>& notes) {
  const std::string_view name = header.declaredEncoding();
  if (name.empty()) return NSUTF8StringEncoding;
  const Encoding encoding = encodingNamed(name);
  if (!encoding)
    notes.push_back("the declaration's encoding is unknown: " + quotedForMessage(name));
  return encoding;
}

/// Reads bytes that do not fit what the file says of itself.
Decoded decodedAnyway(std::string_view bytes, const std::string& reason,
                      std::vector<std::string>& notes) {
  for (const NSStringEncoding encoding :
       {NSUTF8StringEncoding, NSWindowsCP1252StringEncoding, NSISOLatin1StringEncoding}) {
    auto decoded = decodedAs(bytes, encoding);
    if (!decoded) continue;
    notes.push_back(reason + ": read as " + std::string(nameOfEncoding(encoding)));
    return std::move(*decoded);
  }
  return {};
}

Decoded decodedByFile(std::string_view bytes, std::vector<std::string>& notes) {
  if (const Encoding encoding = encodingOfBytes(bytes))
    if (auto decoded = decodedAs(bytes, *encoding)) return std::move(*decoded);
  const OfxHeader header(bytes);
  const Encoding encoding =
      header.isDeclared() ? encodingOfDeclaration(header, notes) : encodingOfHeader(header, notes);
  if (!encoding && internal::base::isASCII(bytes)) return {std::string(bytes)};
  if (!encoding) return decodedAnyway(bytes, "the file does not tell its encoding", notes);
  const std::string name(nameOfEncoding(*encoding));
  // What told the encoding was read by single bytes.
  auto decoded = isUTF16(*encoding) ? std::nullopt : decodedAs(bytes, *encoding);
  if (!decoded) return decodedAnyway(bytes, "the file says " + name + ", its bytes do not", notes);
  if (*encoding != NSUTF8StringEncoding && !internal::base::isASCII(bytes) &&
      internal::base::isUTF8(bytes))
    notes.push_back("the file says " + name +
                    " and was read so; all its bytes are utf-8 too: --encoding utf-8 reads that");
  return std::move(*decoded);
}

Decoded decoded(std::string_view bytes, const std::string& name, Encoding told,
                std::vector<std::string>& notes) {
  if (!told) return decodedByFile(bytes, notes);
  if (auto text = decodedAs(bytes, *told)) return std::move(*text);
  throw JobFailure(name + ": expected " + std::string(nameOfEncoding(*told)) + ", got other bytes");
}

/// The XML behind the declaration and the header of OFX that it begins with.
std::string_view withoutInstructions(std::string_view xml) {
  for (;;) {
    xml.remove_prefix(std::min(xml.find_first_not_of(kAllBlanks), xml.size()));
    if (!xml.starts_with("<?xml") && !xml.starts_with("<?OFX")) return xml;
    xml.remove_prefix(std::min(xml.find('>'), xml.size() - 1) + 1);
  }
}

/// A value of the header as an attribute: what could end it goes.
std::string attribute(std::string_view key, std::string_view value, std::string_view otherwise) {
  std::string plain;
  std::copy_if(value.begin(), value.end(), std::back_inserter(plain), [](char c) {
    return internal::base::isLetterOrDigit(c) || c == '-' || c == '_' || c == '.';
  });
  if (plain.empty()) plain = otherwise;
  return " " + std::string(key) + "=\"" + plain + "\"";
}

/// XML begins with version 2.0 of the format.
std::string ofxInstruction(const OfxHeader& header) {
  const std::string_view version = header.field("VERSION");
  const bool isXml = version.size() == 3 && version.front() >= '2';
  return "<?OFX" + attribute("OFXHEADER", "200", "") +
         attribute("VERSION", isXml ? version : "200", "200") +
         attribute("SECURITY", header.field("SECURITY"), "NONE") +
         attribute("OLDFILEUID", header.field("OLDFILEUID"), "NONE") +
         attribute("NEWFILEUID", header.field("NEWFILEUID"), "NONE") + "?>\n";
}

}  // namespace

OfxDocument convertOfx(std::string_view bytes, const std::string& name, const OfxOptions& options) {
  OfxDocument document;
  const Decoded read = decoded(bytes, name, options.encoding, document.notes);
  const OfxHeader header(read.text);
  const auto converted = orlfXMLDataWithSGMLString(read.text);
  if (!converted) throw JobFailure(name + ": expected SGML, got a text without any tag");
  const std::string_view body = withoutInstructions(converted->text());
  const bool isOfx = header.isOfx() || body.starts_with("<OFX>");
  if (!header.isOfx())
    document.notes.emplace_back(isOfx ? "no header of OFX" : "no header and no root of OFX");
  for (std::string& remark : remarksOnTags(body)) document.notes.push_back(std::move(remark));
  document.xml = R"(<?xml version="1.0" encoding="UTF-8" standalone="no"?>)";
  document.xml += '\n';
  if (isOfx) document.xml += ofxInstruction(header);
  if (options.isIndented)
    document.xml += indentedXml(body);
  else
    document.xml += body;
  document.xml += '\n';
  return document;
}

}  // namespace orlftool

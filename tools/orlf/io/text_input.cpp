#include "io/text_input.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "cli/failure.h"
#include "cli/message_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct EncodingName {
  std::string_view name;
  NSStringEncoding encoding;
};
/// The first name of each encoding is the one that is shown.
constexpr std::array kEncodings{
    EncodingName{"utf-8", NSUTF8StringEncoding},
    EncodingName{"utf8", NSUTF8StringEncoding},
    EncodingName{"utf-16", NSUTF16StringEncoding},
    EncodingName{"utf16", NSUTF16StringEncoding},
    EncodingName{"utf-16be", NSUTF16BigEndianStringEncoding},
    EncodingName{"utf-16le", NSUTF16LittleEndianStringEncoding},
    EncodingName{"ascii", NSASCIIStringEncoding},
    EncodingName{"us-ascii", NSASCIIStringEncoding},
    EncodingName{"usascii", NSASCIIStringEncoding},
    EncodingName{"latin-1", NSISOLatin1StringEncoding},
    EncodingName{"latin1", NSISOLatin1StringEncoding},
    EncodingName{"iso-8859-1", NSISOLatin1StringEncoding},
    EncodingName{"8859-1", NSISOLatin1StringEncoding},
    EncodingName{"windows-1252", NSWindowsCP1252StringEncoding},
    EncodingName{"cp1252", NSWindowsCP1252StringEncoding},
    EncodingName{"1252", NSWindowsCP1252StringEncoding},
    EncodingName{"mac-roman", NSMacOSRomanStringEncoding},
    EncodingName{"macroman", NSMacOSRomanStringEncoding},
    EncodingName{"macintosh", NSMacOSRomanStringEncoding},
};

constexpr std::size_t kPiece = std::size_t{64} << 10;

bool isUTF16(NSStringEncoding encoding) {
  return encoding == NSUTF16BigEndianStringEncoding ||
         encoding == NSUTF16LittleEndianStringEncoding;
}

bool fits(std::string_view bytes, NSStringEncoding encoding) {
  return stringWithData(NSData(bytes), encoding).has_value();
}

}  // namespace

std::optional<NSStringEncoding> encodingNamed(std::string_view name) {
  const auto* const found =
      std::find_if(kEncodings.begin(), kEncodings.end(), [name](const EncodingName& each) {
        return internal::base::equalsIgnoringCase(each.name, name);
      });
  return found == kEncodings.end() ? std::nullopt : std::optional(found->encoding);
}

std::optional<NSStringEncoding> readEncodingOption(const std::optional<std::string>& name,
                                                   std::string_view option) {
  if (!name) return std::nullopt;
  if (const auto encoding = encodingNamed(*name)) return encoding;
  throw UsageFailure(std::string(option) + ": expected " + std::string(kEncodingNames) + ", got " +
                     quotedForMessage(*name));
}

std::string_view nameOfEncoding(NSUInteger encoding) {
  const auto* const found =
      std::find_if(kEncodings.begin(), kEncodings.end(),
                   [encoding](const EncodingName& each) { return each.encoding == encoding; });
  return found == kEncodings.end() ? "an unknown encoding" : found->name;
}

std::uint64_t lineEndsIn(std::string_view text, char before) {
  std::uint64_t lines = 0;
  for (const char c : text) {
    if (c == '\r' || (c == '\n' && before != '\r')) ++lines;
    before = c;
  }
  return lines;
}

TextInput::TextInput(ByteSource source, std::optional<NSStringEncoding> encoding)
    : source_(std::move(source)), encoding_(encoding), isTold_(encoding.has_value()) {
  while (raw_.size() < 3 && !isAtEnd_) readRaw();
  detectEncoding();
}

void TextInput::readRaw() {
  const std::size_t before = raw_.size();
  raw_.resize(before + kPiece);
  const std::size_t count = source_.read(std::span(raw_).subspan(before));
  raw_.resize(before + count);
  position_ += count;
  isAtEnd_ = count == 0;
}

/// Takes a mark off that fits the encoding, and settles one that is open.
void TextInput::detectEncoding() {
  struct Mark {
    std::string_view bytes;
    NSStringEncoding encoding;
  };
  constexpr std::array kMarks{Mark{"\xEF\xBB\xBF", NSUTF8StringEncoding},
                              Mark{"\xFE\xFF", NSUTF16BigEndianStringEncoding},
                              Mark{"\xFF\xFE", NSUTF16LittleEndianStringEncoding}};
  const bool isOpen = !encoding_ || encoding_ == NSUTF16StringEncoding;
  for (const Mark& mark : kMarks) {
    if (!raw_.starts_with(mark.bytes) || (!isOpen && encoding_ != mark.encoding)) continue;
    if (encoding_ == NSUTF16StringEncoding && !isUTF16(mark.encoding)) continue;
    encoding_ = mark.encoding;
    raw_.erase(0, mark.bytes.size());
    return;
  }
  if (encoding_ == NSUTF16StringEncoding) encoding_ = NSUTF16BigEndianStringEncoding;
  if (!encoding_) encoding_ = NSUTF8StringEncoding;
}

std::size_t TextInput::wholeBytes() const {
  if (isAtEnd_) return raw_.size();
  if (isUTF16(*encoding_)) {
    const std::size_t units = raw_.size() / 2 * 2;
    if (units == 0) return 0;
    const std::size_t high = *encoding_ == NSUTF16BigEndianStringEncoding ? units - 2 : units - 1;
    const bool isLead = (static_cast<unsigned char>(raw_[high]) & 0xFCU) == 0xD8U;
    return isLead ? units - 2 : units;
  }
  if (*encoding_ != NSUTF8StringEncoding) return raw_.size();
  // Back over at most three bytes of a character that goes on.
  std::size_t lead = raw_.size();
  for (int back = 0; back < 3 && lead > 0; ++back) {
    --lead;
    const auto byte = static_cast<unsigned char>(raw_[lead]);
    if (byte < 0x80) break;
    if (byte < 0xC0) continue;
    const std::size_t length = byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
    return lead + length > raw_.size() ? lead : raw_.size();
  }
  return raw_.size();
}

void TextInput::failInside(std::string_view bytes) const {
  std::size_t good = 0;
  for (;;) {
    std::size_t next = good + (isUTF16(*encoding_) ? 2 : 1);
    const auto isWhole = [&] { return fits(bytes.substr(good, next - good), *encoding_); };
    while (next < bytes.size() && next - good < 4 && !isWhole()) ++next;
    if (next > bytes.size() || !isWhole()) break;
    good = next;
  }
  const std::string text = *stringWithData(NSData(bytes.substr(0, good)), *encoding_);
  const std::string line = std::to_string(lines_ + lineEndsIn(text, last_));
  throw JobFailure(name() + ":" + line + ": expected " + std::string(nameOfEncoding(*encoding_)) +
                   ", got other bytes" + (isTold_ ? "" : "; --encoding names another encoding"));
}

void TextInput::decodeMore() {
  readRaw();
  const std::size_t whole = wholeBytes();
  const std::string_view bytes(raw_.data(), whole);
  given_ = 0;
  if (*encoding_ == NSUTF8StringEncoding) {
    if (!internal::base::isASCII(bytes) && !internal::base::isUTF8(bytes)) failInside(bytes);
    text_.assign(bytes);
  } else {
    auto text = stringWithData(NSData(bytes), *encoding_);
    if (!text) failInside(bytes);
    text_ = std::move(*text);
  }
  lines_ += lineEndsIn(text_, last_);
  if (!text_.empty()) last_ = text_.back();
  raw_.erase(0, whole);
}

std::size_t TextInput::read(std::span<char> buffer) {
  while (given_ == text_.size() && !(isAtEnd_ && raw_.empty())) decodeMore();
  const std::size_t count = std::min(buffer.size(), text_.size() - given_);
  std::copy_n(text_.data() + given_, count, buffer.data());
  given_ += count;
  return count;
}

std::string readWholeText(const std::string& path, std::optional<NSStringEncoding> encoding) {
  constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  TextInput input(path, encoding);
  std::string text;
  std::vector<char> buffer(kPiece);
  while (const std::size_t count = input.read(buffer)) {
    text.append(buffer.data(), count);
    if (text.size() > kMostBytes)
      throw JobFailure(input.name() + ": expected at most 64 MB, got more");
  }
  return text;
}

}  // namespace orlftool

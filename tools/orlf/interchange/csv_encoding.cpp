#include "interchange/csv_encoding.h"

#include <ORLFoundation/platform/base/ASCII.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "cli/failure.h"
#include "cli/message_text.h"
#include "io/text_input.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::size_t kPiece = std::size_t{64} << 10;

/// What the bytes of a file hold, and the line around the first that is beyond ASCII.
class ByteSurvey {
 public:
  explicit ByteSurvey(const ByteSource& source) {
    std::vector<char> buffer(kPiece);
    while (const std::size_t count = source.read(buffer)) take({buffer.data(), count});
  }

  [[nodiscard]] std::string_view front() const { return front_; }
  [[nodiscard]] bool holdsZero() const { return holdsZero_; }
  [[nodiscard]] bool isASCII() const { return !isBeyond_; }
  [[nodiscard]] bool fitsWindows() const { return fitsWindows_; }
  [[nodiscard]] const std::string& lineText() const { return lineText_; }
  [[nodiscard]] std::uint64_t line() const { return line_; }

 private:
  void take(std::string_view piece) {
    constexpr std::size_t kMark = 3;
    if (front_.size() < kMark) front_ += piece.substr(0, kMark - front_.size());
    holdsZero_ = holdsZero_ || piece.find('\0') != piece.npos;
    if (!internal::base::isASCII(piece))
      fitsWindows_ = fitsWindows_ && piece.find_first_of("\x81\x8D\x8F\x90\x9D") == piece.npos;
    if (!isBeyond_) piece.remove_prefix(passASCII(piece));
    if (isBeyond_ && !isLineWhole_) keepLine(piece);
  }

  /// The length of the ASCII at the front of a piece.
  std::size_t passASCII(std::string_view piece) {
    const auto* const beyond = std::find_if_not(piece.begin(), piece.end(),
                                                [](char c) { return internal::base::isASCII(c); });
    const auto length = static_cast<std::size_t>(beyond - piece.begin());
    const std::string_view head = piece.substr(0, length);
    line_ += lineEndsIn(head, last_);
    if (!head.empty()) last_ = head.back();
    const std::size_t lineEnd = head.find_last_of("\r\n");
    if (lineEnd != head.npos) lineText_.clear();
    keep(head.substr(lineEnd == head.npos ? 0 : lineEnd + 1));
    isBeyond_ = length < piece.size();
    return length;
  }

  void keepLine(std::string_view piece) {
    const std::size_t end = piece.find_first_of("\r\n");
    keep(piece.substr(0, end));
    isLineWhole_ = end != piece.npos;
  }

  /// More than a message shows.
  void keep(std::string_view text) {
    constexpr std::size_t kMostKept = 256;
    lineText_ += text.substr(0, kMostKept - std::min(kMostKept, lineText_.size()));
  }

  std::string front_;
  bool holdsZero_ = false;
  bool isBeyond_ = false;
  bool fitsWindows_ = true;
  bool isLineWhole_ = false;
  char last_ = 0;
  std::uint64_t line_ = 1;
  std::string lineText_;
};

bool isReadable(const ReopenedBytes& bytes, NSStringEncoding encoding) {
  try {
    TextInput input(bytes(), encoding);
    std::vector<char> buffer(kPiece);
    while (input.read(buffer) != 0) {
    }
    return true;
  } catch (const JobFailure&) {
    return false;
  }
}

/// Each encoding of single bytes with what it makes of a line.
std::string readingsOf(std::string_view line) {
  std::string readings;
  for (const NSStringEncoding encoding :
       {NSWindowsCP1252StringEncoding, NSISOLatin1StringEncoding, NSMacOSRomanStringEncoding})
    if (const auto text = stringWithData(NSData(line), encoding))
      readings +=
          "; " + std::string(nameOfEncoding(encoding)) + " reads " + quotedForMessage(*text);
  return readings;
}

}  // namespace

TableEncoding inferEncoding(const ReopenedBytes& bytes) {
  const auto told = [](NSStringEncoding encoding, const char* name, std::string reason,
                       std::uint64_t line) {
    return TableEncoding{encoding, {"encoding", name, std::move(reason), line}};
  };
  const ByteSurvey survey(bytes());
  const bool isUTF8 = survey.isASCII() || isReadable(bytes, NSUTF8StringEncoding);
  if (survey.front() == "\xEF\xBB\xBF" && isUTF8)
    return told(NSUTF8StringEncoding, "utf-8", "a byte order mark", 1);
  if (survey.front().starts_with("\xFF\xFE") || survey.front().starts_with("\xFE\xFF"))
    if (isReadable(bytes, NSUTF16StringEncoding))
      return told(NSUTF16StringEncoding, "utf-16", "a byte order mark", 1);
  if (survey.holdsZero())
    return told(isUTF8 ? NSUTF8StringEncoding : NSISOLatin1StringEncoding, "",
                "it holds zero bytes, as utf-16be and utf-16le do", 0);
  if (survey.isASCII())
    return told(NSUTF8StringEncoding, "ascii", "no row holds any other character", 0);
  if (isUTF8)
    return told(NSUTF8StringEncoding, "utf-8", quotedForMessage(survey.lineText()), survey.line());
  return told(survey.fitsWindows() ? NSWindowsCP1252StringEncoding : NSISOLatin1StringEncoding, "",
              "bytes beyond ASCII that are no utf-8" + readingsOf(survey.lineText()),
              survey.line());
}

}  // namespace orlftool

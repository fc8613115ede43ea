#include <ORLFoundation/interchange/tabular/internal/ORLFRowParser.h>

#include <ORLFoundation/platform/base/ASCII.h>

#include <algorithm>
#include <array>
#include <utility>

namespace ORLFoundation::internal::tabular {
namespace {

// Beyond ASCII: U+0085, U+2028 and U+2029.
constexpr std::array<std::string_view, 3> kLineEnds{"\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"};

// Beyond ASCII: U+00A0, U+1680, U+2000 to U+200B, U+202F, U+205F and U+3000.
constexpr std::array<std::string_view, 17> kWhitespace{
    "\xC2\xA0",     "\xE1\x9A\x80", "\xE2\x80\x80", "\xE2\x80\x81", "\xE2\x80\x82", "\xE2\x80\x83",
    "\xE2\x80\x84", "\xE2\x80\x85", "\xE2\x80\x86", "\xE2\x80\x87", "\xE2\x80\x88", "\xE2\x80\x89",
    "\xE2\x80\x8A", "\xE2\x80\x8B", "\xE2\x80\xAF", "\xE2\x81\x9F", "\xE3\x80\x80"};

std::size_t lengthOfOneOf(std::span<const std::string_view> characters, std::string_view text) {
  const auto begins = [text](std::string_view each) { return text.starts_with(each); };
  const auto found = std::find_if(characters.begin(), characters.end(), begins);
  return found == characters.end() ? 0 : found->size();
}

}  // namespace

std::size_t lengthOfLineEnd(std::string_view text) noexcept {
  if (text.empty()) return 0;
  const char first = text.front();
  if (!base::isASCII(first)) return lengthOfOneOf(kLineEnds, text);
  return first >= '\n' && first <= '\r' ? 1 : 0;
}

std::size_t lengthOfWhitespace(std::string_view text) noexcept {
  if (text.empty()) return 0;
  const char first = text.front();
  if (!base::isASCII(first)) return lengthOfOneOf(kWhitespace, text);
  return first == ' ' || first == '\t' ? 1 : 0;
}

std::uint64_t linesClosedBy(std::string_view text) noexcept {
  std::uint64_t lines = 0;
  while (!text.empty()) {
    const std::size_t lineEnd = lengthOfLineEnd(text);
    if (lineEnd != 0 && !text.starts_with("\r\n")) ++lines;
    text.remove_prefix(std::max<std::size_t>(lineEnd, 1));
  }
  return lines;
}

void ORLFRowParser::setText(std::string_view text, bool last) {
  text_ = text;
  isLast_ = last;
  stops_ = ORLFStopFinder(text, separator_);
  rowStart_ = 0;
}

ORLFRowParser::Outcome ORLFRowParser::read() {
  beginRow();
  for (;;) {
    if (passPlainField()) {
      if (!beginsPlainly() && passBlanks() == Step::kMore) return Outcome::kMore;
      continue;
    }
    const std::size_t stop = stops_.find(at_);
    switch (step(stop)) {
      case Step::kOn:
        break;
      case Step::kMore:
        return Outcome::kMore;
      case Step::kWide:
        return Outcome::kWide;
      case Step::kRowOver:
        if (fields_.size() == mostFields_ && holdsField()) return Outcome::kWide;
        endRow();
        return fields_.empty() ? Outcome::kBlank : Outcome::kRow;
    }
  }
}

void ORLFRowParser::beginRow() {
  // Space for joined fields is kept from row to row, but that of longer rows is given back: each
  // of a million fields would come to hold as much as the longest that ever stood in its place.
  constexpr std::size_t kShortRow = 4096;
  if (std::exchange(joinedBytes_, 0) > kShortRow) pieced_.clear();
  at_ = rowStart_;
  lineEnds_ = 0;
  isQuoted_ = false;
  isPieced_ = false;
  field_ = {};
  fields_.clear();
  piecedCount_ = 0;
}

/// Most fields stand in one piece, marks around them or none, with a separator behind. Any other is
/// left to the steps.
bool ORLFRowParser::passPlainField() {
  if (isQuoted_ || holdsField() || fields_.size() == mostFields_) return false;
  std::size_t start = at_;
  std::size_t stop = stops_.find(start);
  if (stop == text_.size()) return false;
  const bool isMarked = stop == start && text_[stop] == '"';
  if (isMarked) {
    ++start;
    do stop = stops_.find(stop + 1);
    while (stop < text_.size() && text_[stop] == separator_);
    if (stop + 1 >= text_.size() || text_[stop] != '"') return false;
  }
  const std::size_t end = isMarked ? stop + 1 : stop;
  if (text_[end] != separator_) return false;
  fields_.push_back(text_.substr(start, stop - start));
  at_ = end + 1;
  return true;
}

ORLFRowParser::Step ORLFRowParser::step(std::size_t stop) {
  append(text_.substr(at_, stop - at_));
  at_ = stop;
  if (at_ == text_.size()) return isLast_ ? Step::kRowOver : Step::kMore;
  const char c = text_[at_];
  if (c == separator_) return passSeparator();
  if (c == '"') return passMark();
  const std::size_t lineEnd = lengthOfLineEnd(ahead());
  if (lineEnd != 0) return passLineEnds(lineEnd);
  if (mayBeCutOff()) return Step::kMore;
  append(text_.substr(at_++, 1));
  return Step::kOn;
}

ORLFRowParser::Step ORLFRowParser::passLineEnds(std::size_t lineEnd) {
  const std::size_t start = at_;
  for (; lineEnd != 0; lineEnd = lengthOfLineEnd(ahead())) at_ += lineEnd;
  // The second half of a CR LF may come. Anything else behind the run makes a row of its own.
  if (text_[at_ - 1] == '\r' && at_ == text_.size() && !isLast_) --at_;
  if (at_ == start) return Step::kMore;
  const std::string_view run = text_.substr(start, at_ - start);
  lineEnds_ += linesClosedBy(run);
  if (!isQuoted_) return Step::kRowOver;
  append(run);
  return Step::kOn;
}

ORLFRowParser::Step ORLFRowParser::passMark() {
  const std::string_view behind = text_.substr(at_ + 1);
  if (isQuoted_ && behind.empty() && !isLast_) return Step::kMore;
  if (isQuoted_ && behind.starts_with('"')) {
    append(behind.substr(0, 1));
    at_ += 2;
    return Step::kOn;
  }
  isQuoted_ = !isQuoted_;
  ++at_;
  return Step::kOn;
}

ORLFRowParser::Step ORLFRowParser::passSeparator() {
  if (isQuoted_) {
    append(text_.substr(at_++, 1));
    return Step::kOn;
  }
  if (fields_.size() == mostFields_) return Step::kWide;
  endField();
  ++at_;
  return passBlanks();
}

ORLFRowParser::Step ORLFRowParser::passBlanks() {
  for (;;) {
    const std::string_view next = ahead();
    const std::size_t blank = next.starts_with(separator_) ? 0 : lengthOfWhitespace(next);
    if (blank == 0) break;
    at_ += blank;
  }
  return mayBeCutOff() ? Step::kMore : Step::kOn;
}

bool ORLFRowParser::mayBeCutOff() const noexcept {
  constexpr std::size_t kLongest = 3;
  const std::string_view rest = ahead();
  return !isLast_ && (rest.empty() || (rest.size() < kLongest && !base::isASCII(rest.front())));
}

void ORLFRowParser::append(std::string_view piece) {
  if (piece.empty()) return;
  if (isPieced_) {
    pieced_[piecedCount_ - 1] += piece;
    joinedBytes_ += piece.size();
  } else if (field_.empty()) {
    field_ = piece;
  } else if (field_.data() + field_.size() == piece.data()) {
    field_ = std::string_view(field_.data(), field_.size() + piece.size());
  } else {
    if (piecedCount_ == pieced_.size()) pieced_.emplace_back();
    std::string& joined = pieced_[piecedCount_++];
    joined.assign(field_);
    joined += piece;
    joinedBytes_ += joined.size();
    isPieced_ = true;
  }
}

void ORLFRowParser::endField() {
  fields_.push_back(isPieced_ ? std::string_view(pieced_[piecedCount_ - 1]) : field_);
  field_ = {};
  isPieced_ = false;
}

void ORLFRowParser::endRow() {
  if (holdsField()) endField();
  rowStart_ = at_;
  rowLine_ = nextLine_;
  nextLine_ += lineEnds_;
}

}  // namespace ORLFoundation::internal::tabular

#include <ORLFoundation/platform/text/NSScanner.h>

#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/value/NSException.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using namespace internal::base;

/// The first character of a text that is not empty, and its length in bytes.
UTF8Character characterAt(std::string_view text, std::size_t place) noexcept {
  return firstUTF8Character(text.substr(place));
}

[[noreturn]] void throwBeyondEnd() {
  throw NSException(NSRangeException, "The place lies beyond the end of the text.");
}

}  // namespace

NSScanner::NSScanner(std::string string) : owned_(std::move(string)), string_(owned_) {}

std::shared_ptr<NSScanner> NSScanner::scannerOverString(std::string_view string) {
  return std::shared_ptr<NSScanner>(new NSScanner(View{string}));
}

NSUInteger NSScanner::scanLocation() const {
  NSUInteger units = 0;
  for (std::size_t at = 0; at < place_;) {
    const UTF8Character character = characterAt(string_, at);
    units += unitsInUTF16(character.codePoint);
    at += character.length;
  }
  return units;
}

void NSScanner::setScanLocation(NSUInteger location) {
  NSUInteger units = 0;
  std::size_t at = 0;
  while (units < location && at < string_.size()) {
    const UTF8Character character = characterAt(string_, at);
    const NSUInteger behind = units + unitsInUTF16(character.codePoint);
    if (behind > location) break;
    units = behind;
    at += character.length;
  }
  if (at == string_.size() && units < location) throwBeyondEnd();
  place_ = at;
}

void NSScanner::setPlaceInBytes(std::size_t place) {
  if (place > string_.size()) throwBeyondEnd();
  place_ = place;
}

bool NSScanner::scanString(std::string_view string, std::string_view* intoString) {
  const std::size_t start = placeBehindSkipped();
  const bool isHere = string_.substr(start).starts_with(string);
  return isHere && take(start, start + string.size(), intoString);
}

bool NSScanner::scanUpToString(std::string_view string, std::string_view* intoString) {
  const std::size_t start = placeBehindSkipped();
  const std::size_t found = string_.find(string, start);
  return take(start, std::min(found, string_.size()), intoString);
}

bool NSScanner::scanCharactersFromSet(const NSCharacterSet& set, std::string_view* intoString) {
  const std::size_t start = placeBehindSkipped();
  return take(start, endOfRun(start, set, true), intoString);
}

bool NSScanner::scanUpToCharactersFromSet(const NSCharacterSet& set, std::string_view* intoString) {
  const std::size_t start = placeBehindSkipped();
  return take(start, endOfRun(start, set, false), intoString);
}

std::size_t NSScanner::placeBehindSkipped() const {
  return skipped_ == nullptr ? place_ : endOfRun(place_, *skipped_, true);
}

std::size_t NSScanner::endOfRun(std::size_t from, const NSCharacterSet& set,
                                bool areMembers) const {
  while (from < string_.size()) {
    const UTF8Character character = characterAt(string_, from);
    if (set.longCharacterIsMember(character.codePoint) != areMembers) break;
    from += character.length;
  }
  return from;
}

bool NSScanner::take(std::size_t start, std::size_t end, std::string_view* intoString) {
  if (start == end) return false;
  if (intoString != nullptr) *intoString = string_.substr(start, end - start);
  place_ = end;
  return true;
}

}  // namespace ORLFoundation

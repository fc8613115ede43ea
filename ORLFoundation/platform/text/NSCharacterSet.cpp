
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <ORLFoundation/platform/text/UTF16.h>
#include <ORLFoundation/platform/value/NSException.h>
#include <unicode/uniset.h>

#include <bitset>
#include <utility>

namespace ORLFoundation {

struct NSCharacterSet::Members {
  explicit Members(const icu::UnicodeSet& members) : set(members) {
    set.freeze();
    for (std::size_t character = 0; character < ascii.size(); ++character)
      ascii.set(character, set.contains(static_cast<UChar32>(character)));
  }

  icu::UnicodeSet set;     // frozen
  std::bitset<128> ascii;  // its members in ASCII, told without a call
};

namespace {

std::shared_ptr<NSCharacterSet> frozen(const icu::UnicodeSet& set) {
  return std::make_shared<NSCharacterSet>(std::make_unique<NSCharacterSet::Members>(set));
}

/// The set of a pattern of ICU's.
std::shared_ptr<NSCharacterSet> setOf(const char16_t* pattern) {
  UErrorCode status = U_ZERO_ERROR;
  icu::UnicodeSet set(icu::UnicodeString(pattern), status);
  if (U_FAILURE(status)) throw NSException(NSInvalidArgumentException, u_errorName(status));
  return frozen(set);
}

}  // namespace

// Each named set is made when it is first asked for, and lives as long as the process.
#define ORLF_NAMED_SET(name, pattern)                              \
  const std::shared_ptr<NSCharacterSet>& NSCharacterSet::name() {  \
    static const auto& set = *new std::shared_ptr(setOf(pattern)); \
    return set;                                                    \
  }

ORLF_NAMED_SET(whitespaceCharacterSet, u"[[:Zs:]\\u0009\\u200B]")
ORLF_NAMED_SET(newlineCharacterSet, u"[\\u000A-\\u000D\\u0085\\u2028\\u2029]")
ORLF_NAMED_SET(whitespaceAndNewlineCharacterSet,
               u"[[:Zs:]\\u0009-\\u000D\\u0085\\u200B\\u2028\\u2029]")
ORLF_NAMED_SET(decimalDigitCharacterSet, u"[:Nd:]")
ORLF_NAMED_SET(letterCharacterSet, u"[[:L:][:M:]]")
ORLF_NAMED_SET(lowercaseLetterCharacterSet, u"[:Ll:]")
ORLF_NAMED_SET(uppercaseLetterCharacterSet, u"[[:Lu:][:Lt:]]")
ORLF_NAMED_SET(capitalizedLetterCharacterSet, u"[:Lt:]")
ORLF_NAMED_SET(alphanumericCharacterSet, u"[[:L:][:M:][:N:]]")
ORLF_NAMED_SET(nonBaseCharacterSet, u"[:M:]")
ORLF_NAMED_SET(decomposableCharacterSet, u"[:NFD_Quick_Check=No:]")
ORLF_NAMED_SET(punctuationCharacterSet, u"[:P:]")
ORLF_NAMED_SET(symbolCharacterSet, u"[:S:]")
ORLF_NAMED_SET(controlCharacterSet, u"[[:Cc:][:Cf:]]")
ORLF_NAMED_SET(illegalCharacterSet, u"[:Cn:]")
#undef ORLF_NAMED_SET

std::shared_ptr<NSCharacterSet> NSCharacterSet::characterSetWithCharactersInString(
    std::string_view string) {
  icu::UnicodeSet set;
  set.addAll(internal::text::utf16Of(string));
  return frozen(set);
}

NSCharacterSet::NSCharacterSet(std::unique_ptr<const Members> members)
    : members_(std::move(members)) {
  for (unsigned character = 0; character < 128; ++character)
    if (members_->set.contains(static_cast<UChar32>(character)))
      ascii_[character / 64] |= std::uint64_t{1} << (character % 64);
}

NSCharacterSet::~NSCharacterSet() = default;

bool NSCharacterSet::isMemberBeyondASCII(char32_t character) const noexcept {
  if (character < members_->ascii.size()) return members_->ascii[character];
  return character <= 0x10FFFF && members_->set.contains(static_cast<UChar32>(character));
}

std::shared_ptr<NSCharacterSet> NSCharacterSet::setByAddingCharactersInString(
    std::string_view string) const {
  const std::unique_ptr<icu::UnicodeSet> set(members_->set.cloneAsThawed());
  set->addAll(internal::text::utf16Of(string));
  return frozen(*set);
}

std::shared_ptr<NSCharacterSet> NSCharacterSet::setByAddingCharactersOfSet(
    const NSCharacterSet* set) const {
  const std::unique_ptr<icu::UnicodeSet> both(members_->set.cloneAsThawed());
  if (set != nullptr) both->addAll(set->members_->set);
  return frozen(*both);
}

std::shared_ptr<NSCharacterSet> NSCharacterSet::invertedSet() const {
  const std::unique_ptr<icu::UnicodeSet> set(members_->set.cloneAsThawed());
  set->complement();
  return frozen(*set);
}

bool NSCharacterSet::isEqual(const NSObject* other) const {
  const auto* set = dynamic_cast<const NSCharacterSet*>(other);
  return set != nullptr && set->members_->set == members_->set;
}

NSUInteger NSCharacterSet::hash() const {
  return static_cast<NSUInteger>(static_cast<std::uint32_t>(members_->set.hashCode()));
}

}  // namespace ORLFoundation

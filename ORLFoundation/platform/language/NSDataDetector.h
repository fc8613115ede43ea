/// Finds the links in a text: web addresses and e-mail addresses.
///
///     const auto detector = NSDataDetector::dataDetectorWithTypes(NSTextCheckingTypeLink);
///     detector->matchesInString("write to a@example.com");  // {9, 13}, mailto:a@example.com
///
/// A link is an address that names its scheme (http, https, ftp, file, mailto), a host that begins
/// with "www.", a host under one of the common top-level domains ("example.com/page"), or an e-mail
/// address. The latter has a local part of letters, digits and the signs that mail allows
/// unquoted, at most 64 bytes with no point at its ends and none beside another; then a host name
/// of two labels or more whose last one has two letters or more ("a@localhost" is none). Letters
/// are those of every script. A mark that ends a sentence is no part of a link.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/value/NSRange.h>
#include <ORLFoundation/platform/value/NSURL.h>

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace ORLFoundation {

/// What a match is. Bits.
enum NSTextCheckingType : NSUInteger { NSTextCheckingTypeLink = 32 };

struct NSTextCheckingResult {
  NSTextCheckingType resultType = NSTextCheckingTypeLink;
  /// In UTF-16 units.
  NSRange range;
  /// `URL`  A scheme that the text left out is http, or mailto for an e-mail address. What an
  /// address must escape is escaped.
  NSURL URL;
};

/// Called with each match in order; setting `stop` ends the search.
using NSMatchBlock = std::function<void(const NSTextCheckingResult& match, bool& stop)>;

class NSDataDetector final : public NSObject {
 public:
  /// `dataDetectorWithTypes:error:`  nil, with an error, for types other than links alone.
  [[nodiscard]] static std::shared_ptr<NSDataDetector> dataDetectorWithTypes(
      NSUInteger types, NSErrorSlot error = nullptr);

  /// `enumerateMatchesInString:options:range:usingBlock:`  Over the whole text. Time grows with its
  /// length. Broken bytes end a link.
  void enumerateMatchesInString(std::string_view string, const NSMatchBlock& usingBlock) const;
  /// `matchesInString:options:range:`
  [[nodiscard]] std::vector<NSTextCheckingResult> matchesInString(std::string_view string) const;

  [[nodiscard]] std::string className() const override { return "NSDataDetector"; }
  [[nodiscard]] std::shared_ptr<NSObject> copy() override {
    return receiverOr([] { return std::make_shared<NSDataDetector>(); });
  }
};

}  // namespace ORLFoundation

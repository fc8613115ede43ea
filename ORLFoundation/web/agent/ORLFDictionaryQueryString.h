/// Dictionaries as the queries of addresses and back, and dictionaries with more or fewer entries:
/// `NSDictionary(ORLFNSDictionary_Utils)`.
///
///     const auto query = orlfDictionaryWithURLQueryString("a=1&a=2&b=x%20y");
///     query->objectForKey("b");                    // "x y"
///     orlfURLQueryString(*query);                  // "a=1&a=2&b=x%20y"
///     orlfURLQueryStringWithOptions(*query, 2);    // "a=1,2&b=x%20y"
#pragma once

#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <memory>
#include <string>
#include <string_view>

namespace ORLFoundation {

/// Bits; others have no effect.
enum ORLFURLQueryStringOptions : NSUInteger {
  /// "+" is escaped: many servers read it as a blank.
  ORLFURLQueryStringEscapesPlus = 1,
  /// "," is escaped, and arrays and sets stand in one part, with commas between their members.
  ORLFURLQueryStringJoinsWithCommas = 2,
};

/// `orlfDictionaryWithURLQueryString:`  The parts between "&" by their keys, escapes resolved; "+"
/// stays. A part without "=" is dropped, and so is one with an escape that is none or that stands
/// for no UTF-8; of several "=" the first one counts. Keys that come more than once have the set of
/// their values, so order and doubles are lost.
[[nodiscard]] std::shared_ptr<NSDictionary> orlfDictionaryWithURLQueryString(
    std::string_view queryString);

/// `orlfURLQueryString`  The entries by ascending keys: texts, data that is UTF-8, and a part for
/// each such member of arrays and sets. Other values give nothing, numbers included, and so do keys
/// that are no texts. "&" and "=" are not escaped, which queries may hold: texts with one of them
/// are read back otherwise. Required so.
[[nodiscard]] std::string orlfURLQueryString(const NSDictionary& dictionary);

/// `orlfURLQueryStringWithOptions:`  The same; numbers are written too. Where members are joined,
/// no comma stands before one that is identical with the first, so that a, b, a gives "k=a,ba",
/// since equal texts are identical here. Required so.
[[nodiscard]] std::string orlfURLQueryStringWithOptions(const NSDictionary& dictionary,
                                                        NSUInteger options);

/// `orlfDictionaryByAddingContentsOfDictionary:`  The entries of both; where both have a key, those
/// of the argument. nil adds nothing.
[[nodiscard]] std::shared_ptr<NSDictionary> orlfDictionaryByAddingContentsOfDictionary(
    const NSDictionary& dictionary, const std::shared_ptr<NSDictionary>& contentsOfDictionary);

/// `orlfDictionaryByRemovingObjectsForKeys:`  nil removes nothing.
[[nodiscard]] std::shared_ptr<NSDictionary> orlfDictionaryByRemovingObjectsForKeys(
    const NSDictionary& dictionary, const std::shared_ptr<NSArray>& keys);

}  // namespace ORLFoundation

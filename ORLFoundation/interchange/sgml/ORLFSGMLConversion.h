/// Well-formed XML from SGML whose leaf elements have no end tag, as statements of banks have it.
/// No schema is needed: the text itself tells which tags are left open.
///
///     orlfXMLStringConvertedFromSGMLString("<A><B>1\n<C>2\n</A>");  // "<A><B>1</B><C>2</C></A>"
///
/// Nothing here fails on malformed text: it gives malformed output. Error slots are taken and never
/// filled. Texts are read byte by byte, in one pass each; every round over them advances, whatever
/// they hold.
#pragma once

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace ORLFoundation {

class NSCharacterSet;

/// Names of tags, in order.
using ORLFTagNames = std::set<std::string, std::less<>>;

/// `orlfXMLStringConvertEndTagNameCharacterSet`  White space, line ends and >.
[[nodiscard]] const std::shared_ptr<NSCharacterSet>& orlfXMLStringConvertEndTagNameCharacterSet();

/// `orlfXMLStringConvertBuildOrphanedTagSet`  The names whose last tag in the text is a start tag
/// that is not closed by itself. A name begins with a letter, a colon or an underscore;
/// declarations and comments have none.
[[nodiscard]] ORLFTagNames orlfXMLStringConvertBuildOrphanedTagSet(std::string_view string);

/// `orlfXMLStringFromSGMLStringByFixingOrphanTags:`  The text with an end tag for each orphan, put
/// before the line breaks that end its text, unless that very tag follows. Text behind the first
/// tag is unescaped and escaped again: bare ampersands become entities, and control characters,
/// line breaks among them, go. An orphan that is the last thing in the text gets no end tag; a tag
/// that the text's end cuts off gets its >.
[[nodiscard]] std::string orlfXMLStringFromSGMLStringByFixingOrphanTags(std::string_view string,
                                                                        const ORLFTagNames& tags);

/// `orlfXMLStringConvertedFromSGMLStringError:`  Both of these in a row.
[[nodiscard]] std::string orlfXMLStringConvertedFromSGMLString(std::string_view string,
                                                               NSErrorSlot error = nullptr);

/// `orlfXMLDataWithSGMLString:error:`  What stands before the first < goes; the rest is converted
/// and given as UTF-8. nil for nil, and for a text without any <.
[[nodiscard]] std::optional<NSData> orlfXMLDataWithSGMLString(
    std::optional<std::string_view> string, NSErrorSlot error = nullptr);

/// `orlfXMLDataConvertedFromSGMLEncoding:error:`  The same for a text in the encoding of that
/// number (`NSStringEncoding`); nil for bytes that it cannot hold.
[[nodiscard]] std::optional<NSData> orlfXMLDataConvertedFromSGMLEncoding(
    const NSData& data, NSUInteger encoding, NSErrorSlot error = nullptr);

}  // namespace ORLFoundation

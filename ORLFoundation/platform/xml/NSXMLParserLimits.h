/// How much of a document a parser takes before it stops with an error. A document from outside may
/// be made to nest or to expand without end; these bounds hold whatever it says, and a host that
/// knows better raises them, for one parser or for all:
///
///     auto limits = NSXMLParserCurrentLimits();
///     limits.elementDepth = 100'000;
///     NSSetXMLParserLimits(limits);
#pragma once

#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

struct NSXMLParserLimits {
  /// Open elements at one time.
  NSUInteger elementDepth = 2048;
  /// Bytes of UTF-8 that the entities of a document may be replaced by, all references together,
  /// those inside of other entities too, and what default attributes add to tags beyond a little.
  NSUInteger entityExpansion = 1'000'000;
  /// Bytes of UTF-8 of one attribute's value, of one text between two tags, and of markup that has
  /// not come to its end.
  NSUInteger textLength = 10'000'000;
  /// Bytes that the different names of a document take up together, as libxml2 sets them aside: the
  /// time that a name takes grows with their number.
  NSUInteger namesLength = 1'000'000;
  /// Attributes of one tag and namespaces of all open elements together, and attributes for which
  /// the document's DTD gives one element a default: libxml2 compares each with each.
  NSUInteger attributeCount = 1000;
  /// Bytes of UTF-8 of the document's own DTD, of which libxml2 compares each word of a declaration
  /// with all others. A DTD, a comment and the like may be a little longer by how they come in.
  NSUInteger declarationsLength = 100'000;
};

/// The limits of parsers that were given none.
[[nodiscard]] NSXMLParserLimits NSXMLParserCurrentLimits();
/// Replaces them for the whole process and gives back the ones before. Parsers that exist already
/// keep theirs. Safe on any thread.
NSXMLParserLimits NSSetXMLParserLimits(NSXMLParserLimits limits);

}  // namespace ORLFoundation

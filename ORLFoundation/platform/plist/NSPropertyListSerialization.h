/// Property lists to bytes and back: texts, numbers, dates, data, arrays and dictionaries with text
/// keys, as XML or in the binary form.
///
///     auto bytes = NSPropertyListSerialization::dataWithPropertyList(
///         NSDictionary::dictionaryWithEntries({{"name", "Cash"}, {"cents", 1250}}),
///         NSPropertyListXMLFormat_v1_0, 0, &error);
///     id list = NSPropertyListSerialization::propertyListWithData(*bytes, 0, nullptr, &error);
///
/// What is read need not be trusted: a list that is damaged, holds itself, is nested deeper than
/// 512 containers or claims more than it has gives nil and an error, in time and memory that its
/// length bounds. Any thread.
#pragma once

#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>

#include <optional>

namespace ORLFoundation {

enum NSPropertyListFormat : NSUInteger {
  NSPropertyListOpenStepFormat = 1,  ///< The old text form, neither read nor written.
  NSPropertyListXMLFormat_v1_0 = 100,
  NSPropertyListBinaryFormat_v1_0 = 200,
};

/// What is made mutable in a list that is read.
enum NSPropertyListMutabilityOptions : NSUInteger {
  NSPropertyListImmutable = 0,
  NSPropertyListMutableContainers = 1,
  NSPropertyListMutableContainersAndLeaves = 2,  ///< The same here: texts and data are values.
};

/// Codes in `NSCocoaErrorDomain`.
inline constexpr NSInteger NSPropertyListReadCorruptError = 3840;
inline constexpr NSInteger NSPropertyListReadUnknownVersionError = 3841;
inline constexpr NSInteger NSPropertyListWriteInvalidError = 3852;

class NSPropertyListSerialization {
 public:
  /// `propertyListWithData:options:format:error:`  The list, with its form in `format` where that
  /// is wanted. Numbers are boolean, signed, unsigned (from 2^63 on) or double. References of an
  /// archive are `NSPropertyListUID`; in XML, so is any dictionary whose one entry is `CF$UID` with
  /// a number. Of a key that comes twice the last value counts. Half a surrogate pair in a text is
  /// read as U+FFFD. Members that a binary list shares are one object. nil on failure.
  [[nodiscard]] static id propertyListWithData(const NSData& data, NSUInteger options,
                                               NSPropertyListFormat* format = nullptr,
                                               NSErrorSlot error = nullptr);
  /// `dataWithPropertyList:format:options:error:`  Decimals are written as the nearest double. XML
  /// drops fractions of a second and cannot hold control characters. nil for values that a list
  /// cannot hold (nil, sets, objects), for collections that hold themselves, and for other formats.
  [[nodiscard]] static std::optional<NSData> dataWithPropertyList(const id& propertyList,
                                                                  NSPropertyListFormat format,
                                                                  NSUInteger options,
                                                                  NSErrorSlot error = nullptr);
  /// `propertyList:isValidForFormat:`  Whether `dataWithPropertyList` would succeed.
  [[nodiscard]] static bool propertyListIsValidForFormat(const id& propertyList,
                                                         NSPropertyListFormat format);
};

}  // namespace ORLFoundation

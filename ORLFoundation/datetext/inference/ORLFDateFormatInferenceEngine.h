/// Finds the order of day, month and year in a file's dates. Nothing says which number of 03/04/21
/// is the day, but the dates of a whole file leave few ways to read them all: each crosses out what
/// its three numbers cannot be.
///
///     ORLFDateFormatInferenceEngine engine;
///     for (const char* text : {"03/04/21", "03/13/21"}) engine.processDateString(text);
///     const NSInteger format = engine.possibleDateFormats().front();  // 2: month, day, year
///     engine.dateFromString("03/04/21", format);                      // the 4th of March
///
/// The formats are numbers; 0 stands for none.
///
/// | Format | Order            | Bits |     | Place  | Day | Month | Year |
/// |--------|------------------|------|     |--------|-----|-------|------|
/// | 1      | day, month, year | 273  |     | first  | 1   | 2     | 4    |
/// | 2      | month, day, year | 266  |     | second | 8   | 16    | 32   |
/// | 3      | year, month, day | 84   |     | third  | 64  | 128   | 256  |
/// | 4      | year, day, month | 140  |
/// | 5      | month, year, day | 98   |
/// | 6      | day, year, month | 161  |
///
/// An engine is for one thread at a time; the set of the class has a lock.
#pragma once

#include <ORLFoundation/platform/object/NSObject.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>
#include <ORLFoundation/platform/time/NSCalendar.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSTypes.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {

class ORLFDateFormatInferenceEngine : public NSObject {
 public:
  /// `init`
  ORLFDateFormatInferenceEngine();

  /// `perferedDateFormats` of the class: the formats that engines without a set of their own
  /// favour, 1, 2 and 3 at first.
  [[nodiscard]] static std::shared_ptr<NSSet> classPerferedDateFormats();
  /// `setPerferedDateFormats:` of the class. Held as a copy; nil makes it 1, 2 and 3 again.
  static void setClassPerferedDateFormats(const std::shared_ptr<NSSet>& formats);

  /// `reset`  Opens all roles again.
  void reset();
  /// `processDateString:`  Whether the text holds three numbers, which then narrow `bits`.
  bool processDateString(std::string_view string);
  /// `processDateComponent1:component2:component3:`  Narrows `bits` by three numbers: any can be
  /// a year, one below 32 but 0 a day, one below 13 but 0 a month. A place with one role left takes
  /// it from the others, a role with one place left takes that place. Numbers that contradict each
  /// other can leave a place without a role, and no format. Bits beyond 511 are dropped.
  void processDateComponent1(NSInteger component1, NSInteger component2, NSInteger component3);
  /// `possibleDateFormats`  The favoured formats of those that remain, ascending; where none of
  /// them is favoured, all that remain. Members of the favoured set that are no format count for
  /// nothing.
  [[nodiscard]] std::vector<NSInteger> possibleDateFormats() const;

  /// `parseDate:componentsNumber1:number2:number3:`  The three numbers of a text, parted by its
  /// first two separators; what follows the third is passed over. Each is read as `integerValue`
  /// reads it, 0 without digits of ASCII; a negative one stands as its pattern of 64 bits. Behind a
  /// separator of this century a third number below 100 counts from 2000. false, and the outputs
  /// left alone, with less than two separators; false with the outputs written where a part holds
  /// no digit. An output may be left out (nullptr).
  bool parseDate(std::string_view text, NSUInteger* componentsNumber1, NSUInteger* number2,
                 NSUInteger* number3) const;
  /// `buildDateWithComponentsNumber1:number2:number3:withFormat:`  The start of the day in
  /// `dateParsingCalendar`. A year up to 100 lies in the century of `currentYear` when it is at
  /// most one above its last two digits, else in the century before. nil for years from 101 to 999,
  /// for a day, month or year of 0, and for an unknown format. 31 February rolls over into March.
  std::optional<NSDate> buildDateWithComponentsNumber1(NSUInteger number1, NSUInteger number2,
                                                       NSUInteger number3, NSInteger withFormat);
  /// `dateInferredFromString:`  The date of one text under the first format that the dates so far
  /// and this one leave: day before month where both fit. `bits` stays as it is. nil for a text
  /// without three numbers, and where no format remains.
  std::optional<NSDate> dateInferredFromString(std::string_view string);
  /// `dateFromString:withInferenceFormat:`  nil for a text without three numbers.
  std::optional<NSDate> dateFromString(std::string_view string, NSInteger withInferenceFormat);

  /// Characters between the parts of a date, "/: -." at first. Held as a copy; nil is no character.
  [[nodiscard]] const std::shared_ptr<NSCharacterSet>& dateSeperatorCharacterSet() const noexcept {
    return dateSeperatorCharacterSet_;
  }
  void setDateSeperatorCharacterSet(std::shared_ptr<NSCharacterSet> set);
  /// Separators that mark a year of this century, "'" at first: 3/4'21. Held as a copy; nil is no
  /// character.
  [[nodiscard]] const std::shared_ptr<NSCharacterSet>& dateY2KSeperatorCharacterSet()
      const noexcept {
    return dateY2KSeperatorCharacterSet_;
  }
  void setDateY2KSeperatorCharacterSet(std::shared_ptr<NSCharacterSet> set);
  /// What parts a date: the characters of both sets. One that is set by hand holds until either of
  /// the two is set to another object, or `updateAllDateSeperatorCharacterSet` is called.
  [[nodiscard]] const std::shared_ptr<NSCharacterSet>& allDateSeperatorCharacterSet()
      const noexcept {
    return allDateSeperatorCharacterSet_;
  }
  void setAllDateSeperatorCharacterSet(std::shared_ptr<NSCharacterSet> set);
  /// `updateAllDateSeperatorCharacterSet`
  void updateAllDateSeperatorCharacterSet();

  /// The formats to favour, held as a copy; nil, as at first, for those of the class.
  [[nodiscard]] const std::shared_ptr<NSSet>& perferedDateFormats() const noexcept {
    return perferedDateFormats_;
  }
  void setPerferedDateFormats(const std::shared_ptr<NSSet>& formats);
  /// The roles still open, 511 at first.
  [[nodiscard]] NSInteger bits() const noexcept { return bits_; }
  void setBits(NSInteger bits);
  /// The year that years of two digits are read by. 0, as at first, is replaced at the first need
  /// by the year of `dateParsingCalendar`'s current date.
  [[nodiscard]] NSUInteger currentYear() const noexcept { return currentYear_; }
  void setCurrentYear(NSUInteger year);
  /// A Gregorian one in the default zone at first; with nil there are no dates.
  [[nodiscard]] const std::shared_ptr<NSCalendar>& dateParsingCalendar() const noexcept {
    return dateParsingCalendar_;
  }
  void setDateParsingCalendar(std::shared_ptr<NSCalendar> calendar);

  [[nodiscard]] std::string className() const override { return "ORLFDateFormatInferenceEngine"; }
  [[nodiscard]] const NSKeyTable& keyTable() const override;

 private:
  [[nodiscard]] std::vector<NSInteger> formatsOfRoles(NSInteger bits) const;
  [[nodiscard]] NSUInteger fullYear(NSUInteger shortYear) const noexcept;

  std::shared_ptr<NSCharacterSet> dateSeperatorCharacterSet_;
  std::shared_ptr<NSCharacterSet> dateY2KSeperatorCharacterSet_;
  std::shared_ptr<NSSet> perferedDateFormats_;
  NSInteger bits_;
  NSUInteger currentYear_ = 0;
  std::shared_ptr<NSCalendar> dateParsingCalendar_;
  std::shared_ptr<NSCharacterSet> allDateSeperatorCharacterSet_;
};

}  // namespace ORLFoundation

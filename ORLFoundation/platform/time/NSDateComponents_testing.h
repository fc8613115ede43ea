/// Components in the forms that vector files write them, both ways. What cannot be read throws,
/// which fails the row.
#pragma once

#include <ORLFoundation/platform/time/NSDateComponents.h>
#include <tests/support/VectorFile.h>
#include <tests/support/VectorText.h>

#include <algorithm>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>

namespace orlftest {
namespace vectors {

struct NamedUnit {
  const char* name;
  ORLFoundation::NSCalendarUnit unit;
};

/// From era to yearForWeekOfYear, in the order in which the files write them.
inline constexpr NamedUnit kUnits[] = {
    {"era", ORLFoundation::NSCalendarUnitEra},
    {"year", ORLFoundation::NSCalendarUnitYear},
    {"quarter", ORLFoundation::NSCalendarUnitQuarter},
    {"month", ORLFoundation::NSCalendarUnitMonth},
    {"weekOfYear", ORLFoundation::NSCalendarUnitWeekOfYear},
    {"weekOfMonth", ORLFoundation::NSCalendarUnitWeekOfMonth},
    {"weekday", ORLFoundation::NSCalendarUnitWeekday},
    {"weekdayOrdinal", ORLFoundation::NSCalendarUnitWeekdayOrdinal},
    {"day", ORLFoundation::NSCalendarUnitDay},
    {"hour", ORLFoundation::NSCalendarUnitHour},
    {"minute", ORLFoundation::NSCalendarUnitMinute},
    {"second", ORLFoundation::NSCalendarUnitSecond},
    {"nanosecond", ORLFoundation::NSCalendarUnitNanosecond},
    {"yearForWeekOfYear", ORLFoundation::NSCalendarUnitYearForWeekOfYear},
};

inline void setNamed(ORLFoundation::NSDateComponents& components, const std::string& name,
                     ORLFoundation::NSInteger value) {
  const auto* const found = std::find_if(std::begin(kUnits), std::end(kUnits),
                                         [&](const NamedUnit& unit) { return unit.name == name; });
  if (found == std::end(kUnits)) unreadable("component", name);
  components.setValueForComponent(value, found->unit);
}

}  // namespace vectors

/// "year=2024 month=1 day=31", or the same as a JSON object; fields not named stay unset.
inline ORLFoundation::NSDateComponents componentsFromVector(const std::string& text) {
  ORLFoundation::NSDateComponents components;
  std::istringstream fields(text);
  for (std::string field; fields >> field;) {
    const std::size_t mark = field.find('=');
    if (mark == std::string::npos) vectors::unreadable("components", text);
    const auto value = vectors::parsed<ORLFoundation::NSInteger>(
        "components", std::string_view(field).substr(mark + 1), text);
    vectors::setNamed(components, field.substr(0, mark), value);
  }
  return components;
}

inline ORLFoundation::NSDateComponents componentsFromVector(const char* text) {
  return componentsFromVector(std::string(text));
}

inline ORLFoundation::NSDateComponents componentsFromVector(const Json& object) {
  ORLFoundation::NSDateComponents components;
  for (const auto& item : object.items())
    vectors::setNamed(components, item.key(), item.value().get<ORLFoundation::NSInteger>());
  return components;
}

/// The set fields.
inline std::string vectorFromComponents(const ORLFoundation::NSDateComponents& components) {
  std::string text;
  for (const vectors::NamedUnit& unit : vectors::kUnits) {
    const ORLFoundation::NSInteger value = components.valueForComponent(unit.unit);
    if (value == ORLFoundation::NSDateComponentUndefined) continue;
    if (!text.empty()) text += ' ';
    text += std::string(unit.name) + '=' + std::to_string(value);
  }
  return text;
}

/// "" when equal, else "expected X, got Y".
inline std::string disagreement(const ORLFoundation::NSDateComponents& expected,
                                const ORLFoundation::NSDateComponents& actual) {
  if (expected == actual) return {};
  return "expected " + vectorFromComponents(expected) + ", got " + vectorFromComponents(actual);
}

}  // namespace orlftest

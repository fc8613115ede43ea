#include "dates/dates_notes.h"

#include <ORLFoundation/calendar/ORLFDateOrdering.h>

#include <optional>

#include "cli/message_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// Those of a list that are counted from an end, which no walk finds: "days -1 and -2 of the
/// month".
std::string countedFromTheEnd(const ORLFDateRecurrenceRule::Integers& numbers, const char* what,
                              const char* whole) {
  std::vector<std::string> found;
  for (const NSInteger number : numbers.value_or(std::vector<NSInteger>()))
    if (number < 0) found.push_back(std::to_string(number));
  if (found.empty()) return "";
  return what + std::string(found.size() == 1 ? " " : "s ") + joinedWithAnd(found) + " of the " +
         whole;
}

/// What of the rule can never match; empty for nothing.
std::string neverMatching(const ORLFDateRecurrenceRule& rule) {
  std::vector<std::string> found;
  for (const std::string& text : {countedFromTheEnd(rule.daysOfTheMonth(), "day", "month"),
                                  countedFromTheEnd(rule.daysOfTheYear(), "day", "year"),
                                  countedFromTheEnd(rule.weeksOfTheYear(), "week", "year")})
    if (!text.empty()) found.push_back(text);
  return found.empty() ? "" : joinedWithAnd(found) + " can never match";
}

/// The bounds leave no time between them.
std::optional<std::string> crossedBounds(const DatesRequest& request) {
  if (request.asksForRange() && orlfIsAfter(*request.from, *request.to))
    return "--from lies after --to";
  if (request.until && !request.backwards && orlfIsAfter(request.start, request.until->date))
    return "--until lies before --start";
  if (request.until && request.backwards && orlfIsAfter(request.until->date, request.start))
    return "--until lies after --start";
  const NSDate first = request.asksForRange() ? *request.from : request.start;
  if (request.ruleEnd && !request.backwards && orlfIsAfter(first, request.ruleEnd->date))
    return "the rule's UNTIL lies before the first date asked for";
  return std::nullopt;
}

std::string whyNoDate(const DatesRequest& request) {
  if (const auto why = crossedBounds(request)) return "no date matches: " + *why;
  const std::string never = neverMatching(*request.rule);
  const bool isOfMonth = never.find("of the month") != std::string::npos;
  const std::string hint = isOfMonth ? "; for a month's last day use --by-weekday=-1day" : "";
  if (never == "day -1 of the month can never match") return "no date matches" + hint;
  if (!never.empty()) return "no date matches: " + never + hint;
  if (request.asksForRange()) return "no date of the rule lies between --from and --to";
  if (request.until) return "no date of the rule lies between --start and --until";
  return "no date matches the rule";
}

}  // namespace

std::vector<std::string> notesOnDates(const DatesRequest& request, bool areNone) {
  std::vector<std::string> notes;
  const std::vector<std::string>& keys = request.passedOver;
  if (!keys.empty())
    notes.push_back("--rule: " + joinedWithAnd(keys) +
                    (keys.size() == 1 ? " is passed over" : " are passed over"));
  const std::string never = neverMatching(*request.rule);
  if (areNone) {
    notes.push_back(whyNoDate(request));
  } else if (!never.empty()) {
    notes.push_back(never);
  }
  return notes;
}

}  // namespace orlftool

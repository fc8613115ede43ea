#include "dates/dates_request.h"

#include <algorithm>

#include "cli/failure.h"
#include "dates/rule_text.h"
#include "values/date_text.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kDefaultCount = 20, kMostDates = 1000000;

struct GivenOption {
  bool isGiven;
  const char* name;
};

void refuseTogether(const GivenOption& first, const GivenOption& second) {
  if (first.isGiven && second.isGiven)
    throw UsageFailure(std::string(first.name) + " does not go together with " + second.name);
}

void checkCombinations(const DatesArguments& arguments) {
  const GivenOption range{arguments.from || arguments.to, "--from"},
      older{arguments.older, "--older"}, exact{arguments.exact, "--exact"},
      until{arguments.until.has_value(), "--until"}, backwards{arguments.backwards, "--backwards"},
      reference{arguments.reference.has_value(), "--reference"};
  if (arguments.from.has_value() != arguments.to.has_value())
    throw UsageFailure("--from and --to are given together or not at all");
  for (const GivenOption& other : {until, backwards, exact, older}) refuseTogether(range, other);
  refuseTogether(older, exact);
  refuseTogether(reference, exact);
  if (arguments.inclusive && !range.isGiven && !until.isGiven)
    throw UsageFailure("--inclusive needs --to or --until");
  for (const GivenOption& ofOlder : {GivenOption{!arguments.setPositions.empty(), "--set-pos"},
                                     GivenOption{arguments.anchor.has_value(), "--anchor"},
                                     GivenOption{arguments.absolute, "--absolute"}})
    if (ofOlder.isGiven && !arguments.older)
      throw UsageFailure(std::string(ofOlder.name) + " needs --older");
}

/// "20241231" or "20241231T235959Z", with dashes and colons put in; empty for other text.
std::string isoText(const std::string& until) {
  constexpr std::size_t kDay = 8, kTime = 15;
  const bool hasTime = until.size() >= kTime && until[kDay] == 'T';
  const bool hasZone = until.size() == kTime + 1 && until.back() == 'Z';
  if (until.find('-') != std::string::npos) return "";
  if (until.size() != kDay && !(hasTime && (until.size() == kTime || hasZone))) return "";
  std::string text = until.substr(0, 4) + '-' + until.substr(4, 2) + '-' + until.substr(6, 2);
  if (hasTime)
    text += 'T' + until.substr(9, 2) + ':' + until.substr(11, 2) + ':' + until.substr(13);
  return text;
}

/// A day counts to its end, a time counts itself.
DateBound readRuleEnd(const std::string& until, const NSCalendar& calendar) {
  const std::optional<NSDate> date = readDate(isoText(until), calendar);
  if (!date)
    throw UsageFailure(
        "--rule: UNTIL: expected a date such as 20241231 or 20241231T235959Z, got '" + until + "'");
  if (until.find('T') != std::string::npos) return {*date, true};
  return {calendar.dateByAddingUnit(NSCalendarUnitDay, 1, *date, 0).value_or(*date), false};
}

/// What the text says beside its rule. A count is one from the start on.
void takeRuleText(const DatesArguments& arguments, DatesRequest& request) {
  const RuleText text = readRuleText(*arguments.rule, "--rule");
  const GivenOption count{text.count.has_value(), "COUNT"};
  for (const GivenOption& other : {GivenOption{arguments.from.has_value(), "--from"},
                                   GivenOption{arguments.backwards, "--backwards"},
                                   GivenOption{arguments.reference.has_value(), "--reference"}})
    refuseTogether(count, other);
  if (text.count) request.count = std::min(*text.count, request.count.value_or(*text.count));
  if (text.until) request.ruleEnd = readRuleEnd(*text.until, *request.calendar);
  request.passedOver = text.passedOver;
}

void readDates(const DatesArguments& arguments, DatesRequest& request) {
  const auto date = [&](std::string_view option, const std::optional<std::string>& text) {
    return text ? std::optional(readDateOption(option, *text, *request.calendar)) : std::nullopt;
  };
  request.start = readDateOption("--start", arguments.start, *request.calendar);
  request.from = date("--from", arguments.from);
  request.to = date("--to", arguments.to);
  request.reference = date("--reference", arguments.reference);
  if (const auto until = date("--until", arguments.until))
    request.until = DateBound{*until, arguments.inclusive};
}

}  // namespace

DatesRequest readDatesRequest(const DatesArguments& arguments,
                              std::shared_ptr<NSCalendar> calendar) {
  checkCombinations(arguments);
  DatesRequest request;
  request.calendar = std::move(calendar);
  if (arguments.count)
    request.count = readWholeArgument("--count", *arguments.count, 1, kMostDates);
  request.rule = readRule(arguments, "--rule");
  readDates(arguments, request);
  if (arguments.rule) takeRuleText(arguments, request);
  request.inclusive = arguments.inclusive;
  if (!request.count && !request.until && !request.from && !request.ruleEnd)
    request.count = kDefaultCount;
  request.backwards = arguments.backwards;
  request.exact = arguments.exact;
  request.older = arguments.older;
  return request;
}

}  // namespace orlftool



#include "dates/dates_request.h"

#include "cli/failure.h"
#include "cli/option_checks.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::int64_t kDefaultCount = 20, kMostDates = 1000000;

void checkCombinations(const DatesArguments& arguments) {
  const bool range = arguments.from || arguments.to;
  if (arguments.from.has_value() != arguments.to.has_value())
    throw UsageFailure("--from and --to are given together or not at all");
  refuseTogether(range, "--from", arguments.until.has_value(), "--until");
  refuseTogether(range, "--from", arguments.backwards, "--backwards");
  refuseTogether(range, "--from", arguments.exact, "--exact");
  refuseTogether(range, "--from", arguments.older, "--older");
  refuseTogether(arguments.older, "--older", arguments.exact, "--exact");
  refuseTogether(arguments.reference.has_value(), "--reference", arguments.exact, "--exact");
  if (arguments.inclusive && !range && !arguments.until)
    throw UsageFailure("--inclusive needs --to or --until");
}

}  // namespace

DatesRequest readDatesRequest(const DatesArguments& arguments,
                              std::shared_ptr<NSCalendar> calendar) {
  checkCombinations(arguments);
  if (arguments.count) checkRange("--count", *arguments.count, 1, kMostDates);
  const auto date = [&](std::string_view option, const std::optional<std::string>& text) {
    return text ? std::optional(readDateOption(option, *text, *calendar)) : std::nullopt;
  };
  DatesRequest request;
  request.rule = readRule(arguments, "--rule");
  if (arguments.rule) checkNumbersOfText(*request.rule, "--rule");
  request.start = readDateOption("--start", arguments.start, *calendar);
  request.from = date("--from", arguments.from);
  request.to = date("--to", arguments.to);
  request.reference = date("--reference", arguments.reference);
  request.until = date("--until", arguments.until);
  request.inclusive = arguments.inclusive;
  request.count = arguments.count;
  if (!request.count && !request.until && !request.from) request.count = kDefaultCount;
  request.backwards = arguments.backwards;
  request.exact = arguments.exact;
  request.older = arguments.older;
  request.calendar = std::move(calendar);
  return request;
}

}  // namespace orlftool

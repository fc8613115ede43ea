#include <ORLFoundation/datetext/entry/ORLFDateFormatter.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/object/Id.h>
#include <ORLFoundation/platform/object/NSDictionary.h>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "cli/scoped_locale.h"
#include "cli/scoped_zone.h"
#include "commands.h"
#include "io/text_lines.h"
#include "session.h"
#include "values/date_text.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct DateArguments {
  std::vector<std::string> texts;
  std::optional<std::string> today;
};

/// Text of the error's user information, empty where there is none.
std::string textUnder(const NSError& error, std::string_view key) {
  return error.userInfo()->objectForKey(key).as<std::string>().value_or("");
}

void printDate(Session& session, Json& rows, const std::string& text,
               const ORLFDateFormatter& formatter) {
  std::optional<NSDate> date;
  std::shared_ptr<const NSError> error;
  formatter.getObjectValue(&date, text, nullptr, &error);
  if (!date) session.exitCode = kExitFailedJob;
  const std::string description = error ? textUnder(*error, NSLocalizedDescriptionKey) : "";
  const std::string suggestion =
      error ? textUnder(*error, NSLocalizedRecoverySuggestionErrorKey) : "";
  if (!session.options.json) {
    session.out << (date ? shortDateText(*date, *session.calendar)
                         : oneLine(suggestion.empty() ? description
                                                      : description + ": " + suggestion))
                << '\n';
    return;
  }
  rows.push_back({{"text", text}, {"date", nullptr}});
  if (date) {
    rows.back()["date"] = shortDateText(*date, *session.calendar);
  } else {
    rows.back()["description"] = description;
    rows.back()["suggestion"] = suggestion;
  }
}

void printDates(Session& session, const DateArguments& arguments) {
  const NSDate today = arguments.today
                           ? readDateOption("--today", *arguments.today, *session.calendar)
                           : NSDate::date();
  const std::vector<std::string> texts = textsOfWords(arguments.texts);
  if (texts.empty()) throw JobFailure("the input holds no line");
  const ScopedLocale locale(session.options.locale);
  const ScopedZone zone(session.calendar->timeZone());
  const Replaced<std::function<NSDate()>> clock(NSDate::setClock, [today] { return today; });
  const ORLFDateFormatter formatter;
  Json rows = Json::array();
  for (const std::string& text : texts) printDate(session, rows, text, formatter);
  if (session.options.json) printJson(session.out, rows);
}

}  // namespace

Job declareDateCommand(Options& options) {
  options.describe(
      "Read dates as people type them in the locale ('2/13/21', 'Feb 3, 2021', '5', '3/4') and\n"
      "print each as 2021-02-13, or why it is none; then the command ends with 1. What a text "
      "does\n"
      "not tell is today's. - stands for the lines of the standard input; put -- before texts "
      "that\n"
      "begin with a dash.");
  auto arguments = std::make_shared<DateArguments>();
  options.requiredList("TEXT", arguments->texts, "Typed dates, or -");
  options.text("--today", arguments->today, "The current date");
  return [arguments](Session& session) { printDates(session, *arguments); };
}

}  // namespace orlftool

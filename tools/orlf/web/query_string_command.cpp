#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/object/NSSet.h>
#include <ORLFoundation/web/agent/ORLFDictionaryQueryString.h>

#include <algorithm>
#include <memory>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "cli/table.h"
#include "commands.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct QueryArguments {
  std::string action;
  std::vector<std::string> texts;
  bool escapesPlus = false, joinsWithCommas = false;
};

/// The values of an entry, several where the key came more than once.
std::vector<std::string> valuesOf(const id& value) {
  std::vector<std::string> texts;
  if (const auto set = value.as<NSSet>()) {
    for (const id& member : set->allObjects()) texts.push_back(member.description());
  } else {
    texts.push_back(value.description());
  }
  return texts;
}

std::size_t droppedParts(std::string_view query) {
  std::size_t dropped = 0;
  while (!query.empty()) {
    const std::string_view part = query.substr(0, query.find('&'));
    query.remove_prefix(std::min(query.size(), part.size() + 1));
    if (!part.empty() && orlfDictionaryWithURLQueryString(part)->count() == 0) ++dropped;
  }
  return dropped;
}

void parseQuery(Session& session, const QueryArguments& arguments) {
  if (arguments.texts.size() != 1)
    throw UsageFailure("TEXT: parse takes one query, got " +
                       std::to_string(arguments.texts.size()));
  if (arguments.escapesPlus || arguments.joinsWithCommas)
    throw UsageFailure("--escape-plus and --join-commas go with make, not with parse");
  std::string_view query = arguments.texts.front();
  if (query.starts_with('?')) query.remove_prefix(1);
  const auto entries = orlfDictionaryWithURLQueryString(query)->entries();
  const std::size_t dropped = droppedParts(query);
  if (session.options.json) {
    Json object = Json::object();
    for (const auto& [key, value] : entries) {
      const auto values = valuesOf(value);
      object[key.description()] = value.as<NSSet>() ? Json(values) : Json(values.front());
    }
    printJson(session.out, object);
  } else {
    Table table({{"Key"}, {"Value"}});
    for (const auto& [key, value] : entries)
      for (const std::string& text : valuesOf(value))
        table.addRow({oneLine(key.description()), oneLine(text)});
    table.print(session.out);
  }
  if (dropped > 0) {
    printNote(session,
              std::to_string(dropped) +
                  " of the parts left out: without '=', or with an escape that stands for no text");
  } else if (entries.empty()) {
    printNote(session, "the query is empty");
  }
}

/// Repeated keys become arrays.
std::shared_ptr<NSDictionary> dictionaryOf(const std::vector<std::string>& texts) {
  const auto dictionary = std::make_shared<NSMutableDictionary>();
  for (const std::string& text : texts) {
    const std::size_t sign = text.find('=');
    if (sign == std::string::npos)
      throw UsageFailure("TEXT: expected KEY=VALUE, got " + quotedForMessage(text));
    const std::string key = text.substr(0, sign);
    auto values = dictionary->objectForKey(key).as<NSMutableArray>();
    if (!values) dictionary->setObject(values = std::make_shared<NSMutableArray>(), key);
    values->addObject(text.substr(sign + 1));
  }
  return dictionary;
}

/// Whether a value that is joined behind others would follow without a comma.
bool repeatsFirstValue(const NSDictionary& dictionary) {
  return std::ranges::any_of(dictionary.entries(), [](const auto& entry) {
    const auto values = entry.second.template as<NSArray>()->members();
    return std::ranges::count(values, values.front()) > 1;
  });
}

bool holdsSigns(const std::vector<std::string>& texts) {
  return std::ranges::any_of(
      texts, [](const std::string& text) { return text.find('&') != std::string::npos; });
}

void makeQuery(Session& session, const QueryArguments& arguments) {
  const NSUInteger options =
      (arguments.escapesPlus ? ORLFURLQueryStringEscapesPlus : NSUInteger{0}) |
      (arguments.joinsWithCommas ? ORLFURLQueryStringJoinsWithCommas : NSUInteger{0});
  const auto dictionary = dictionaryOf(arguments.texts);
  const std::string query = orlfURLQueryStringWithOptions(*dictionary, options);
  if (session.options.json) {
    printJson(session.out, {{"query", query}});
  } else {
    session.out << query << '\n';
  }
  if (holdsSigns(arguments.texts))
    printNote(session, "'&' stays as it is in a query, so this one is read back otherwise");
  if (arguments.joinsWithCommas && repeatsFirstValue(*dictionary))
    printNote(session, "a value that comes again behind the first one has no comma before it");
}

void runQuery(Session& session, const QueryArguments& arguments) {
  for (const std::string& text : arguments.texts)
    if (!internal::base::isUTF8(text))
      throw UsageFailure("TEXT: expected UTF-8, got " + quotedForMessage(text));
  if (arguments.action == "parse") return parseQuery(session, arguments);
  if (arguments.action == "make") return makeQuery(session, arguments);
  throw UsageFailure("ACTION: expected parse or make, got " + quotedForMessage(arguments.action));
}

}  // namespace

Job declareQueryStringCommand(Options& options) {
  options.describe(
      "Take the query of an address apart, or put one together.\n"
      "  parse  prints the keys and values of a query; '+' stays\n"
      "  make   prints the query of KEY=VALUE texts, by ascending keys");
  auto arguments = std::make_shared<QueryArguments>();
  options.required("ACTION", arguments->action, "parse or make");
  options.requiredList("TEXT", arguments->texts, "A query, or KEY=VALUE texts");
  options.flag("--escape-plus", arguments->escapesPlus,
               "Escape '+', which servers read as a blank");
  options.flag("--join-commas", arguments->joinsWithCommas,
               "Put the values of one key into one part, with commas between them");
  return [arguments](Session& session) { runQuery(session, *arguments); };
}

}  // namespace orlftool

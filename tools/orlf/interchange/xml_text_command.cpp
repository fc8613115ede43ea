#include <ORLFoundation/interchange/sgml/ORLFXMLEntities.h>
#include <ORLFoundation/platform/base/UTF8.h>
#include <ORLFoundation/platform/text/NSCharacterSet.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/json_output.h"
#include "commands.h"
#include "io/text_input.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

using Change = std::string (*)(std::string_view);

/// A text of the command line; "-" stands for all that the standard input holds.
std::string textOf(const std::string& word) {
  return word == "-" ? readWholeText(word, std::nullopt) : word;
}

/// Those that escaping removes.
std::size_t countRemovedCharacters(std::string_view text) {
  const NSCharacterSet& controls = *NSCharacterSet::controlCharacterSet();
  const NSCharacterSet& illegal = *NSCharacterSet::illegalCharacterSet();
  std::size_t count = 0;
  while (!text.empty()) {
    const internal::base::UTF8Character character = internal::base::firstUTF8Character(text);
    if (controls.longCharacterIsMember(character.codePoint) ||
        illegal.longCharacterIsMember(character.codePoint))
      ++count;
    text.remove_prefix(character.length);
  }
  return count;
}

void printChanged(Session& session, const std::vector<std::string>& texts, Change change) {
  Json rows = Json::array();
  for (const std::string& text : texts) {
    const std::string result = change(text);
    if (session.options.json) {
      rows.push_back({{"text", text}, {"result", result}});
    } else {
      session.out << result << '\n';
    }
  }
  if (session.options.json) printJson(session.out, rows);
}

std::vector<std::string> textsOf(const std::vector<std::string>& words) {
  std::vector<std::string> texts;
  std::transform(words.begin(), words.end(), std::back_inserter(texts), textOf);
  return texts;
}

void printEscaped(Session& session, const std::vector<std::string>& words) {
  const std::vector<std::string> texts = textsOf(words);
  printChanged(session, texts, &orlfStringByEscapingStandardXMLEntities);
  std::size_t removed = 0;
  for (const std::string& text : texts) removed += countRemovedCharacters(text);
  if (removed == 0) return;
  printNote(session, std::to_string(removed) + " control or unassigned character" +
                         (removed == 1 ? " was" : "s were") +
                         " left out; tabs and line ends are among them");
}

}  // namespace

Job declareXmlEscapeCommand(Options& options) {
  options.describe(
      "Print texts with entities for &, <, > and the quotation mark, a line for each. Control\n"
      "characters go, tabs and line ends among them. - stands for the standard input; put -- "
      "before\n"
      "texts that begin with a dash.");
  auto words = std::make_shared<std::vector<std::string>>();
  options.requiredList("TEXT", *words, "Texts");
  return [words](Session& session) { printEscaped(session, *words); };
}

Job declareXmlUnescapeCommand(Options& options) {
  options.describe(
      "Print texts with the characters for the entities &amp;, &lt;, &gt; and &quot;, a line for\n"
      "each. Numeric references stay. - stands for the standard input; put -- before texts that\n"
      "begin with a dash.");
  auto words = std::make_shared<std::vector<std::string>>();
  options.requiredList("TEXT", *words, "Texts");
  return [words](Session& session) {
    printChanged(session, textsOf(*words), &orlfStringByUnescapingStandardXMLEntities);
  };
}

}  // namespace orlftool

#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/stream/NSInputStream.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <utility>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

/// In quotes, on one line, whatever it holds.
std::string quotedText(std::string_view text) {
  return withoutControls(Json(text).dump(-1, ' ', false, Json::error_handler_t::replace));
}

/// Prints each event as it comes. Pieces of a text are joined.
class EventPrinter final : public NSXMLParserDelegate {
 public:
  explicit EventPrinter(Session& session) : session_(session), array_(session.out) {}

  void parserDidStartDocument(NSXMLParser& /*parser*/) override { tell("start-document", {}); }
  void parserDidEndDocument(NSXMLParser& /*parser*/) override { tell("end-document", {}); }
  void parserDidStartElement(NSXMLParser& parser, const NSXMLStartTag& tag) override {
    Json attributes = Json::object();
    for (const auto& [name, value] : tag.attributes->entries())
      attributes[name.description()] = value.description();
    tell("start", {{"name", std::string(tag.didStartElement)}, {"attributes", attributes}});
    if (!session_.out) parser.abortParsing();  // nobody reads on
  }
  void parserDidEndElement(NSXMLParser& /*parser*/, std::string_view didEndElement,
                           std::optional<std::string_view> /*namespaceURI*/,
                           std::optional<std::string_view> /*qualifiedName*/) override {
    tell("end", {{"name", std::string(didEndElement)}});
  }
  void parserFoundCharacters(NSXMLParser& /*parser*/, std::string_view foundCharacters) override {
    addText("text", foundCharacters);
  }
  void parserFoundIgnorableWhitespace(NSXMLParser& /*parser*/,
                                      std::string_view foundIgnorableWhitespace) override {
    addText("whitespace", foundIgnorableWhitespace);
  }

  /// What is left, once the parse is over.
  void finish() {
    tellText();
    if (session_.options.json) array_.finish();
  }

 private:
  void addText(std::string_view kind, std::string_view text) {
    if (kind != textKind_) tellText();
    textKind_ = kind;
    text_ += text;
  }
  void tellText() {
    const std::string_view kind = std::exchange(textKind_, {});
    if (!kind.empty()) print(kind, {{"text", std::exchange(text_, {})}});
  }
  void tell(std::string_view kind, const Json& fields) {
    tellText();
    print(kind, fields);
  }
  void print(std::string_view kind, const Json& fields) {
    if (session_.options.json) {
      Json event = {{"event", std::string(kind)}};
      if (fields.is_object()) event.update(fields);
      array_.add(event);
      return;
    }
    session_.out << kind;
    if (fields.contains("name")) session_.out << ' ' << fields["name"].get<std::string>();
    if (fields.contains("attributes"))
      for (const auto& [name, value] : fields["attributes"].items())
        session_.out << ' ' << name << '=' << quotedText(value.get<std::string>());
    if (fields.contains("text"))
      session_.out << ' ' << quotedText(fields["text"].get<std::string>());
    session_.out << '\n';
  }

  Session& session_;
  JsonArrayPrinter array_;
  std::string_view textKind_;
  std::string text_;
};

std::string messageOf(const std::string& name, const NSError& error) {
  const auto number = [&](std::string_view key) {
    return error.userInfo()->objectForKey(key).as<NSInteger>();
  };
  const auto line = number(NSXMLParserErrorLineNumberKey);
  const auto column = number(NSXMLParserErrorColumnKey);
  if (!line || !column) return name + ": " + oneLine(error.localizedDescription());
  const auto words = error.userInfo()->objectForKey(NSXMLParserErrorMessageKey).description();
  return name + ":" + std::to_string(*line) + ":" + std::to_string(*column) + ": " +
         oneLine(words) + " (code " + std::to_string(error.code()) + ")";
}

void printEvents(Session& session, const std::string& file) {
  const auto printer = std::make_shared<EventPrinter>(session);
  const bool isInput = file == "-";
  NSXMLParser parser(NSInputStream::initWithFileAtPath(isInput ? "/dev/stdin" : file));
  parser.setDelegate(printer);
  const bool isParsed = parser.parse();
  printer->finish();
  if (!isParsed && session.out)
    throw JobFailure(messageOf(isInput ? "standard input" : file, *parser.parserError()));
}

}  // namespace

Job declareXmlEventsCommand(Options& options) {
  options.describe(
      "Print what an XML document holds, a line for each event: tags with their attributes, "
      "texts,\n"
      "and whitespace between the elements of which its DTD says that they hold elements alone.\n"
      "Nothing that the document names is opened. An error is told with its line and column.");
  auto file = std::make_shared<std::string>();
  options.required("FILE", *file, "XML document, - for the standard input");
  return [file](Session& session) { printEvents(session, *file); };
}

}  // namespace orlftool

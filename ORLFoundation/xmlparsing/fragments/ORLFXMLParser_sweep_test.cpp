// Random documents and random answers of handlers, against a walk over the document as a tree.
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserIgnoreFragmentHandler.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace ORLFoundation {
namespace {

/// An element, or a text where the name is empty.
struct Node {
  std::string name = {};
  std::string text = {};
  std::vector<Node> children = {};
};

// By the DTD, "c" and "d" hold elements alone.
constexpr std::string_view kDeclarations = "<!DOCTYPE a [<!ELEMENT c (a)*><!ELEMENT d (a)*>]>";
bool holdsElementsAlone(std::string_view name) { return name == "c" || name == "d"; }

std::string xmlOf(const Node& node) {
  if (node.name.empty()) return node.text;
  std::string xml = "<" + node.name + ">";
  for (const Node& child : node.children) xml += xmlOf(child);
  return xml + "</" + node.name + ">";
}

/// What handlers and the parser answer in one run: the same for the same question.
class Answers {
 public:
  Answers(unsigned seed, std::int32_t behavior, unsigned rarity)
      : seed_(seed), behavior_(behavior), rarity_(rarity) {}
  [[nodiscard]] std::int32_t behavior() const { return behavior_; }

  [[nodiscard]] bool isYes(std::string_view question, std::string_view of,
                           std::string_view about = {}) const {
    return hashOf(question, of, about) % 2 == 0;
  }
  /// The code of an error, 0 for none; errors are rare.
  [[nodiscard]] NSInteger failure(std::string_view operation, std::string_view of,
                                  std::string_view about) const {
    const std::size_t hash = hashOf(operation, of, about);
    return rarity_ != 0 && hash % rarity_ == 0 ? static_cast<NSInteger>(hash / rarity_ % 1000) + 1
                                               : 0;
  }

 private:
  [[nodiscard]] std::size_t hashOf(std::string_view question, std::string_view of,
                                   std::string_view about) const {
    std::seed_seq words{seed_, static_cast<unsigned>(std::hash<std::string_view>{}(question)),
                        static_cast<unsigned>(std::hash<std::string_view>{}(of)),
                        static_cast<unsigned>(std::hash<std::string_view>{}(about))};
    return std::minstd_rand(words)();
  }

  unsigned seed_;
  std::int32_t behavior_;
  unsigned rarity_;
};

/// Calls in order. Handlers are told apart by the number of the element that they stand for.
using Trace = std::vector<std::string>;

void tell(Trace& trace, const std::string& call) { trace.push_back(call); }
void tellText(Trace& trace, const std::string& call, std::string_view text) {
  if (trace.empty() || !trace.back().starts_with(call + "=")) trace.push_back(call + "=");
  trace.back() += text;
}

// The parser's side.

class AnsweringHandler final : public ORLFXMLParserContentHandler {
 public:
  AnsweringHandler(std::string name, const Answers& answers, Trace& trace)
      : name_(std::move(name)), answers_(answers), trace_(trace) {
    setIncludeIgnorableWhitespace(answers_.isYes("blanks", name_));
    setIncludeUnhandledSubElementContent(answers_.isYes("unhandled", name_));
  }
  [[nodiscard]] const std::string& name() const { return name_; }

  std::shared_ptr<ORLFXMLParserFragmentHandler> subFragmentHandlerForElementName(
      std::string_view name) override {
    if (!answers_.isYes("claims", name_, name)) return nullptr;
    return std::make_shared<AnsweringHandler>(std::string(name), answers_, trace_);
  }
  void beginFragmentWithParent(const std::shared_ptr<ORLFXMLParserFragmentHandler>& parent,
                               const std::shared_ptr<ORLFXMLParser>& parser) override {
    const auto above = std::static_pointer_cast<AnsweringHandler>(parent);
    tell(trace_, "begin " + name_ + " in " + (above ? above->name() : "nothing"));
    ORLFXMLParserContentHandler::beginFragmentWithParent(parent, parser);
  }
  void endFragment() override {
    tell(trace_, "endFragment " + name_);
    ORLFXMLParserContentHandler::endFragment();
  }
  Error willStartSubElement(std::string_view name) override {
    static_cast<void>(ORLFXMLParserContentHandler::willStartSubElement(name));
    return failure("willStart", name);
  }
  Error didFinishSubElement(std::string_view name) override {
    tell(trace_, "didFinish " + name_ + " " + std::string(name));
    return failure("didFinish", name);
  }
  Error startElement(std::string_view name, const std::shared_ptr<NSDictionary>&) override {
    tell(trace_, "start " + name_);
    return failure("start", name);
  }
  Error endElement(std::string_view name) override {
    if (auto error = ORLFXMLParserContentHandler::endElement(name)) return error;
    return failure("end", name);
  }
  void unhandledSubElementFoundCharacters(std::string_view name, std::string_view text) override {
    tellText(trace_, "unhandled " + name_ + " " + std::string(name), text);
    ORLFXMLParserContentHandler::unhandledSubElementFoundCharacters(name, text);
  }
  bool checkpointContent(std::string_view content, std::string_view name) override {
    tell(trace_, "checkpoint " + name_ + " " + std::string(name) + " " + std::string(content));
    return answers_.isYes("checkpoint", name_, name);
  }
  bool finalizeContent(std::string_view content, std::string_view) override {
    tell(trace_, "finalize " + name_ + " " + std::string(content));
    return answers_.failure("finalize", name_, content) == 0;
  }

 private:
  [[nodiscard]] Error failure(std::string_view operation, std::string_view name) const {
    const NSInteger code = answers_.failure(operation, name_, name);
    return code == 0 ? nullptr : NSError::errorWithDomain("test", code);
  }

  const std::string name_;
  const Answers& answers_;
  Trace& trace_;
};

class AnsweringParser final : public ORLFXMLParser {
 public:
  AnsweringParser(const Answers& answers, Trace& trace) : answers_(answers), trace_(trace) {
    setUnhandledElementBehavior(answers.behavior());
  }
  Handler fragmentHandlerForElementName(std::string_view name) override {
    if (!answers_.isYes("parser claims", name)) return nullptr;
    return std::make_shared<AnsweringHandler>(std::string(name), answers_, trace_);
  }

 private:
  const Answers& answers_;
  Trace& trace_;
};

// The tree's side.

struct Frame {
  bool isSkipping = false;
  bool skipsTheTagAlone = false;
  std::string name = {};
  Frame* logicalParent = nullptr;  // of a skipping one
  std::string content = {};
};

class Model {
 public:
  explicit Model(const Answers& answers) : answers_(answers) {}
  Trace trace;
  NSInteger code = 0;
  std::string stack;  // of what an error left

  void visit(const Node& node, Frame* current) {
    auto chosen = chosenFor(node.name, current);
    if (!chosen) return fail(86);
    Frame& frame = *chosen;
    Frame* const parent = current && current->isSkipping ? current->logicalParent : current;
    frame.logicalParent = parent;
    const std::string before = open_;
    open_ += frame.isSkipping ? "-" : frame.name;
    if (!frame.isSkipping)
      tell(trace, "begin " + frame.name + " in " + (parent ? parent->name : "nothing"));
    if (parent) startSubElement(*parent, node.name);
    if (code == 0 && !frame.isSkipping) {
      tell(trace, "start " + frame.name);
      fail(answers_.failure("start", frame.name, node.name));
    }
    for (const Node& child : node.children) {
      if (code != 0) return;
      if (child.name.empty())
        addText(frame, node.name, child.text);
      else
        visit(child, &frame);
    }
    if (code == 0) end(frame, parent, node.name);
    if (code == 0) open_ = before;
  }

 private:
  std::optional<Frame> chosenFor(const std::string& name, const Frame* current) const {
    const Frame handler{.name = name};
    if (current && current->isSkipping && !current->skipsTheTagAlone)
      return Frame{.isSkipping = true, .name = name};
    const Frame* const asked = current && current->isSkipping ? current->logicalParent : current;
    if (asked && answers_.isYes("claims", asked->name, name)) return handler;
    if (answers_.isYes("parser claims", name)) return handler;
    if (answers_.behavior() == 0) return std::nullopt;
    return Frame{.isSkipping = true, .skipsTheTagAlone = answers_.behavior() == 2, .name = name};
  }
  void startSubElement(Frame& parent, const std::string& name) {
    tell(trace, "checkpoint " + parent.name + " " + name + " " + parent.content);
    if (answers_.isYes("checkpoint", parent.name, name)) parent.content.clear();
    fail(answers_.failure("willStart", parent.name, name));
  }
  void addText(Frame& frame, const std::string& element, const std::string& text) {
    if (frame.isSkipping) {
      Frame* const above = frame.logicalParent;
      if (!above) return;
      tellText(trace, "unhandled " + above->name + " " + frame.name, text);
      if (answers_.isYes("unhandled", above->name)) above->content += text;
    } else if (!holdsElementsAlone(element) || answers_.isYes("blanks", frame.name)) {
      frame.content += text;
    }
  }
  void end(const Frame& frame, const Frame* parent, const std::string& name) {
    if (!frame.isSkipping) {
      tell(trace, "finalize " + frame.name + " " + frame.content);
      fail(answers_.failure("finalize", frame.name, frame.content) == 0 ? 0 : 86);
      if (code == 0) fail(answers_.failure("end", frame.name, name));
    }
    if (code == 0 && parent) {
      tell(trace, "didFinish " + parent->name + " " + name);
      fail(answers_.failure("didFinish", parent->name, name));
    }
    if (code == 0 && !frame.isSkipping) tell(trace, "endFragment " + frame.name);
  }
  void fail(NSInteger with) {
    if (code != 0 || with == 0) return;
    code = with;
    stack = open_;
  }

  const Answers& answers_;
  std::string open_;
};

Node randomText(std::mt19937& random, bool isBlank) {
  const auto choice = random();
  if (isBlank) return {.text = std::string(1 + choice % 3, " \n"[choice / 3 % 2])};
  return {.text = std::string(1, "pqrstuvw"[choice % 8])};
}

Node randomNode(std::mt19937& random, int depth) {
  Node node{.name = std::string(1, "abcd"[random() % 4])};
  const std::size_t count = depth == 0 ? 0 : random() % 5;
  for (std::size_t i = 0; i < count; ++i) {
    if (random() % 3 != 0)
      node.children.push_back(randomNode(random, depth - 1));
    else
      node.children.push_back(randomText(random, holdsElementsAlone(node.name)));
  }
  return node;
}

std::string stackText(const ORLFXMLParser& parser) {
  std::string names;
  for (const auto& handler : parser.fragmentHandlerStack()) {
    const auto* answering = dynamic_cast<const AnsweringHandler*>(handler.get());
    names += answering == nullptr ? "-" : answering->name();
  }
  return names;
}

TEST(ORLFXMLParser, AgreesWithAWalkOverTheTree) {
  const LogCapture log;
  constexpr std::int32_t kBehaviors[] = {0, 1, 2, 3, -1, 2};
  int failed = 0;
  for (unsigned seed = 0; seed < 3000; ++seed) {
    std::mt19937 random(seed);
    const Node document = randomNode(random, 5);
    const Answers answers(seed, kBehaviors[random() % std::size(kBehaviors)],
                          seed % 3 == 0 ? 0 : 30);
    Model model(answers);
    model.visit(document, nullptr);
    Trace trace;
    const auto parser = std::make_shared<AnsweringParser>(answers, trace);
    const std::string xml = std::string(kDeclarations) + xmlOf(document);
    std::shared_ptr<const NSError> error;
    EXPECT_EQ(parser->parseData(NSData(std::string_view(xml)), &error), model.code == 0) << xml;
    ASSERT_EQ(trace, model.trace) << "seed " << seed << ": " << xml;
    EXPECT_EQ(error ? error->code() : 0, model.code) << xml;
    EXPECT_EQ(stackText(*parser), model.stack) << xml;
    failed += model.code == 0 ? 0 : 1;
  }
  EXPECT_GT(failed, 500);
  EXPECT_LT(failed, 2500);
}

}  // namespace
}  // namespace ORLFoundation

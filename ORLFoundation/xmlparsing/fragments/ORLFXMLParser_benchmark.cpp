// A ledger of some megabytes: libxml2's events alone, ours to a delegate, and a new handler for
// each element with its attributes as a dictionary. All three count the same.
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParser.h>

#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/xml/NSXMLParser.h>
#include <ORLFoundation/xmlparsing/fragments/ORLFXMLParserContentHandler.h>
#include <benchmark/benchmark.h>
#include <libxml/parser.h>
#include <tests/support/CountedBytes.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

namespace {

using namespace ORLFoundation;

constexpr std::uint64_t kTransactions = 20'000;
constexpr std::uint64_t kElements = 4 * kTransactions + 1;
constexpr std::uint64_t kAttributes = 4 * kTransactions + 1;
constexpr std::size_t kPiece = 65'536;

const std::string& ledger() {
  static const std::string& text = *new std::string([] {
    std::string made = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<ledger version=\"3\">\n";
    for (std::uint64_t i = 0; i < kTransactions; ++i) {
      const std::string number = std::to_string(i);
      made += "  <transaction id=\"T" + number + "\" account=\"" + std::to_string(i % 17) +
              "\" status=\"cleared\">\n    <date>2024-02-" + std::to_string(i % 18 + 10) +
              "</date>\n    <payee>Smith &amp; Sons " + number +
              "</payee>\n    <amount currency=\"USD\">" + number +
              ".25</amount>\n  </transaction>\n";
    }
    return made + "</ledger>\n";
  }());
  return text;
}

struct Counts {
  std::uint64_t elements = 0;
  std::uint64_t attributes = 0;
  std::uint64_t text = 0;
};

void finish(benchmark::State& state, const Counts& counts) {
  if (counts.elements != kElements || counts.attributes != kAttributes || counts.text == 0)
    state.SkipWithError("a wrong number of elements or attributes");
  benchmark::DoNotOptimize(counts.text);
}

void eventsOfLibxml2(benchmark::State& state) {
  const std::string& text = ledger();
  for (auto _ : state) {
    Counts counts;
    xmlSAXHandler handler{};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = [](void* data, const xmlChar*, const xmlChar*, const xmlChar*, int,
                                const xmlChar**, int attributes, int, const xmlChar**) {
      auto& counted = *static_cast<Counts*>(data);
      ++counted.elements;
      counted.attributes += static_cast<std::uint64_t>(attributes);
    };
    handler.endElementNs = [](void*, const xmlChar*, const xmlChar*, const xmlChar*) {};
    handler.characters = [](void* data, const xmlChar*, int length) {
      static_cast<Counts*>(data)->text += static_cast<std::uint64_t>(length);
    };
    handler.ignorableWhitespace = handler.characters;
    handler.cdataBlock = handler.characters;
    handler.getEntity = [](void*, const xmlChar* name) { return xmlGetPredefinedEntity(name); };
    xmlParserCtxtPtr parser = xmlCreatePushParserCtxt(&handler, &counts, nullptr, 0, nullptr);
    xmlCtxtUseOptions(parser, XML_PARSE_HUGE);
    for (std::size_t at = 0; at < text.size(); at += kPiece)
      xmlParseChunk(parser, text.data() + at, static_cast<int>(std::min(kPiece, text.size() - at)),
                    0);
    xmlParseChunk(parser, nullptr, 0, 1);
    xmlFreeParserCtxt(parser);
    finish(state, counts);
  }
  orlftest::countBytes(state, ledger().size());
}

class CountingDelegate : public NSXMLParserDelegate {
 public:
  Counts counts;
  void parserDidStartElement(NSXMLParser& /*parser*/, const NSXMLStartTag& tag) override {
    ++counts.elements;
    counts.attributes += tag.attributes->count();
  }
  void parserFoundCharacters(NSXMLParser& /*parser*/, std::string_view text) override {
    counts.text += text.size();
  }
};

void eventsToADelegate(benchmark::State& state) {
  const NSData data{std::string_view(ledger())};
  for (auto _ : state) {
    const auto delegate = std::make_shared<CountingDelegate>();
    NSXMLParser parser(data);
    parser.setDelegate(delegate);
    if (!parser.parse()) state.SkipWithError("the document is not read");
    finish(state, delegate->counts);
  }
  orlftest::countBytes(state, ledger().size());
}

class CountingHandler : public ORLFXMLParserContentHandler {
 public:
  explicit CountingHandler(Counts& counts) : counts_(counts) {}
  std::shared_ptr<ORLFXMLParserFragmentHandler> subFragmentHandlerForElementName(
      std::string_view /*name*/) override {
    return std::make_shared<CountingHandler>(counts_);
  }
  Error startElement(std::string_view /*name*/,
                     const std::shared_ptr<NSDictionary>& attributes) override {
    ++counts_.elements;
    counts_.attributes += attributes->count();
    return nullptr;
  }
  bool finalizeContent(std::string_view content, std::string_view /*forElement*/) override {
    counts_.text += content.size();
    return true;
  }

 private:
  Counts& counts_;
};

class CountingParser : public ORLFXMLParser {
 public:
  Counts counts;
  Handler fragmentHandlerForElementName(std::string_view /*name*/) override {
    return std::make_shared<CountingHandler>(counts);
  }
};

void handlerForEachElement(benchmark::State& state) {
  const NSData data{std::string_view(ledger())};
  for (auto _ : state) {
    const auto parser = std::make_shared<CountingParser>();
    if (!parser->parseData(data)) state.SkipWithError("the document is not read");
    finish(state, parser->counts);
  }
  orlftest::countBytes(state, ledger().size());
}

BENCHMARK(eventsOfLibxml2)->Name("XML events/libxml2")->Unit(benchmark::kMillisecond);
BENCHMARK(eventsToADelegate)->Name("XML events/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(handlerForEachElement)->Name("XML handlers/ours")->Unit(benchmark::kMillisecond);

}  // namespace

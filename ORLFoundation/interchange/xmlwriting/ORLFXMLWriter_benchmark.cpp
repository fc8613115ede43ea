#include <ORLFoundation/interchange/xmlwriting/ORLFXMLWriter.h>

#include <benchmark/benchmark.h>
#include <libxml/xmlwriter.h>
#include <tests/support/CountedBytes.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace {

using namespace ORLFoundation;

constexpr int kElements = 100'000;
constexpr const char* kText = "Grocery Store & Sons, Main Street <12>";

bool ours(std::string_view expected) {
  const auto buffer = std::make_shared<NSMutableData>();
  ORLFXMLWriter writer(buffer);
  writer.writeStartElementName("all");
  for (int i = 0; i < kElements; ++i) {
    writer.writeStartElementName("entry");
    writer.writeAttribue("day", "2024-02-29");
    writer.writeStartElementName("name");
    writer.writeCharacters(kText);
    writer.writeEndElementForced(false);
    writer.writeEndElementForced(false);
  }
  writer.writeEndElementForced(false);
  return buffer->text() == expected;
}

const xmlChar* xml(const char* text) { return reinterpret_cast<const xmlChar*>(text); }

template <class Use>
bool theirs(Use use) {
  const std::unique_ptr<xmlBuffer, decltype(&xmlBufferFree)> buffer(xmlBufferCreate(),
                                                                    &xmlBufferFree);
  xmlTextWriter* writer = xmlNewTextWriterMemory(buffer.get(), 0);
  xmlTextWriterStartElement(writer, xml("all"));
  for (int i = 0; i < kElements; ++i) {
    xmlTextWriterStartElement(writer, xml("entry"));
    xmlTextWriterWriteAttribute(writer, xml("day"), xml("2024-02-29"));
    xmlTextWriterStartElement(writer, xml("name"));
    xmlTextWriterWriteString(writer, xml(kText));
    xmlTextWriterEndElement(writer);
    xmlTextWriterEndElement(writer);
  }
  xmlTextWriterEndElement(writer);
  xmlFreeTextWriter(writer);
  return use(std::string_view(reinterpret_cast<const char*>(xmlBufferContent(buffer.get())),
                              static_cast<std::size_t>(xmlBufferLength(buffer.get()))));
}

const std::string& document() {
  static const std::string& text = *new std::string([] {
    std::string made;
    theirs([&made](std::string_view written) {
      made = written;
      return true;
    });
    return made;
  }());
  return text;
}

void writeElements(benchmark::State& state) {
  for (auto _ : state)
    if (!ours(document())) state.SkipWithError("another document");
  orlftest::countBytes(state, document().size());
}

void writeElementsByLibxml2(benchmark::State& state) {
  for (auto _ : state)
    if (!theirs([](std::string_view written) { return written == document(); }))
      state.SkipWithError("another document");
  orlftest::countBytes(state, document().size());
}

BENCHMARK(writeElements)->Name("XML writer/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(writeElementsByLibxml2)->Name("XML writer/libxml2")->Unit(benchmark::kMillisecond);

}  // namespace

// The peer is osx of OpenSP, a program of its own: its start counts, which 5 MB make small.
#include <ORLFoundation/interchange/sgml/ORLFSGMLConversion.h>

#include <benchmark/benchmark.h>
#include <tests/support/CountedBytes.h>
#include <tests/support/Files.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using namespace ORLFoundation;

constexpr int kTransactions = 32'000;
constexpr std::int64_t kLeaves = std::int64_t{kTransactions} * 6;

constexpr const char* kDoctype = R"(<!DOCTYPE OFX [
<!ELEMENT OFX - - (STMTTRN*)>
<!ELEMENT STMTTRN - - (TRNTYPE, DTPOSTED, TRNAMT, FITID, NAME, MEMO)>
<!ELEMENT (TRNTYPE|DTPOSTED|TRNAMT|FITID|NAME|MEMO) - O (#PCDATA)>
<!ENTITY amp CDATA "&#38;">
]>
)";

/// A statement whose leaves have no end tags.
const std::string& statement() {
  static const std::string& text = *new std::string([] {
    std::string made = "<OFX>\n";
    for (int i = 0; i < kTransactions; ++i) {
      const std::string number = std::to_string(i);
      made.append("<STMTTRN>\n<TRNTYPE>DEBIT\n<DTPOSTED>20240229120000[-5:EST]\n<TRNAMT>-")
          .append(number)
          .append(".25\n<FITID>F")
          .append(number)
          .append("\n<NAME>SMITH &amp; SONS ")
          .append(number)
          .append("\n<MEMO>CARD 42 TERMINAL 1013 AUTH 99991\n</STMTTRN>\n");
    }
    return made + "</OFX>\n";
  }());
  return text;
}

/// How many end tags of leaves a document has: of all, those but the ones of the statement.
std::int64_t endsOfLeaves(std::string_view xml) {
  std::int64_t ends = 0;
  for (std::size_t at = xml.find("</"); at != xml.npos; at = xml.find("</", at + 2)) ++ends;
  return ends - kTransactions - 1;
}

/// The leaves of each side's first document are counted before the clock runs; all others have its
/// length.
template <class Convert>
void measure(benchmark::State& state, Convert convert) {
  const std::string first = convert();
  if (endsOfLeaves(first) != kLeaves) state.SkipWithError("a wrong number of leaves");
  for (auto _ : state)
    if (convert().size() != first.size()) state.SkipWithError("another document");
  orlftest::countBytes(state, statement().size());
}

void convert(benchmark::State& state) {
  measure(state, [] { return orlfXMLStringConvertedFromSGMLString(statement()); });
}

/// What a command prints.
std::string outputOf(const std::string& command) {
  std::string output;
  std::FILE* pipe = ::popen(command.c_str(), "r");
  std::array<char, 65536> buffer{};
  while (const std::size_t count = std::fread(buffer.data(), 1, buffer.size(), pipe))
    output.append(buffer.data(), count);
  ::pclose(pipe);
  return output;
}

void convertByOsx(benchmark::State& state) {
  const orlftest::TemporaryFolder folder;
  const std::string path = folder.write("statement", kDoctype + statement());
  measure(state,
          [&path] { return outputOf("osx -xlower -xno-nl-in-tag " + path + " 2>/dev/null"); });
}

BENCHMARK(convert)->Name("SGML to XML/ours")->Unit(benchmark::kMillisecond);
BENCHMARK(convertByOsx)->Name("SGML to XML/osx")->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace

#include <ORLFoundation/security/primitives/ORLFDataCompression.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "commands.h"
#include "io/atomic_file.h"
#include "io/input_file.h"
#include "session.h"
#include "values/whole_number.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

constexpr std::size_t kMostDecompressedBytes = std::size_t{1} << 30;
constexpr int kBestLevel = 9;

struct GzipArguments {
  std::string file = "-";
  std::optional<std::string> output, level;
  bool decompress = false;
};

NSData compressed(const std::string& name, const NSData& data,
                  const std::optional<std::string>& level) {
  const float part = level
                         ? static_cast<float>(readWholeArgument("--level", *level, 0, kBestLevel)) /
                               static_cast<float>(kBestLevel)
                         : -1.0F;
  if (data.length() == 0) throw JobFailure(name + ": there is nothing to compress");
  if (const auto packed = gzippedDataWithCompressionLevel(data, part)) return *packed;
  throw JobFailure(name + ": it cannot be compressed");
}

/// Zeros may fill up what stands behind the stream, as on tapes; more, a second stream for one,
/// would be lost without a word.
NSData decompressed(const std::string& name, const NSData& data) {
  std::size_t used = 0;
  const auto bytes = gunzippedData(data, kMostDecompressedBytes, &used);
  if (!bytes)
    throw JobFailure(name + ": it is no gzip file, is damaged or cut off, or holds more than 1 GB");
  const auto behind = data.bytes().subspan(used);
  if (std::any_of(behind.begin(), behind.end(), [](std::uint8_t byte) { return byte != 0; }))
    throw JobFailure(name + ": " + std::to_string(behind.size()) +
                     " bytes stand behind the compressed stream, which alone can be read");
  return *bytes;
}

void runGzip(Session& session, const GzipArguments& arguments) {
  if (arguments.decompress && arguments.level)
    throw UsageFailure("--level goes with compressing, not with --decompress");
  const std::string name = arguments.file == "-" ? "standard input" : arguments.file;
  const NSData data(std::string_view(readInputFile(arguments.file, "a file")));
  const NSData result =
      arguments.decompress ? decompressed(name, data) : compressed(name, data, arguments.level);
  if (arguments.output)
    writeFileAtomically(*arguments.output, result.text());
  else
    session.out << result.text();
}

}  // namespace

Job declareGzipCommand(Options& options) {
  options.describe(
      "Print a file of at most 64 MB as gzip compresses it, or with -d what a gzip or zlib file "
      "of\n"
      "one stream holds, at most 1 GB.");
  auto arguments = std::make_shared<GzipArguments>();
  options.text("FILE", arguments->file, "The file, - for the standard input");
  options.flag("-d,--decompress", arguments->decompress, "Print what a compressed file holds");
  options.text("--level", arguments->level, "From 0, stored, to 9, smallest");
  options.text("-o,--output", arguments->output, "The file to be written");
  return [arguments](Session& session) { runGzip(session, *arguments); };
}

}  // namespace orlftool

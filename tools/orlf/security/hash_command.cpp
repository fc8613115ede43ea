#include <ORLFoundation/platform/base/Hexadecimal.h>
#include <ORLFoundation/security/primitives/ORLFDataHashing.h>
#include <ORLFoundation/security/primitives/ORLFMD5.h>

#include <array>
#include <cstdint>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/failure.h"
#include "cli/json_output.h"
#include "cli/message_text.h"
#include "commands.h"
#include "io/input_file.h"
#include "session.h"

namespace orlftool {
namespace {

using namespace ORLFoundation;

struct HashArguments {
  std::string algorithm;
  std::vector<std::string> files;
};

NSData md5Of(const NSData& data) {
  std::array<std::uint8_t, 16> digest{};
  ORLFMD5(data.bytes().data(), static_cast<std::uint32_t>(data.length()), digest.data());
  return NSData(std::span<const std::uint8_t>(digest));
}

NSData sha1Of(const NSData& data) { return orlfSHAHash(data); }

void printDigests(Session& session, const HashArguments& arguments) {
  const bool isMD5 = arguments.algorithm == "md5";
  if (!isMD5 && arguments.algorithm != "sha1")
    throw UsageFailure("ALGORITHM: expected md5 or sha1, got " +
                       quotedForMessage(arguments.algorithm));
  Json rows = Json::array();
  for (const std::string& file : arguments.files) {
    const NSData data(std::string_view(readInputFile(file, "a file")));
    const std::string digest = internal::base::hexText((isMD5 ? md5Of(data) : sha1Of(data)).text());
    if (session.options.json)
      rows.push_back({{"file", file}, {arguments.algorithm, digest}});
    else
      session.out << digest << "  " << oneLine(file) << '\n';
  }
  if (session.options.json) printJson(session.out, rows);
}

}  // namespace

Job declareHashCommand(Options& options) {
  options.describe(
      "Print digests of files of at most 64 MB each. Both algorithms tell damage, and neither\n"
      "tells forgery: files of equal digests can be made.");
  auto arguments = std::make_shared<HashArguments>();
  options.required("ALGORITHM", arguments->algorithm, "md5 or sha1");
  options.requiredList("FILE", arguments->files, "Files, - for the standard input");
  return [arguments](Session& session) { printDigests(session, *arguments); };
}

}  // namespace orlftool

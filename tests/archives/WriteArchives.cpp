// Writes archives of all kinds into a folder, each beside the value that it holds, as JSON; those
// of the good samples are written again there:
//
//     orlf_write_archives FOLDER
//
// A release keeps what it writes, but for the samples, in tests/data/archives/VERSION.
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <tests/archives/ArchiveSamples.h>
#include <tests/archives/WrittenArchives.h>

#include <fstream>
#include <iostream>
#include <string_view>

namespace {

using namespace ORLFoundation;
using orlftest::archived;

bool write(const std::filesystem::path& file, std::string_view content) {
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  return stream.good();
}

/// Writes both forms of an archive of the object, and its value.
bool writeArchives(const std::filesystem::path& folder, const std::string& name, const id& object) {
  const auto file = [&](const char* extension) { return folder / (name + extension); };
  const NSData binary = archived(object, NSPropertyListBinaryFormat_v1_0);
  const NSData xml = archived(object, NSPropertyListXMLFormat_v1_0);
  return write(file(".archive"), binary.text()) && write(file(".xml"), xml.text()) &&
         write(file(".json"), orlftest::jsonFromObject(object).dump());
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: orlf_write_archives FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder = arguments[1];
  bool written = true;
  for (const auto& row : orlftest::writtenArchives())
    written = writeArchives(folder, row.name, row.object) && written;
  for (const std::string& name : orlftest::sampleNames()) {
    const id object =
        NSKeyedUnarchiver::unarchivedObject(orlftest::allClasses(), orlftest::sampleNamed(name));
    if (!object.isNil()) written = writeArchives(folder, "sample-" + name, object) && written;
  }
  return written ? 0 : 1;
}

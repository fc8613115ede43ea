// Writes archives of all kinds into a folder, each beside the value that it holds, as JSON:
//
//     orlf_write_archives FOLDER
#include <ORLFoundation/platform/archive/NSKeyedArchiver.h>
#include <tests/archives/ArchiveSamples.h>
#include <tests/archives/WrittenArchives.h>

#include <fstream>
#include <iostream>
#include <string_view>

namespace {

using namespace ORLFoundation;

bool write(const std::filesystem::path& file, std::string_view content) {
  std::ofstream stream(file, std::ios::binary);
  stream << content;
  return stream.good();
}

NSData archived(const id& object, NSPropertyListFormat format) {
  NSKeyedArchiver archiver(true);
  archiver.setOutputFormat(format);
  archiver.encodeObject(object, NSKeyedArchiveRootObjectKey);
  return archiver.encodedData();
}

}  // namespace

int main(int count, char** arguments) {
  if (count != 2) {
    std::cerr << "usage: orlf_write_archives FOLDER\n";
    return 2;
  }
  const std::filesystem::path folder = arguments[1];
  bool written = true;
  for (const auto& row : orlftest::writtenArchives()) {
    const auto file = [&](const char* extension) { return folder / (row.name + extension); };
    const NSData binary = archived(row.object, NSPropertyListBinaryFormat_v1_0);
    const NSData xml = archived(row.object, NSPropertyListXMLFormat_v1_0);
    written = written && write(file(".archive"), binary.text()) &&
              write(file(".xml"), xml.text()) &&
              write(file(".json"), orlftest::jsonFromObject(row.object).dump());
  }
  return written ? 0 : 1;
}

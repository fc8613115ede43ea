// Archives that releases wrote, each beside its value: every later one opens them, also when what
// wrote them knew more.
#include <ORLFoundation/decimal/ORLFMutableDecimalNumberHandler.h>
#include <ORLFoundation/platform/archive/NSKeyedUnarchiver.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/platform/plist/NSPropertyListSerialization.h>
#include <ORLFoundation/platform/plist/NSPropertyListUID.h>
#include <gtest/gtest.h>
#include <tests/archives/ArchiveSamples.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace {

using namespace ORLFoundation;
namespace fs = std::filesystem;
using orlftest::contentOf;
using orlftest::Json;
using orlftest::jsonFromObject;

fs::path keptFolder() { return orlftest::testDataFolder() / "archives"; }

/// The values of all releases, each beside NAME.archive and NAME.xml.
std::vector<fs::path> keptValues() {
  std::vector<fs::path> files;
  for (const auto& entry : fs::recursive_directory_iterator(keptFolder()))
    if (entry.path().extension() == ".json") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

NSData bytesOf(fs::path file, const char* extension) {
  return NSData(std::string_view(contentOf(file.replace_extension(extension))));
}

Json valueOf(const NSData& data) {
  std::shared_ptr<const NSError> error;
  const id object = NSKeyedUnarchiver::unarchivedObject(orlftest::allClasses(), data, &error);
  return error ? Json("error: " + error->localizedDescription()) : jsonFromObject(object);
}

std::shared_ptr<NSPropertyListUID> uid(NSUInteger index) {
  return std::make_shared<NSPropertyListUID>(static_cast<std::uint32_t>(index));
}

/// The archive as one wrote it that had a field more of each kind in every object: the last of them
/// an object of a class that nobody here knows.
NSData withUnknownKeys(const NSData& data) {
  const auto root = NSPropertyListSerialization::propertyListWithData(
                        data, NSPropertyListMutableContainersAndLeaves)
                        .as<NSMutableDictionary>();
  const auto objects = root->objectForKey("$objects").as<NSMutableArray>();
  const NSUInteger unknown = objects->count();
  for (const id& object : *objects) {
    const auto fields = object.as<NSMutableDictionary>();
    if (!fields) continue;
    fields->setObject(7, "aFieldOfTomorrow");
    fields->setObject("text", "textOfTomorrow");
    fields->setObject(uid(0), "nilOfTomorrow");
    fields->setObject(uid(unknown), "objectOfTomorrow");
  }
  objects->addObject(NSDictionary::dictionaryWithEntries({{"$class", uid(unknown + 1)}}));
  objects->addObject(NSDictionary::dictionaryWithEntries({{"$classname", "ClassOfTomorrow"}}));
  root->setObject(true, "$tomorrow");
  root->objectForKey("$top").as<NSMutableDictionary>()->setObject(uid(unknown), "tomorrow");
  return *NSPropertyListSerialization::dataWithPropertyList(root, NSPropertyListBinaryFormat_v1_0,
                                                            0);
}

TEST(KeptArchives, OpenInBothFormsWithTheValuesThatWereWritten) {
  const std::vector<fs::path> files = keptValues();
  EXPECT_FALSE(files.empty());
  for (const fs::path& file : files) {
    const Json expected = Json::parse(contentOf(file));
    EXPECT_EQ(valueOf(bytesOf(file, ".archive")), expected) << file;
    EXPECT_EQ(valueOf(bytesOf(file, ".xml")), expected) << file;
  }
}

TEST(KeptArchives, OpenWithFieldsThatNobodyKnowsYet) {
  for (const fs::path& file : keptValues()) {
    const NSData more = withUnknownKeys(bytesOf(file, ".archive"));
    EXPECT_NE(more.text().find("ClassOfTomorrow"), std::string_view::npos) << file;
    EXPECT_EQ(valueOf(more), Json::parse(contentOf(file))) << file;
  }
}

// A process of its own, in which nothing has named the subclass yet.
TEST(KeptArchivesDeathTest, OfASubclassOpenThroughItsBase) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        const auto handler = NSKeyedUnarchiver::unarchivedObjectOfClass<ORLFDecimalNumberHandler>(
            bytesOf(keptFolder() / "0.1.0" / "handler-mutable", ".archive"));
        ::_exit(std::dynamic_pointer_cast<ORLFMutableDecimalNumberHandler>(handler) ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace

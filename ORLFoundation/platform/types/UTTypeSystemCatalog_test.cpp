
#include <ORLFoundation/platform/types/UTTypeSystemCatalog.h>

#include <gtest/gtest.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>

#include <string>
#include <vector>

namespace ORLFoundation {
namespace {

class UTTypeSystemCatalogTest : public orlftest::TemporaryFolderTest {
 protected:
  [[nodiscard]] std::string database(const std::string& name, const std::string& globs2,
                                     const std::string& subclasses = "",
                                     const std::string& aliases = "") const {
    write(name + "/globs2", globs2);
    write(name + "/subclasses", subclasses);
    write(name + "/aliases", aliases);
    return path(name);
  }
};

TEST_F(UTTypeSystemCatalogTest, KnowsTheTypesOfTheDatabase) {
  const UTTypeSystemCatalog catalog({database(
      "one", "# a remark\n50:audio/flac:*.flac\n50:audio/flac:*.fla\n50:model/x:*.Mod:cs\n",
      "model/x text/plain\nmodel/x model/base\n", "audio/x-flac audio/flac\n")});
  const auto flac = catalog.recordWithFilenameExtension("flac");
  ASSERT_TRUE(flac);
  EXPECT_EQ(flac->identifier, "audio/flac");
  EXPECT_EQ(flac->filenameExtensions, (std::vector<std::string>{"flac", "fla"}));
  EXPECT_EQ(flac->conformsTo, (std::vector<std::string>{"public.audio"}));
  EXPECT_EQ(catalog.recordWithMIMEType("audio/x-flac")->identifier, "audio/flac");
  EXPECT_EQ(catalog.recordWithIdentifier("audio/flac")->identifier, "audio/flac");
  EXPECT_EQ(catalog.recordWithFilenameExtension("mod")->conformsTo,
            (std::vector<std::string>{"public.plain-text", "model/base", "public.data"}));
  EXPECT_TRUE(catalog.recordWithMIMEType("model/base"));
  EXPECT_FALSE(catalog.recordWithMIMEType("model/other"));
  EXPECT_FALSE(catalog.recordWithFilenameExtension("other"));
}

TEST_F(UTTypeSystemCatalogTest, TakesTheHeaviestPatternAndTheFirstOfEqualOnes) {
  const UTTypeSystemCatalog catalog({database(
      "one", "50:a/light:*.x\n80:a/heavy:*.x\n80:a/late:*.x\n50:a/first:*.y\n50:a/second:*.y\n")});
  EXPECT_EQ(catalog.recordWithFilenameExtension("x")->identifier, "a/heavy");
  EXPECT_EQ(catalog.recordWithFilenameExtension("y")->identifier, "a/first");
}

TEST_F(UTTypeSystemCatalogTest, PrefersTheEarlierFolder) {
  const UTTypeSystemCatalog catalog({folder_ / "absent", database("own", "10:a/own:*.x\n"),
                                     database("system", "90:a/system:*.x\n90:a/other:*.y\n")});
  EXPECT_EQ(catalog.recordWithFilenameExtension("x")->identifier, "a/own");
  EXPECT_EQ(catalog.recordWithFilenameExtension("y")->identifier, "a/other");
}

TEST_F(UTTypeSystemCatalogTest, PutsTheLibrarysTypesBeforeTheSystems) {
  const UTTypeSystemCatalog catalog(
      {database("one", "90:image/x-quicktime:*.qif\n90:text/csv:*.data\n")});
  EXPECT_EQ(catalog.recordWithFilenameExtension("qif")->identifier, "public.qif");
  EXPECT_EQ(catalog.recordWithFilenameExtension("data")->identifier,
            "public.comma-separated-values-text");
  EXPECT_EQ(catalog.recordWithMIMEType("image/x-quicktime")->filenameExtensions.front(), "qif");
}

TEST_F(UTTypeSystemCatalogTest, PassesOverLinesThatItCannotRead) {
  const UTTypeSystemCatalog catalog({database("one",
                                              "\n:\n50\n50:\nx:a/b:*.x\n50::*.x\n50:a/c:README\n"
                                              "50:a/d:*.\n50:a/e:*.[0-9]\n999999999999:a/f:*.x\n"
                                              "50:a/g:*.good",
                                              "one\none \n two\na/g a/g\n", "a/g a/g\na\n")});
  EXPECT_FALSE(catalog.recordWithFilenameExtension("x"));
  EXPECT_FALSE(catalog.recordWithFilenameExtension(""));
  EXPECT_EQ(catalog.recordWithFilenameExtension("good")->identifier, "a/g");
  EXPECT_TRUE(catalog.recordWithMIMEType("a/c"));
}

TEST_F(UTTypeSystemCatalogTest, AliasesInACircleEnd) {
  const UTTypeSystemCatalog catalog({database("one", "", "", "a/a a/b\na/b a/a\n")});
  EXPECT_TRUE(catalog.recordWithMIMEType("a/a"));
}

TEST_F(UTTypeSystemCatalogTest, HasTheLibrarysTypesWhereThereIsNoDatabase) {
  const UTTypeSystemCatalog catalog({});
  for (const char* extension : {"qif", "qmtf", "ofx", "qfx", "txf", "csv", "txt", "png"})
    EXPECT_TRUE(catalog.recordWithFilenameExtension(extension)) << extension;
  EXPECT_FALSE(catalog.recordWithFilenameExtension("flac"));
  EXPECT_FALSE(catalog.recordWithMIMEType("audio/flac"));
}

TEST_F(UTTypeSystemCatalogTest, TakesItsFoldersFromTheEnvironment) {
  const orlftest::EnvironmentVariable data("XDG_DATA_HOME", "/own"),
      more("XDG_DATA_DIRS", "/a::/b");
  EXPECT_EQ(UTTypeSystemCatalog::systemFolders(),
            (std::vector<std::string>{"/own/mime", "/a/mime", "/b/mime"}));
  const orlftest::EnvironmentVariable home("HOME", "/home/someone");
  data.set(nullptr);
  more.set(nullptr);
  EXPECT_EQ(UTTypeSystemCatalog::systemFolders(),
            (std::vector<std::string>{"/home/someone/.local/share/mime", "/usr/local/share/mime",
                                      "/usr/share/mime"}));
}

}  // namespace
}  // namespace ORLFoundation

#include <ORLFoundation/platform/files/NSURLRelationship.h>

#include <ORLFoundation/platform/files/internal/TrashFolders.h>
#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <tests/support/EnvironmentVariable.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using internal::files::relationshipOfTrash;
using internal::files::TrashPlaces;

constexpr uid_t kUser = 1234;

/// A volume with a home on it, and the places of the Trash.
class Trash : public orlftest::TemporaryFolderTest {
 protected:
  Trash() {
    for (const char* folder :
         {"home/Trash/files/sub", "home/Trash/info", "docs", "volume/.Trash/1234/files",
          "volume/.Trash-1234/files", "volume/.Trash-99/files", "volume/docs"})
      fs::create_directories(path(folder));
    setSticky(true);
  }
  void setSticky(bool isSticky) {
    ASSERT_EQ(::chmod(path("volume/.Trash").c_str(), isSticky ? 01777 : 0777), 0);
  }
  /// Of an empty file that is made there.
  std::optional<NSURLRelationship> at(const std::string& name) {
    write(name, "");
    return of(name);
  }
  std::optional<NSURLRelationship> of(const std::string& name) {
    return relationshipOfTrash(path(name), places_);
  }

  TrashPlaces places_{path("home/Trash"), kUser, [this](const std::string& folder) {
                        return folder == fs::canonical(folder_ / "volume").string();
                      }};
};

TEST_F(Trash, HoldsWhatLiesInTheUsersOwn) {
  EXPECT_EQ(at("home/Trash/files/a"), NSURLRelationshipContains);
  EXPECT_EQ(at("home/Trash/files/sub/a"), NSURLRelationshipContains);
  EXPECT_EQ(of("home/Trash/files"), NSURLRelationshipContains);
  EXPECT_EQ(of("home/Trash"), NSURLRelationshipSame);
  EXPECT_EQ(of("home/Trash/"), NSURLRelationshipSame);
  EXPECT_EQ(of("home"), NSURLRelationshipOther);
  EXPECT_EQ(at("docs/a"), NSURLRelationshipOther);
  EXPECT_EQ(at("home/Trashy"), NSURLRelationshipOther);
  EXPECT_EQ(of("home/Trash/../../docs/a"), NSURLRelationshipOther);
}

TEST_F(Trash, HoldsWhatLiesInThatOfItsVolume) {
  EXPECT_EQ(at("volume/.Trash/1234/files/a"), NSURLRelationshipContains);
  EXPECT_EQ(of("volume/.Trash/1234"), NSURLRelationshipSame);
  EXPECT_EQ(at("volume/.Trash-1234/files/a"), NSURLRelationshipContains);
  EXPECT_EQ(at("volume/.Trash-99/files/a"), NSURLRelationshipOther) << "another user's";
  EXPECT_EQ(at("volume/docs/a"), NSURLRelationshipOther);
  fs::create_directories(path("volume/docs/.Trash-1234"));
  EXPECT_EQ(at("volume/docs/.Trash-1234/a"), NSURLRelationshipOther) << "not at its top";
}

TEST_F(Trash, LeavesSharedFoldersThatAreNotSafe) {
  setSticky(false);
  EXPECT_EQ(at("volume/.Trash/1234/files/a"), NSURLRelationshipOther);
  fs::rename(path("volume/.Trash-1234"), path("volume/real"));
  fs::create_symlink(path("volume/real"), path("volume/.Trash-1234"));
  EXPECT_EQ(at("volume/.Trash-1234/files/a"), NSURLRelationshipOther);
  fs::rename(path("volume/.Trash"), path("volume/shared"));
  ASSERT_EQ(::chmod(path("volume/shared").c_str(), 01777), 0);
  fs::create_symlink(path("volume/shared"), path("volume/.Trash"));
  EXPECT_EQ(at("volume/.Trash/1234/files/a"), NSURLRelationshipOther);
}

TEST_F(Trash, FollowsLinksOnTheWayAndNoneAtTheEnd) {
  write("home/Trash/files/a", "");
  fs::create_directory_symlink(path("home/Trash"), path("docs/way"));
  fs::create_symlink(path("home/Trash/files/a"), path("docs/link"));
  EXPECT_EQ(of("docs/way/files/a"), NSURLRelationshipContains);
  EXPECT_EQ(of("docs/link"), NSURLRelationshipOther);
  places_.home = path("docs/way");
  EXPECT_EQ(of("home/Trash/files/a"), NSURLRelationshipContains) << "his own may be a link";
}

TEST_F(Trash, IsNowhereWhereNobodyHasOne) {
  write("home/Trash/files/a", "");
  for (const std::string& home : {std::string(), path("nowhere")}) {
    places_.home = home;
    EXPECT_EQ(of("home/Trash/files/a"), NSURLRelationshipOther) << home;
  }
}

TEST_F(Trash, SaysNothingOfWhatIsNotThere) {
  EXPECT_EQ(of("nothing"), std::nullopt);
  EXPECT_EQ(errno, ENOENT);
  EXPECT_EQ(of("docs/nothing/a"), std::nullopt);
  EXPECT_EQ(relationshipOfTrash("", places_), std::nullopt);
  EXPECT_EQ(relationshipOfTrash("/", places_), NSURLRelationshipOther);
}

TEST_F(Trash, IsThatOfTheProcess) {
  const auto places = internal::files::trashPlaces();
  EXPECT_TRUE(places.isTop("/proc"));
  EXPECT_FALSE(places.isTop(folder_));
  EXPECT_TRUE(places.home.ends_with("/Trash")) << places.home;
}

TEST_F(Trash, StandsWhereTheEnvironmentSays) {
  const passwd* const entry = ::getpwuid(::getuid());
  const std::string recorded =
      entry == nullptr ? "" : std::string(entry->pw_dir) + "/.local/share/Trash";
  const struct {
    const char *data, *home;
    std::string trash;
  } rows[] = {{"/data", "/home/ann", "/data/Trash"},
              {nullptr, "/home/ann", "/home/ann/.local/share/Trash"},
              {"", "/home/ann", "/home/ann/.local/share/Trash"},
              {"data", "/home/ann", "/home/ann/.local/share/Trash"},
              {nullptr, "ann", recorded},
              {nullptr, "", recorded},
              {nullptr, nullptr, recorded}};
  for (const auto& row : rows) {
    const orlftest::EnvironmentVariable data("XDG_DATA_HOME", row.data), home("HOME", row.home);
    EXPECT_EQ(internal::files::trashPlaces().home, row.trash);
  }
}

TEST_F(Trash, IsAskedByAddress) {
  const auto ask = [&](const NSURL& url, NSUInteger directory = NSTrashDirectory) {
    NSURLRelationship relationship = NSURLRelationshipSame;
    std::shared_ptr<const NSError> error;
    if (getRelationship(&relationship, directory, 0, url, &error)) return -NSInteger{relationship};
    EXPECT_FALSE(getRelationship(&relationship, directory, 0, url));
    EXPECT_EQ(relationship, NSURLRelationshipSame) << "left as it was";
    EXPECT_EQ(error->domain(), NSCocoaErrorDomain);
    return error->code();
  };
  EXPECT_EQ(ask(NSURL::fileURLWithPath(write("docs/a", ""))), -NSURLRelationshipOther);
  EXPECT_EQ(ask(NSURL::fileURLWithPath(path("nothing"))), 260);
  EXPECT_EQ(ask(NSURL::fileURLWithPath(std::string("/\0", 2))), 260);
  EXPECT_EQ(ask(*NSURL::URLWithString("https://example.com/")), 262);
  EXPECT_EQ(ask(NSURL::fileURLWithPath("/"), 99), 3328);
}

}  // namespace
}  // namespace ORLFoundation

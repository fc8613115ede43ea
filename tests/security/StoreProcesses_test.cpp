// A store's file while its writers die, and while two processes write into it. With --merge-sets
// this program is one of those writers.
//
// ORLF_STORE_KILLS is how often a writer is killed, and ORLF_STORE_SETS how many sets each of two
// processes makes: 500 and 1000 are promised. Where they are not set there are fewer, for the time
// that they take.
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSDictionary.h>
#include <ORLFoundation/security/store/ORLFEncryptedStore.h>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <tests/support/TemporaryFolder.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace ORLFoundation;

/// Calls of this process that bring files to the disk and to their names, in order.
std::vector<std::string> diskCalls;

std::string nameOf(int file) {
  std::error_code code;
  return fs::read_symlink("/proc/self/fd/" + std::to_string(file), code).filename().string();
}

/// A file's new name beside another is told without its last part, which is new each time.
std::string withoutSuffix(const std::string& path) {
  return fs::path(path).stem().string() + (fs::path(path).has_extension() ? ".*" : "");
}

}  // namespace

// What the library calls, in place of the system's.
extern "C" int fsync(int file) {
  diskCalls.push_back("fsync " + withoutSuffix(nameOf(file)));
  return static_cast<int>(::syscall(SYS_fsync, file));
}
extern "C" int rename(const char* from, const char* to) noexcept {
  diskCalls.push_back("rename " + withoutSuffix(from) + " " + withoutSuffix(to));
  return static_cast<int>(::syscall(SYS_renameat2, AT_FDCWD, from, AT_FDCWD, to, 0));
}
extern "C" int renameat2(int fromFolder, const char* from, int toFolder, const char* to,
                         unsigned flags) noexcept {
  diskCalls.push_back("appear " + withoutSuffix(from) + " " + withoutSuffix(to));
  return static_cast<int>(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags));
}

namespace {

using testing::ElementsAre;
using Store = ORLFEncryptedStore;

constexpr const char* kPassword = "pw";

int countFrom(const char* variable, int otherwise) {
  const char* const text = std::getenv(variable);
  return text != nullptr ? std::atoi(text) : otherwise;
}

/// A content by its number, as long as a store of some dozens of entries.
id contentOf(std::int64_t number) {
  return NSDictionary::dictionaryWithEntries(
      {{"number", number}, {"filler", std::string(4000, static_cast<char>('a' + number % 26))}});
}

class StoreProcesses : public orlftest::TemporaryFolderTest {
 protected:
  StoreProcesses() : TemporaryFolderTest(orlftest::parentInMemory()) {}
  [[nodiscard]] NSURL url() const { return NSURL::fileURLWithPath(path("store")); }
  void expectPrivateFilesAlone() const {
    for (const std::string& name : names()) EXPECT_EQ(modeOf(name), 0600U) << name;
  }
};

TEST_F(StoreProcesses, BringFileAndFolderToTheDiskBeforeSuccess) {
  const std::string folder = withoutSuffix(folder_.filename());
  diskCalls.clear();
  const auto store = Store::openStoreWithFileAtURL(url(), kPassword);
  EXPECT_THAT(std::exchange(diskCalls, {}),
              ElementsAre("fsync store.*", "appear store.* store", "fsync " + folder));
  store->setStoreInKeychain(false);
  ASSERT_TRUE(store->setPassword("p", "ann", "bank", std::nullopt));
  EXPECT_THAT(std::exchange(diskCalls, {}),
              ElementsAre("fsync store.*", "rename store.* store", "fsync " + folder));
  ASSERT_TRUE(store->mergePassword("p", "bob", "bank", std::nullopt));
  EXPECT_THAT(std::exchange(diskCalls, {}),
              ElementsAre("fsync store.*", "rename store.* store", "fsync " + folder));
}

TEST_F(StoreProcesses, LeaveTheOldOrTheNewContentWhereTheyAreKilled) {
  const int kills = countFrom("ORLF_STORE_KILLS", 100);
  constexpr int kShortest = 50;  // microseconds
  using Counter = std::atomic<std::int64_t>;
  void* const memory =
      ::mmap(nullptr, sizeof(Counter), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  Counter& written = *new (memory) Counter(0);
  using Clock = std::chrono::steady_clock;
  const auto begun = Clock::now();
  constexpr int kWritings = 5;
  for (int writing = 0; writing < kWritings; ++writing)
    ASSERT_TRUE(Store::writeEncryptedPropertyList(contentOf(0), url(), kPassword));
  // A child begins, and writes a few times, however slow the machine is.
  const auto once =
      std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begun) / kWritings;
  const int longest = std::max(2500, 3 * static_cast<int>(once.count()) + 1000);
  std::mt19937 random(20240131);
  int newOnes = 0, leftBehind = 0;
  for (int kill = 0; kill < kills; ++kill) {
    SCOPED_TRACE(kill);
    const pid_t writer = ::fork();
    if (writer == 0) {
      for (std::int64_t number = written + 1;; ++number) {
        if (!Store::writeEncryptedPropertyList(contentOf(number), url(), kPassword)) ::_exit(1);
        written = number;
      }
    }
    std::this_thread::sleep_for(
        std::chrono::microseconds(std::uniform_int_distribution<int>(kShortest, longest)(random)));
    ::kill(writer, SIGKILL);
    int status = 0;
    ::waitpid(writer, &status, 0);
    ASSERT_TRUE(WIFSIGNALED(status)) << "it failed by itself";
    const std::int64_t before = written;
    const id content = Store::readEncryptedPropertyListForFileAtURL(url(), kPassword);
    const bool isNew = content == contentOf(before + 1);
    ASSERT_TRUE(isNew || content == contentOf(before));
    newOnes += isNew ? 1 : 0;
    written = before + (isNew ? 1 : 0);
    expectPrivateFilesAlone();
    for (const std::string& name : names())
      if (name != "store" && fs::remove(path(name))) ++leftBehind;
  }
  EXPECT_GT(written, kills / 10) << "nothing to tear";
  EXPECT_GT(leftBehind + newOnes, 0) << "none was killed amid a writing";
  ::munmap(memory, sizeof(Counter));
}

/// Sets passwords from a number on, and tells of each by a byte on the standard output.
int mergeSets(const std::string& file, const std::string& name, int from, int count) {
  const auto store = Store::openStoreWithFileAtURL(NSURL::fileURLWithPath(file), kPassword);
  if (!store) return 1;
  store->setStoreInKeychain(false);
  std::mt19937 random(static_cast<unsigned>(from));
  for (int number = from; number < count; ++number) {
    const std::string user = name + "-" + std::to_string(number);
    const std::string service = "service " + std::to_string(random() % 7);
    if (!store->mergePassword("of " + user, user, service, std::nullopt)) return 1;
    if (::write(STDOUT_FILENO, "+", 1) != 1) return 1;
  }
  return 0;
}

/// A process that makes sets, begun anew after each of its deaths.
class Setter {
 public:
  Setter(std::string file, std::string name, int count)
      : file_(std::move(file)), name_(std::move(name)), count_(count) {}

  void begin() {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
    std::string words[] = {"setter", "--merge-sets",        file_,
                           name_,    std::to_string(done_), std::to_string(count_)};
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    arguments.push_back(nullptr);
    ASSERT_EQ(
        ::posix_spawn(&process_, "/proc/self/exe", &actions, nullptr, arguments.data(), environ),
        0);
    posix_spawn_file_actions_destroy(&actions);
    ::close(ends[1]);
    output_ = ends[0];
  }
  void kill() const { ::kill(process_, SIGKILL); }
  /// Counts what was told, and answers whether the process came to its own end.
  bool end() {
    std::array<char, 256> told{};
    for (ssize_t count = 0; (count = ::read(output_, told.data(), told.size())) > 0;)
      done_ += static_cast<int>(count);
    ::close(output_);
    int status = 0;
    ::waitpid(process_, &status, 0);
    EXPECT_TRUE(WIFSIGNALED(status) || WEXITSTATUS(status) == 0);
    return !WIFSIGNALED(status);
  }
  [[nodiscard]] bool isDone() const { return done_ == count_; }

 private:
  const std::string file_, name_;
  const int count_;
  int done_ = 0;
  pid_t process_ = 0;
  int output_ = -1;
};

TEST_F(StoreProcesses, LoseNoSetThatWasToldOfWhileOthersWriteAndDie) {
  const int count = countFrom("ORLF_STORE_SETS", 40);
  const int longest = 30 + count;  // milliseconds that a process lives
  std::mt19937 random(20240131);
  std::vector<Setter> setters{{path("store"), "a", count}, {path("store"), "b", count}};
  int deaths = 0;
  while (!setters[0].isDone() || !setters[1].isDone()) {
    for (Setter& setter : setters) setter.begin();
    std::this_thread::sleep_for(
        std::chrono::milliseconds(std::uniform_int_distribution<int>(10, longest)(random)));
    // One dies, the other may be waiting for its lock and goes on; the last ones come to their end.
    if (deaths < 8) setters[random() % 2].kill();
    for (Setter& setter : setters) deaths += setter.end() ? 0 : 1;
  }
  EXPECT_GT(deaths, 0);
  EXPECT_EQ(Store::checkPassword(kPassword, url()), ORLFEncryptedStoreOpens);
  const auto store = Store::openStoreWithFileAtURL(url(), kPassword);
  std::size_t found = 0;
  for (int service = 0; service < 7; ++service)
    for (const std::string& user :
         store->usersForPasswordService("service " + std::to_string(service), Store::noContext())) {
      ++found;
      EXPECT_EQ(
          store->passwordForUser(user, "service " + std::to_string(service), Store::noContext()),
          "of " + user);
    }
  // A set that was made and not told of is made again, mostly at another service.
  EXPECT_GE(found, 2U * static_cast<unsigned>(count));
  EXPECT_LE(found, 2U * static_cast<unsigned>(count + deaths));
  expectPrivateFilesAlone();
}

}  // namespace

int main(int count, char** words) {
  if (count == 6 && std::string(words[1]) == "--merge-sets")
    return mergeSets(words[2], words[3], std::atoi(words[4]), std::atoi(words[5]));
  testing::InitGoogleMock(&count, words);
  return RUN_ALL_TESTS();
}

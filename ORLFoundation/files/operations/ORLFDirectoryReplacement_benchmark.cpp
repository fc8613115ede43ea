// A folder of small files brought into an empty one and over an equal one, beside rsync doing the
// same. 10,000 files where benchmarks are measured for real (ORLF_MIRRORED_FILES), some hundreds
// where they only prove their answers.
#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>
#include <benchmark/benchmark.h>
#include <spawn.h>
#include <sys/wait.h>
#include <tests/support/Files.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace ORLFoundation;

constexpr int kFilesOfFolder = 100, kFewFiles = 300;

/// Two folders, gone when the process ends.
class Trees {
 public:
  Trees() {
    const char* wanted = std::getenv("ORLF_MIRRORED_FILES");
    count_ = wanted != nullptr ? std::atoi(wanted) : kFewFiles;
    for (int i = 0; i < count_; ++i) {
      const std::string folder = "source/folder" + std::to_string(i / kFilesOfFolder);
      folder_.write(folder + "/file" + std::to_string(i),
                    std::string(static_cast<std::size_t>(200 + i % 1000), 'x'));
    }
  }

  [[nodiscard]] fs::path source() const { return folder_.path() / "source"; }
  [[nodiscard]] fs::path destination() const { return folder_.path() / "destination"; }
  [[nodiscard]] int count() const { return count_; }
  /// Puts an empty folder in place of the destination. What stood there stays elsewhere to the end:
  /// a file system may take its time to give the place of removed files to new ones.
  void empty() {
    if (fs::exists(destination()))
      fs::rename(destination(), folder_.path() / ("old" + std::to_string(emptied_++)));
    fs::create_directory(destination());
  }
  [[nodiscard]] bool isMirrored() const {
    int found = 0;
    for (const auto& entry : fs::recursive_directory_iterator(destination())) {
      if (!entry.is_regular_file()) continue;
      const fs::path original = source() / fs::relative(entry.path(), destination());
      found += fs::file_size(original) == entry.file_size() &&
                       fs::last_write_time(original) == entry.last_write_time()
                   ? 1
                   : 0;
    }
    return found == count_;
  }

 private:
  const orlftest::TemporaryFolder folder_;
  int count_ = 0, emptied_ = 0;
};

Trees& trees() {
  static Trees made;
  return made;
}

void runOurs(bool, bool bringsToDisk) {
  NSFileManager manager;
  manager.setBringsCopiesToDisk(bringsToDisk);
  std::shared_ptr<const NSError> error;
  if (!orlfReplaceContentsOfDirectoryAtURL(
          manager, NSURL::fileURLWithPath(trees().destination().string()),
          NSURL::fileURLWithPath(trees().source().string()), 0, nullptr, &error))
    throw std::runtime_error(error->localizedDescription());
}

void runRsync(bool isOverEqual, bool bringsToDisk) {
  std::vector<std::string> words{"rsync", isOverEqual ? "-aI" : "-a"};
  if (isOverEqual) words.emplace_back("--delete");
  if (bringsToDisk) words.emplace_back("--fsync");
  words.push_back(trees().source().string() + "/");
  words.push_back(trees().destination().string() + "/");
  std::vector<char*> arguments;
  std::transform(words.begin(), words.end(), std::back_inserter(arguments),
                 [](std::string& word) { return word.data(); });
  arguments.push_back(nullptr);
  pid_t child = 0;
  int status = 0;
  if (::posix_spawnp(&child, "rsync", nullptr, nullptr, arguments.data(), environ) != 0 ||
      ::waitpid(child, &status, 0) != child || status != 0)
    throw std::runtime_error("rsync did not run");
}

using Run = void (*)(bool isOverEqual, bool bringsToDisk);

void mirror(benchmark::State& state, Run run, bool isOverEqual, bool bringsToDisk) {
  for (auto turn : state) {
    state.PauseTiming();
    const bool isEqual = fs::exists(trees().destination()) && trees().isMirrored();
    if (!isOverEqual || !isEqual) trees().empty();
    if (isOverEqual && !isEqual) runOurs(false, false);
    state.ResumeTiming();
    run(isOverEqual, bringsToDisk);
    state.PauseTiming();
    if (!trees().isMirrored()) state.SkipWithError("the folders differ");
    state.ResumeTiming();
  }
  state.SetItemsProcessed(state.iterations() * trees().count());
}

const bool kAreRegistered = [] {
  struct Work {
    const char* name;
    bool isOverEqual, bringsToDisk;
  };
  for (const Work& work :
       {Work{"IntoAnEmptyFolder", false, false}, Work{"OverAnEqualFolder", true, false},
        Work{"IntoAnEmptyFolderToTheDisk", false, true},
        Work{"OverAnEqualFolderToTheDisk", true, true}})
    for (const auto& [engine, run] :
         {std::pair<const char*, Run>{"ours", &runOurs}, {"rsync", &runRsync}})
      benchmark::RegisterBenchmark((std::string(work.name) + "/" + engine).c_str(), &mirror, run,
                                   work.isOverEqual, work.bringsToDisk)
          ->UseRealTime()
          ->Unit(benchmark::kMillisecond);
  return true;
}();

}  // namespace

#include <ORLFoundation/files/watching/ORLFFileSystemObserver_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <functional>
#include <map>

namespace ORLFoundation {
namespace {

namespace fs = std::filesystem;
using orlftest::Json;
using orlftest::ObservedFile;

/// A real file in a real folder, another folder, and the steps of a row.
class RealFilePlayer {
 public:
  RealFilePlayer() {
    fs::create_directory(elsewhere_);
    std::ofstream(file_) << "content";
  }

  Json play(const std::string& step) {
    Json result;
    if (step == "start") {
      result = observed_.observer->startObserving();
    } else {
      steps_.at(step)();
    }
    Json events = Json::array();
    for (const auto& [event, place] : observed_.events()) {
      const Json told = {event, place ? nameOf(*place) : Json()};
      if (events.empty() || events.back() != told) events.push_back(told);
    }
    return {
        {"result", result}, {"observing", observed_.observer->isObserving()}, {"events", events}};
  }

 private:
  [[nodiscard]] Json nameOf(const std::string& place) const {
    return fs::weakly_canonical(place) == fs::weakly_canonical(moved_) ? Json("elsewhere")
                                                                       : Json(place);
  }
  void move(const fs::path& folder) {
    moved_ = folder / ("moved" + std::to_string(++moves_));
    fs::rename(file_, moved_);
  }
  void overwrite() const { std::fstream(file_, std::ios::in | std::ios::out) << "C"; }
  void backupAndWrite() {
    dispatch_sync(observed_.queue, [this] {
      fs::rename(file_, file_.string() + ".backup");
      std::ofstream(file_) << "again";
    });
  }
  void read() const {
    std::string text;
    std::ifstream(file_) >> text;
    EXPECT_FALSE(text.empty());
  }

  const orlftest::TemporaryFolder folder_{orlftest::parentInMemory()};
  const fs::path file_ = folder_.path() / "file";
  const fs::path elsewhere_ = folder_.path() / "elsewhere";
  fs::path moved_;
  int moves_ = 0;
  ObservedFile observed_{file_};
  const std::map<std::string, std::function<void()>> steps_ = {
      {"stop", [this] { observed_.observer->stopObserving(); }},
      {"append", [this] { orlftest::appendTo(file_); }},
      {"overwrite", [this] { overwrite(); }},
      {"read", [this] { read(); }},
      {"chmod", [this] { fs::permissions(file_, fs::perms::owner_all); }},
      {"delete", [this] { fs::remove(file_); }},
      {"create", [this] { std::ofstream(file_) << "new"; }},
      {"atomicSave", [this] { orlftest::saveAtomically(file_, "saved"); }},
      {"moveAway", [this] { move(elsewhere_); }},
      {"moveBack", [this] { fs::rename(moved_, file_); }},
      {"moveToTrash", [this] { move(orlftest::trashFolder()); }},
      {"backupAndWrite", [this] { backupAndWrite(); }},
  };
};

std::string playRealFile(const Json& in, const Json& out) {
  RealFilePlayer player;
  return orlftest::scriptDisagreement(
      in.at("steps"), out, [&](const Json& step) { return player.play(step.get<std::string>()); });
}

TEST(ORLFFileSystemObserver, AgreesWithVectorsOfRealFiles) {
  orlftest::trashFolder();
  orlftest::runJsonVectors("files_watch", {{"watch", playRealFile}});
}

}  // namespace
}  // namespace ORLFoundation

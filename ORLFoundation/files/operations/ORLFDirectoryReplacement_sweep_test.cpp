// The replacement beside its procedure told step by step, over random trees, answers, options and
// failures.
#include <ORLFoundation/files/operations/internal/ReplacementPlan.h>
#include <ORLFoundation/files/operations/internal/ReplacementTrees_testing.h>
#include <gtest/gtest.h>
#include <tests/support/ProcessorTime.h>
#include <tests/support/TemporaryFolder.h>

#include <array>
#include <random>

namespace ORLFoundation {
namespace {

using namespace internal::operations;
using Error = std::shared_ptr<const NSError>;
using Handler = std::function<bool(const std::string& item, NSUInteger action)>;

/// Gives one item after the other; ends at the first folder that cannot be listed.
class Enumerator {
 public:
  Enumerator(TreesInMemory& trees, Side side, NSUInteger options)
      : trees_(trees), side_(side), options_(options) {}

  std::optional<internal::files::FolderWalk::Item> nextItem() {
    if (isFolder_ && !(isBegun_ && (options_ & 1) != 0) && !push()) return std::nullopt;
    isBegun_ = true;
    if (left_.empty()) return std::nullopt;
    auto item = left_.back();
    left_.pop_back();
    last_ = item.path;
    isFolder_ = item.kind == internal::files::FileKind::Folder;
    return item;
  }
  void skipDescendants() { isFolder_ = false; }
  [[nodiscard]] const Error& error() const { return error_; }

 private:
  bool push() {
    const auto entries = trees_.list(side_, last_, &error_);
    if (!entries) return false;
    for (auto entry = entries->rbegin(); entry != entries->rend(); ++entry)
      if ((options_ & 4) == 0 || entry->name.front() != '.')
        left_.push_back({internal::files::joinedPath(last_, entry->name), entry->kind});
    return true;
  }

  TreesInMemory& trees_;
  const Side side_;
  const NSUInteger options_;
  std::vector<internal::files::FolderWalk::Item> left_;
  std::string last_;
  bool isFolder_ = true, isBegun_ = false;
  Error error_;
};

/// The procedure.
class Procedure {
 public:
  Procedure(TreesInMemory& trees, NSUInteger options, Handler handler)
      : trees_(trees), options_(options), handler_(std::move(handler)) {}

  Error run() {
    for (const auto phase : {&Procedure::findRemovals, &Procedure::findUpdates})
      if (Error error = (this->*phase)()) return error;
    if (removals_.empty() && updates_.empty()) return nullptr;
    trees_.requestTemporaryFolder();
    Error error;
    if (update(error)) remove(error);
    trees_.endTemporaryFolder();
    return error;
  }

 private:
  static bool isMissing(const Error& error) {
    return error->domain() == NSCocoaErrorDomain && error->code() == 260;
  }

  Error findRemovals() {
    Enumerator items(trees_, Side::Destination, options_);
    while (const auto item = items.nextItem()) {
      Error error;
      const auto relative = trees_.resolved(Side::Destination, item->path, &error);
      if (!relative) return error;
      const auto counterpart = trees_.resolved(Side::Source, *relative, &error);
      if (!counterpart) return error;
      if (trees_.values(Side::Source, *counterpart, &error)) continue;
      if (!isMissing(error)) return error;
      if (handler_ && !handler_(item->path, 4)) continue;
      Error ignored;
      if (!trees_.values(Side::Destination, item->path, &ignored)) continue;
      removals_.push_back(*relative);
      items.skipDescendants();
    }
    return items.error();
  }

  Error findUpdates() {
    Enumerator items(trees_, Side::Source, options_);
    while (const auto item = items.nextItem()) {
      const bool isDirectory = item->kind == internal::files::FileKind::Folder;
      Error error;
      const auto relative = trees_.resolved(Side::Source, item->path, &error);
      if (!relative) return error;
      const auto counterpart = trees_.resolved(Side::Destination, *relative, &error);
      if (!counterpart) return error;
      NSUInteger action = 2;  // the dates, never asked for, never agree
      if (const auto values = trees_.values(Side::Destination, *counterpart, &error)) {
        if (isDirectory && values->isDirectory) action = 3;
      } else if (isMissing(error)) {
        action = 1;
      } else {
        return error;
      }
      if (handler_ && !handler_(*counterpart, action)) {
        if (isDirectory) items.skipDescendants();
        continue;
      }
      if (action == 3) continue;
      updates_.emplace_back(*relative, *counterpart);
      if (isDirectory) items.skipDescendants();
    }
    return items.error();
  }

  bool update(Error& error) {
    for (const auto& [source, destination] : updates_) {
      if (!trees_.copy(source, destination, &error)) return false;
      const bool isReplaced = trees_.replace(destination, &error);
      trees_.discard(destination);
      if (!isReplaced) return false;
    }
    return true;
  }

  void remove(Error& error) {
    for (const std::string& item : removals_) {
      if (trees_.remove(item, &error)) continue;
      if (error->domain() != NSCocoaErrorDomain || error->code() != 4) return;
      error = nullptr;
    }
  }

  TreesInMemory& trees_;
  const NSUInteger options_;
  const Handler handler_;
  std::vector<std::string> removals_;
  std::vector<std::pair<std::string, std::string>> updates_;
};

/// Trees, options, answers and failures of a seed.
class RandomWork {
 public:
  explicit RandomWork(unsigned seed, bool hasLinks) : random_(seed), hasLinks_(hasLinks) {
    in["destination"] = tree(0);
    in["source"] = tree(0);
    constexpr std::array<NSUInteger, 6> kOptions{0, 0, 1, 4, 5, 2};
    options = odds(8) ? (NSUInteger{random_()} << 32U) | random_() : kOptions.at(random_() % 6);
    isAsking = !odds(5);
    constexpr std::array kVetoes{0U, 8U, 3U, 2U, 1U};
    const unsigned veto = kVetoes.at(random_() % kVetoes.size());
    for (bool& answer : answers_) answer = veto == 0 || !odds(veto);
    in["fail"] = TreeJson::array();
    while (hasLinks && odds(2)) in["fail"].push_back(failure());
  }

  /// The next answer, whatever is asked: one item may get both.
  bool answer() { return answers_.at(asked_++ % answers_.size()); }
  void beginAgain() { asked_ = 0; }

  TreeJson in;
  NSUInteger options = 0;
  bool isAsking = false;

 private:
  [[nodiscard]] bool odds(unsigned oneIn) { return random_() % oneIn == 0; }
  std::string name() {
    constexpr std::array kNames{"a", "b", "c", ".h", "Z"};
    return kNames.at(random_() % kNames.size());
  }
  std::string path() {
    std::string found = name();
    while (odds(2)) found += "/" + name();
    return found;
  }
  TreeJson tree(int depth) {
    TreeJson made = TreeJson::object();
    for (auto left = random_() % 5; left > 0; --left) {
      const unsigned kind = random_() % 8;
      if (kind < 4 && depth < 3)
        made[name()] = tree(depth + 1);
      else if (kind == 7 && hasLinks_)
        made[name()] = {"link", path()};
      else
        made[name()] = std::string(random_() % 3, 'x');
    }
    return made;
  }
  TreeJson failure() {
    constexpr std::array kCalls{"list",    "counterpart", "own",    "temporary", "copy",
                                "replace", "discard",     "remove", "end"};
    constexpr std::array kCodes{260, 4, 257, 513, 0};
    return {{"call", kCalls.at(random_() % kCalls.size())},
            {"side", odds(2) ? "source" : "destination"},
            {"phase", 1 + random_() % 2},
            {"path", odds(6) ? "" : path()},
            {"code", kCodes.at(random_() % kCodes.size())},
            {"domain", odds(3) ? "elsewhere" : "NSCocoaErrorDomain"}};
  }

  std::mt19937 random_;
  const bool hasLinks_;
  std::array<bool, 64> answers_{};
  std::size_t asked_ = 0;
};

Handler notingHandler(RandomWork& work, TreesInMemory& trees) {
  work.beginAgain();
  if (!work.isAsking) return nullptr;
  return [&](const std::string& item, NSUInteger action) {
    const bool answer = work.answer();
    trees.note({"ask", action, item, answer});
    return answer;
  };
}

TreeJson outcomeOf(const TreesInMemory& trees, const Error& error) {
  return {{"error", errorJson(error)}, {"tree", trees.destination()}, {"calls", trees.calls()}};
}

TreeJson outcomeOfProcedure(RandomWork& work) {
  TreesInMemory trees(work.in);
  const Error error = Procedure(trees, work.options, notingHandler(work, trees)).run();
  return outcomeOf(trees, error);
}

TreeJson outcomeOfPlan(RandomWork& work) {
  TreesInMemory trees(work.in);
  ReplacementPlan plan(trees, work.options, notingHandler(work, trees));
  Error error = plan.make();
  if (!error && !plan.isEmpty()) error = plan.carryOut();
  return outcomeOf(trees, error);
}

TEST(ORLFDirectoryReplacementSweep, DoesWhatItsProcedureSays) {
  constexpr unsigned kWorks = orlftest::kSlowdown > 1 ? 500 : 5000;
  unsigned failures = 0, copies = 0;
  for (unsigned seed = 0; seed < kWorks; ++seed) {
    RandomWork work(seed, true);
    const TreeJson expected = outcomeOfProcedure(work), actual = outcomeOfPlan(work);
    ASSERT_EQ(actual, expected) << "seed " << seed << "\n" << work.in.dump();
    failures += expected.at("error").is_null() ? 0 : 1;
    copies += expected.dump().find(R"("copy")") == std::string::npos ? 0 : 1;
  }
  EXPECT_GT(failures, kWorks / 10);
  EXPECT_LT(failures, kWorks / 2);
  EXPECT_GT(copies, kWorks / 3);
}

TEST(ORLFDirectoryReplacementSweep, DoesWhatItsProcedureSaysOnDisk) {
  constexpr unsigned kWorks = orlftest::kSlowdown > 1 ? 30 : 200;
  for (unsigned seed = 0; seed < kWorks; ++seed) {
    RandomWork work(seed, false);
    const TreeJson expected = outcomeOfProcedure(work);
    const orlftest::TemporaryFolder folder(orlftest::parentInMemory());
    const auto destination = std::filesystem::canonical(folder.path()) / "destination";
    makeTree(destination, work.in.at("destination"));
    makeTree(folder.path() / "source", work.in.at("source"));
    TreeJson asked = TreeJson::array(), wanted = TreeJson::array();
    work.beginAgain();
    ORLFDirectoryReplacementHandler handler;
    if (work.isAsking)
      handler = [&](const NSURL& url, ORLFDirectoryReplacementAction action) {
        asked.push_back(
            {"ask", action, url.path().substr(destination.native().size() + 1), work.answer()});
        return asked.back().at(3).get<bool>();
      };
    for (const TreeJson& call : expected.at("calls"))
      if (call.at(0) == "ask") wanted.push_back(call);
    Error error;
    ASSERT_TRUE(orlfReplaceContentsOfDirectoryAtURL(
        *NSFileManager::defaultManager(), NSURL::fileURLWithPath(destination.string()),
        NSURL::fileURLWithPath(folder.path().string() + "/source"), work.options, handler, &error))
        << "seed " << seed << ": " << error->localizedDescription();
    ASSERT_EQ(asked, wanted) << "seed " << seed;
    ASSERT_EQ(treeAt(destination), expected.at("tree")) << "seed " << seed;
    ASSERT_EQ(treeAt(folder.path() / "source"), work.in.at("source")) << "seed " << seed;
  }
}

}  // namespace
}  // namespace ORLFoundation

#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>

#include <ORLFoundation/files/operations/ORLFDirectoryReplacement_testing.h>
#include <ORLFoundation/files/operations/internal/ReplacementPlan.h>
#include <ORLFoundation/platform/files/HeldFolder.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/VectorFile.h>

#include <sstream>

namespace ORLFoundation {
namespace {

using namespace internal::operations;
using internal::files::FileKind;
using internal::files::folderOfPath;
using internal::files::joinedPath;
using internal::files::nameOfPath;
using orlftest::Json;

bool fillSlot(NSErrorSlot slot, const Json& error) {
  return NSFillErrorSlot(slot, error.at("domain").get<std::string>(),
                         error.at("code").get<NSInteger>(), "");
}

bool fillSlot(NSErrorSlot slot, NSInteger code) {
  return NSFillErrorSlot(slot, NSCocoaErrorDomain, code, "");
}

/// Two trees in memory, whose calls fail as a row says.
class TreesOfRow final : public ReplacementTrees {
 public:
  explicit TreesOfRow(const Json& in)
      : destination_(in.at("destination")),
        source_(in.at("source")),
        failures_(in.value("fail", Json::array())) {}

  [[nodiscard]] const Json& destination() const { return destination_; }
  [[nodiscard]] const Json& calls() const { return calls_; }
  void note(Json call) { calls_.push_back(std::move(call)); }

  std::optional<Entries> list(Side side, const std::string& folder, NSErrorSlot error) override {
    if (side == Side::Source) phase_ = 2;
    const char* name = side == Side::Source ? "source" : "destination";
    if (fails("list", folder, error,
              [&](const Json& failure) { return failure.at("side") == name; }))
      return std::nullopt;
    Entries entries;
    for (const auto& [entry, item] : itemAt(tree(side), folder)->items())
      entries.push_back({entry, kindOf(item)});
    return entries;
  }

  std::optional<std::string> resolved(Side side, const std::string& item,
                                      NSErrorSlot error) override {
    constexpr int kMostLinks = 40;
    std::string path = item;
    for (int links = 0; links < kMostLinks; ++links) {
      std::string rest;
      const auto link = firstLink(tree(side), path, rest);
      if (!link) return path;
      path = rest.empty() ? *link : joinedPath(*link, rest);
    }
    fillSlot(error, NSFileReadUnknownError);
    return std::nullopt;
  }

  std::optional<ItemValues> values(Side side, const std::string& item, NSErrorSlot error) override {
    const bool isOwn = phase_ == 1 && side == Side::Destination;
    const auto isOfPhase = [&](const Json& failure) { return failure.at("phase") == phase_; };
    if (isOwn ? fails("own", item, error) : fails("counterpart", item, error, isOfPhase))
      return std::nullopt;
    const Json* found = itemAt(tree(side), item);
    if (found == nullptr) fillSlot(error, NSFileReadNoSuchFileError);
    if (found == nullptr) return std::nullopt;
    ItemValues values{.isDirectory = found->is_object()};
    if (found->is_string())
      values.fileSize = static_cast<std::int64_t>(found->get<std::string>().size());
    return values;
  }

  void requestTemporaryFolder() override {
    note({"temporary"});
    std::shared_ptr<const NSError> error;
    hasTemporary_ = !fails("temporary", "", &error);
  }

  bool copy(const std::string& sourceItem, const std::string& destinationItem,
            NSErrorSlot error) override {
    const std::string name = nameOfPath(destinationItem);
    if (!hasTemporary_) return fillSlot(error, NSFileNoSuchFileError);
    note({"copy", sourceItem, name});
    const Json* found = itemAt(source_, sourceItem);
    if (fails("copy", destinationItem, error)) return false;
    if (found == nullptr) return fillSlot(error, NSFileReadNoSuchFileError);
    if (temporary_.contains(name)) return fillSlot(error, NSFileWriteFileExistsError);
    temporary_[name] = *found;
    return true;
  }

  bool replace(const std::string& destinationItem, NSErrorSlot error) override {
    const std::string name = nameOfPath(destinationItem);
    note({"replace", destinationItem, name});
    if (fails("replace", destinationItem, error)) return false;
    Json* folder = itemAt(destination_, folderOfPath(destinationItem));
    if (folder == nullptr || !folder->is_object()) return fillSlot(error, NSFileNoSuchFileError);
    (*folder)[name] = temporary_.at(name);
    temporary_.erase(name);
    return true;
  }

  void discard(const std::string& destinationItem) override {
    const std::string name = nameOfPath(destinationItem);
    note({"discard", name});
    if (!fails("discard", destinationItem, nullptr)) temporary_.erase(name);
  }

  bool remove(const std::string& destinationItem, NSErrorSlot error) override {
    note({"remove", destinationItem});
    if (fails("remove", destinationItem, error)) return false;
    if (itemAt(destination_, destinationItem) == nullptr)
      return fillSlot(error, NSFileNoSuchFileError);
    itemAt(destination_, folderOfPath(destinationItem))->erase(nameOfPath(destinationItem));
    return true;
  }

  bool settle(NSErrorSlot) override { return true; }

  void endTemporaryFolder() override {
    if (hasTemporary_) note({"end"});
  }

 private:
  static FileKind kindOf(const Json& item) {
    if (item.is_object()) return FileKind::Folder;
    return item.is_array() ? FileKind::Link : FileKind::File;
  }

  /// null where nothing stands.
  static Json* itemAt(Json& tree, const std::string& path) {
    Json* at = &tree;
    std::istringstream names(path);
    for (std::string name; std::getline(names, name, '/');) {
      if (!at->is_object() || !at->contains(name)) return nullptr;
      at = &(*at)[name];
    }
    return at;
  }

  /// Where the first link on a path leads to, and what comes after it on the path.
  static std::optional<std::string> firstLink(Json& tree, const std::string& path,
                                              std::string& rest) {
    for (std::size_t end = 0; end < path.size();) {
      end = std::min(path.find('/', end + 1), path.size());
      const Json* item = itemAt(tree, path.substr(0, end));
      if (item == nullptr || !item->is_array()) continue;
      rest = end < path.size() ? path.substr(end + 1) : "";
      return item->at(1).get<std::string>();
    }
    return std::nullopt;
  }

  template <class Condition>
  bool fails(const char* call, const std::string& path, NSErrorSlot error,
             const Condition& condition) {
    for (const Json& failure : failures_)
      if (failure.at("call") == call && failure.value("path", "") == path && condition(failure)) {
        fillSlot(error, failure);
        return true;
      }
    return false;
  }
  bool fails(const char* call, const std::string& path, NSErrorSlot error) {
    return fails(call, path, error, [](const Json&) { return true; });
  }

  Json& tree(Side side) { return side == Side::Source ? source_ : destination_; }

  Json destination_, source_;
  const Json failures_;
  Json temporary_ = Json::object(), calls_ = Json::array();
  bool hasTemporary_ = false;
  int phase_ = 1;
};

bool answerOf(const Json& handler, NSUInteger action, const std::string& path) {
  const bool isException =
      std::any_of(handler.at("except").begin(), handler.at("except").end(),
                  [&](const Json& pair) { return pair.at(0) == action && pair.at(1) == path; });
  return handler.at("default").get<bool>() != isException;
}

Json errorJson(const std::shared_ptr<const NSError>& error) {
  if (!error) return nullptr;
  return {{"domain", error->domain()}, {"code", error->code()}};
}

std::string compared(const Json& expected, const Json& actual) {
  return orlftest::disagreement(expected.dump(), actual.dump());
}

std::string checkInMemory(const Json& in, const Json& out) {
  TreesOfRow trees(in);
  const Json& handler = in.at("handler");
  ReplacementPlan::Ask ask;
  if (!handler.is_null())
    ask = [&](const std::string& item, ORLFDirectoryReplacementAction action) {
      const bool answer = answerOf(handler, action, item);
      trees.note({"ask", action, item, answer});
      return answer;
    };
  ReplacementPlan plan(trees, in.at("options").get<NSUInteger>(), ask);
  auto error = plan.make();
  if (!error && !plan.isEmpty()) error = plan.carryOut();
  Json actual = {{"calls", trees.calls()},
                 {"destination", trees.destination()},
                 {"error", errorJson(error)},
                 {"result", error == nullptr}};
  if (out.at("error") == "any") actual["error"] = "any";
  return compared(out, actual);
}

/// The questions of a list of calls as a set; calls of other kinds are left out.
Json questionsOf(const Json& calls) {
  std::vector<Json> questions;
  for (const Json& call : calls)
    if (call.at(0) == "ask") questions.push_back(call);
  std::sort(questions.begin(), questions.end());
  return questions;
}

std::string checkOnDisk(const Json& in, const Json& out) {
  if (in.contains("fail")) return "";
  const orlftest::TemporaryFolder folder(orlftest::parentInMemory());
  const auto destination = folder.path() / "destination", source = folder.path() / "source";
  makeTree(destination, in.at("destination"));
  makeTree(source, in.at("source"));
  const std::string prefix = std::filesystem::canonical(destination).string() + "/";
  Json calls = Json::array();
  ORLFDirectoryReplacementHandler handler;
  if (!in.at("handler").is_null())
    handler = [&](const NSURL& url, ORLFDirectoryReplacementAction action) {
      const std::string item = url.path().substr(prefix.size());
      const bool answer = answerOf(in.at("handler"), action, item);
      calls.push_back({"ask", action, item, answer});
      return answer;
    };
  std::shared_ptr<const NSError> error;
  const bool result = orlfReplaceContentsOfDirectoryAtURL(
      *NSFileManager::defaultManager(), NSURL::fileURLWithPath(destination.string()),
      NSURL::fileURLWithPath(source.string()), in.at("options").get<NSUInteger>(), handler, &error);
  const Json expected = {{"asks", questionsOf(out.at("calls"))},
                         {"destination", out.at("destination")},
                         {"source", in.at("source")},
                         {"error", out.at("error")},
                         {"result", out.at("result")}};
  return compared(expected, {{"asks", questionsOf(calls)},
                             {"destination", treeAt(destination)},
                             {"source", treeAt(source)},
                             {"error", errorJson(error)},
                             {"result", result}});
}

TEST(ORLFDirectoryReplacementVectors, AgreesWithTheVectors) {
  orlftest::runJsonVectors("files_replace", {{"replaceContents", &checkInMemory}});
}

TEST(ORLFDirectoryReplacementVectors, AgreesWithTheVectorsOnDisk) {
  orlftest::runJsonVectors("files_replace", {{"replaceContents", &checkOnDisk}});
}

}  // namespace
}  // namespace ORLFoundation

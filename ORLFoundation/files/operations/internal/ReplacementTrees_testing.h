/// The two folders of a replacement in memory, for tests of its steps.
#pragma once

#include <ORLFoundation/files/operations/ORLFDirectoryReplacement_testing.h>
#include <ORLFoundation/files/operations/internal/ReplacementTrees.h>
#include <ORLFoundation/platform/files/HeldFolder.h>
#include <ORLFoundation/platform/files/NSFileErrors.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <utility>

namespace ORLFoundation::internal::operations {

inline bool fillSlot(NSErrorSlot slot, const TreeJson& error) {
  return NSFillErrorSlot(slot, error.at("domain").get<std::string>(),
                         error.at("code").get<NSInteger>(), "");
}

inline bool fillSlot(NSErrorSlot slot, NSInteger code) {
  return NSFillErrorSlot(slot, NSCocoaErrorDomain, code, "");
}

/// Trees whose calls fail as a list of failures says, and the calls that were made. Where links go
/// round, and only there, a path cannot be resolved.
class TreesInMemory final : public ReplacementTrees {
 public:
  explicit TreesInMemory(const TreeJson& in)
      : destination_(in.at("destination")),
        source_(in.at("source")),
        failures_(in.value("fail", TreeJson::array())) {}

  [[nodiscard]] const TreeJson& destination() const { return destination_; }
  [[nodiscard]] const TreeJson& calls() const { return calls_; }
  void note(TreeJson call) { calls_.push_back(std::move(call)); }

  std::optional<Entries> list(Side side, const std::string& folder, NSErrorSlot error) override {
    if (side == Side::Source) phase_ = 2;
    const char* name = side == Side::Source ? "source" : "destination";
    if (fails("list", folder, error,
              [&](const TreeJson& failure) { return failure.at("side") == name; }))
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
      path = rest.empty() ? *link : files::joinedPath(*link, rest);
    }
    fillSlot(error, NSFileReadUnknownError);
    return std::nullopt;
  }

  std::optional<ItemValues> values(Side side, const std::string& item, NSErrorSlot error) override {
    const bool isOwn = phase_ == 1 && side == Side::Destination;
    const auto isOfPhase = [&](const TreeJson& failure) { return failure.at("phase") == phase_; };
    if (isOwn ? fails("own", item, error) : fails("counterpart", item, error, isOfPhase))
      return std::nullopt;
    const TreeJson* found = itemAt(tree(side), item);
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
    const std::string name = files::nameOfPath(destinationItem);
    if (!hasTemporary_) return fillSlot(error, NSFileNoSuchFileError);
    note({"copy", sourceItem, name});
    const TreeJson* found = itemAt(source_, sourceItem);
    if (fails("copy", destinationItem, error)) return false;
    if (found == nullptr) return fillSlot(error, NSFileReadNoSuchFileError);
    if (temporary_.contains(name)) return fillSlot(error, NSFileWriteFileExistsError);
    temporary_[name] = *found;
    return true;
  }

  bool replace(const std::string& destinationItem, NSErrorSlot error) override {
    const std::string name = files::nameOfPath(destinationItem);
    note({"replace", destinationItem, name});
    if (fails("replace", destinationItem, error)) return false;
    TreeJson* folder = itemAt(destination_, files::folderOfPath(destinationItem));
    if (folder == nullptr || !folder->is_object()) return fillSlot(error, NSFileNoSuchFileError);
    (*folder)[name] = temporary_.at(name);
    temporary_.erase(name);
    return true;
  }

  void discard(const std::string& destinationItem) override {
    const std::string name = files::nameOfPath(destinationItem);
    note({"discard", name});
    if (!fails("discard", destinationItem, nullptr)) temporary_.erase(name);
  }

  bool remove(const std::string& destinationItem, NSErrorSlot error) override {
    note({"remove", destinationItem});
    if (fails("remove", destinationItem, error)) return false;
    if (itemAt(destination_, destinationItem) == nullptr)
      return fillSlot(error, NSFileNoSuchFileError);
    itemAt(destination_, files::folderOfPath(destinationItem))
        ->erase(files::nameOfPath(destinationItem));
    return true;
  }

  bool settle(NSErrorSlot) override { return true; }

  void endTemporaryFolder() override {
    if (hasTemporary_) note({"end"});
  }

 private:
  static files::FileKind kindOf(const TreeJson& item) {
    if (item.is_object()) return files::FileKind::Folder;
    return item.is_array() ? files::FileKind::Link : files::FileKind::File;
  }

  /// null where nothing stands.
  static TreeJson* itemAt(TreeJson& tree, const std::string& path) {
    TreeJson* at = &tree;
    std::istringstream names(path);
    for (std::string name; std::getline(names, name, '/');) {
      if (!at->is_object() || !at->contains(name)) return nullptr;
      at = &(*at)[name];
    }
    return at;
  }

  /// Where the first link on a path leads to, and what comes after it on the path.
  static std::optional<std::string> firstLink(TreeJson& tree, const std::string& path,
                                              std::string& rest) {
    for (std::size_t end = 0; end < path.size();) {
      end = std::min(path.find('/', end + 1), path.size());
      const TreeJson* item = itemAt(tree, path.substr(0, end));
      if (item == nullptr || !item->is_array()) continue;
      rest = end < path.size() ? path.substr(end + 1) : "";
      return item->at(1).get<std::string>();
    }
    return std::nullopt;
  }

  template <class Condition>
  bool fails(const char* call, const std::string& path, NSErrorSlot error,
             const Condition& condition) {
    for (const TreeJson& failure : failures_)
      if (failure.at("call") == call && failure.value("path", "") == path && condition(failure)) {
        fillSlot(error, failure);
        return true;
      }
    return false;
  }
  bool fails(const char* call, const std::string& path, NSErrorSlot error) {
    return fails(call, path, error, [](const TreeJson&) { return true; });
  }

  TreeJson& tree(Side side) { return side == Side::Source ? source_ : destination_; }

  TreeJson destination_, source_;
  const TreeJson failures_;
  TreeJson temporary_ = TreeJson::object(), calls_ = TreeJson::array();
  bool hasTemporary_ = false;
  int phase_ = 1;
};

inline TreeJson errorJson(const std::shared_ptr<const NSError>& error) {
  if (!error) return nullptr;
  return {{"domain", error->domain()}, {"code", error->code()}};
}

}  // namespace ORLFoundation::internal::operations

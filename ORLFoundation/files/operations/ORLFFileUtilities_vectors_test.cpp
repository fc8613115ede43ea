#include <ORLFoundation/files/operations/ORLFFileUtilities.h>

#include <ORLFoundation/files/operations/ORLFURLAccess.h>
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/files/NSFileCoordinator.h>
#include <ORLFoundation/platform/object/NSError_testing.h>
#include <gtest/gtest.h>
#include <tests/support/VectorFile.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using orlftest::errorOfVector;
using orlftest::Json;
using orlftest::jsonDisagreement;
using Error = std::shared_ptr<const NSError>;

/// Answers as a row says.
class ManagerOfRow final : public NSFileManager {
 public:
  explicit ManagerOfRow(const Json& in) : in_(in) {}

  std::shared_ptr<NSDictionary> attributesOfItemAtPath(const std::string& path,
                                                       NSErrorSlot error) const override {
    const Json item = in_.at("attributes").value(path, Json{{"code", NSFileReadNoSuchFileError}});
    if (!item.contains("code"))
      return NSDictionary::dictionaryWithEntries(
          {{NSFileSystemNumber, item.at("volume").get<NSUInteger>()},
           {NSFileSystemFileNumber, item.at("file").get<NSUInteger>()}});
    NSFillErrorSlot(error, NSCocoaErrorDomain, item.at("code").get<NSInteger>(), "");
    return nullptr;
  }
  bool fileExistsAtPath(const std::string& path) const override {
    return holds("standing", path) || holds(created_, path);
  }
  bool createNewFileAtPath(const std::string& path, const std::optional<NSData>&,
                           const std::shared_ptr<NSDictionary>&) override {
    tried_.push_back(path);
    if (holds("refused", path)) return false;
    created_.push_back(path);
    return true;
  }
  bool removeItemAtURL(const NSURL&, NSErrorSlot error) override {
    const Error failure = errorOfVector(in_.at("error"));
    return !failure || NSFillErrorSlot(error, failure);
  }

  [[nodiscard]] const Json& tried() const { return tried_; }

 private:
  static bool holds(const Json& list, const std::string& path) {
    return std::find(list.begin(), list.end(), path) != list.end();
  }
  [[nodiscard]] bool holds(const char* list, const std::string& path) const {
    return holds(in_.value(list, Json::array()), path);
  }

  const Json& in_;
  Json tried_ = Json::array(), created_ = Json::array();
};

template <class Compare>
std::string checkIdentity(const Json& in, const Json& out, const Compare& compare) {
  const ManagerOfRow manager(in);
  Error error;
  const bool result = compare(manager, in.at("first").get<std::string>(),
                              in.at("second").get<std::string>(), &error);
  return jsonDisagreement(out,
                          {{"error", error ? Json(error->code()) : Json()}, {"result", result}});
}

std::string checkUnique(const Json& in, const Json& out) {
  ManagerOfRow manager(in);
  const std::string path =
      createUniqueFileAtPath(manager, in.at("path").get<std::string>(), NSData("x"));
  return jsonDisagreement(out, {{"created", manager.tried()}, {"path", path}});
}

std::string checkRemoval(const Json& in, const Json& out) {
  ManagerOfRow manager(in);
  Error error;
  const bool result = orlfRemoveItemAtURL(manager, NSURL::fileURLWithPath("/t/x"), &error);
  return jsonDisagreement(out, {{"error", orlftest::jsonFromError(error)}, {"result", result}});
}

TEST(ORLFFileUtilities, AgreeWithTheVectorsOfIdentity) {
  orlftest::runJsonVectors("files_identity",
                           {{"equivalentToPath",
                             [](const Json& in, const Json& out) {
                               return checkIdentity(in, out, &orlfIsPathEquivalentToPath);
                             }},
                            {"ansestorOfPath", [](const Json& in, const Json& out) {
                               return checkIdentity(in, out, &orlfIsPathAnsestorOfPath);
                             }}});
}

TEST(ORLFFileUtilities, AgreeWithTheVectorsOfUniqueFiles) {
  orlftest::runJsonVectors("files_unique", {{"createUniqueFile", &checkUnique}});
}

TEST(ORLFFileUtilities, AgreeWithTheVectorsOfRemovals) {
  orlftest::runJsonVectors("files_remove", {{"removeItem", &checkRemoval}});
}

/// Access that notes what is asked of it.
class ScopeOfRow final : public NSSecurityScope {
 public:
  ScopeOfRow(bool isGranted, Json& trace) : isGranted_(isGranted), trace_(trace) {}
  bool startAccessing(const NSURL&) override {
    trace_.push_back({"startAccess", isGranted_});
    return isGranted_;
  }
  void stopAccessing(const NSURL&) override { trace_.push_back({"stopAccess"}); }

 private:
  const bool isGranted_;
  Json& trace_;
};

class CoordinatorOfRow final : public NSFileCoordinator {
 public:
  CoordinatorOfRow(const Json& row, Json& trace) : row_(row), trace_(trace) {}
  void coordinateReadingItemAtURL(const NSURL&, NSUInteger options,
                                  const std::function<void(const NSURL& url)>& byAccessor,
                                  NSErrorSlot error) override {
    trace_.push_back({"coordinate", options});
    if (row_.at("calls").get<bool>())
      byAccessor(NSURL::URLWithString(row_.at("url").get<std::string>()).value());
    if (const Error failure = errorOfVector(row_.at("error"))) NSFillErrorSlot(error, failure);
  }

 private:
  const Json& row_;
  Json& trace_;
};

/// The call of a row; `kept` is given what ends the access where that is to come later.
bool access(const Json& in, Json& trace, ORLFURLRelinquish& kept, NSErrorSlot error) {
  const NSURL url = NSURL::URLWithString(in.at("url").get<std::string>()).value();
  const auto options = in.at("options").get<NSUInteger>();
  const auto accessor = [&](const NSURL& given) {
    trace.push_back({"accessor", given.absoluteString()});
    return errorOfVector(in.at("accessor"));
  };
  if (in.at("kind") == "synchronous")
    return orlfCoordinatedSecureAccessWithOptions(url, options, accessor, error);
  return orlfCoordinatedSecureAsynchronousAccessWithOptions(
      url, options,
      [&](const NSURL& given, const ORLFURLRelinquish& relinquish) {
        Error outcome = accessor(given);
        if (in.at("relinquish") == "at once") relinquish();
        if (in.at("relinquish") == "later") kept = relinquish;
        return outcome;
      },
      error);
}

std::string checkAccess(const Json& in, const Json& out) {
  Json trace = Json::array();
  const Replaced scope(NSSetSecurityScope,
                       std::make_shared<ScopeOfRow>(in.at("scoped").get<bool>(), trace));
  const Replaced coordination(NSSetFileCoordinatorMaker, [&] {
    return std::make_shared<CoordinatorOfRow>(in.at("coordinator"), trace);
  });
  ORLFURLRelinquish kept;
  Error error = NSError::errorWithDomain("before", 1);
  const bool result = access(in, trace, kept, &error);
  Json actual = {{"error", orlftest::jsonFromError(error)}, {"result", result}, {"trace", trace}};
  if (out.contains("afterwards")) {
    trace.clear();
    if (kept) kept();
    actual["afterwards"] = trace;
  }
  return jsonDisagreement(out, actual);
}

TEST(ORLFURLAccess, AgreesWithTheVectors) {
  orlftest::runJsonVectors("files_access", {{"coordinatedAccess", &checkAccess}});
}

}  // namespace
}  // namespace ORLFoundation

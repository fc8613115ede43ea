#include <ORLFoundation/files/repair/ORLFPersistentStoreRepair.h>

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/object/NSArray.h>
#include <ORLFoundation/platform/object/NSError_testing.h>
#include <ORLFoundation/platform/store/SQLiteCalls.h>
#include <gtest/gtest.h>
#include <tests/support/Files.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using internal::store::SQLiteCalls;
using orlftest::Json;
using orlftest::jsonDisagreement;
using Error = std::shared_ptr<const NSError>;

/// The database library of a row.
class CallsOfRow final : public SQLiteCalls {
 public:
  CallsOfRow(const Json& in, Json& trace) : in_(in), trace_(trace) {}

  int open(const std::string& text, sqlite3*&) override {
    trace_.push_back({"open", text});
    return in_.at("open").get<int>();
  }
  int prepare(sqlite3*, const char* sql, int length, sqlite3_stmt*&) override {
    trace_.push_back({"prepare", sql, length});
    return in_.at("prepare").get<int>();
  }
  int step(sqlite3_stmt*) override {
    trace_.push_back({"step"});
    return in_.at("step").get<int>();
  }
  int columnCount(sqlite3_stmt*) override { return in_.at("columns").get<int>(); }
  const char* columnText(sqlite3_stmt*, int column) override {
    trace_.push_back({"text", column});
    if (in_.at("text").is_null()) return nullptr;
    text_ = in_.at("text").get<std::string>();
    return text_.c_str();
  }
  int finalize(sqlite3_stmt*) override {
    trace_.push_back({"finalize"});
    return in_.value("finalize", 0);
  }
  int close(sqlite3*) override {
    trace_.push_back({"close"});
    return in_.value("close", 0);
  }

 private:
  const Json& in_;
  Json& trace_;
  std::string text_;
};

std::shared_ptr<NSDictionary> dictionaryOf(const Json& object);

id objectOf(const Json& value) {
  if (value.is_object()) return dictionaryOf(value);
  if (value.is_string()) return value.get<std::string>();
  if (value.is_boolean()) return value.get<bool>();
  if (value.is_number_integer()) return value.get<NSInteger>();
  if (value.is_number()) return value.get<double>();
  if (value.is_null()) return NSNull{};
  const auto list = std::make_shared<NSMutableArray>();
  for (const Json& member : value) list->addObject(objectOf(member));
  return list;
}

std::shared_ptr<NSDictionary> dictionaryOf(const Json& object) {
  NSDictionary::Entries entries;
  for (const auto& [key, value] : object.items()) entries.emplace_back(key, objectOf(value));
  return std::make_shared<NSDictionary>(entries);
}

/// Gives what a row says for the first and the second time.
NSStoreMetadataReader readerOf(const Json& in, Json& trace) {
  return [&in, &trace, isFirst = true](std::string_view, const NSURL&,
                                       const std::shared_ptr<NSDictionary>& options,
                                       NSErrorSlot slot) mutable -> std::shared_ptr<NSDictionary> {
    trace.push_back({"metadata", options ? Json("some") : Json()});
    const Json& answer = in.at(std::exchange(isFirst, false) ? "first" : "second");
    if (answer.contains("error"))
      NSFillErrorSlot(slot, orlftest::errorOfVector(answer.at("error")));
    return answer.contains("metadata") ? dictionaryOf(answer.at("metadata")) : nullptr;
  };
}

std::string checkMetadata(const Json& in, const Json& out) {
  Json trace = Json::array();
  const Replaced calls(&SQLiteCalls::exchange, std::make_shared<CallsOfRow>(in, trace));
  // A copyable reader with a state of its own.
  const auto state = std::make_shared<NSStoreMetadataReader>(readerOf(in, trace));
  const Replaced reader(
      NSSetStoreMetadataReader,
      [state](std::string_view type, const NSURL& url, const std::shared_ptr<NSDictionary>& options,
              NSErrorSlot error) { return (*state)(type, url, options, error); });
  const LogCapture log;
  const std::string text = in.at("type").get<std::string>();
  const std::string equalText(NSSQLiteStoreType);
  const std::string_view type = text == "constant"     ? NSSQLiteStoreType
                                : text == "equal text" ? std::string_view(equalText)
                                                       : std::string_view(text);
  Error error;
  const auto metadata = orlfMetadataForPersistentStoreOfType(
      type, NSURL::URLWithString(in.at("url").get<std::string>()).value(),
      in.at("slot").get<bool>() ? &error : nullptr);
  const Json& expected = out.at("result");
  const bool isEqual = expected.is_null()
                           ? metadata == nullptr
                           : metadata && metadata->isEqual(dictionaryOf(expected).get());
  return jsonDisagreement(out, {{"error", orlftest::jsonFromError(error)},
                                {"logs", log.lines()},
                                {"result", isEqual ? expected : Json("something else")},
                                {"trace", trace}});
}

std::string checkMode(const Json& in, const Json& out) {
  Json trace = Json::array();
  const Replaced calls(&SQLiteCalls::exchange, std::make_shared<CallsOfRow>(in, trace));
  const Error before = NSError::errorWithDomain("before", 1);
  Error error = before;
  const auto mode = orlfJournalModeForSQLPersistentStoreAtURL(
      NSURL::URLWithString(in.at("url").get<std::string>()).value(), &error);
  if (error != before) return "the slot was touched";
  return jsonDisagreement(out, {{"result", mode}, {"trace", trace}});
}

TEST(ORLFPersistentStoreRepair, AgreesWithTheVectors) {
  orlftest::runJsonVectors("files_repair",
                           {{"metadata", &checkMetadata}, {"journalMode", &checkMode}});
}

TEST(ORLFPersistentStoreRepair, AgreesWithTheSamplesOfJournals) {
  const orlftest::TemporaryFolder folder;
  orlftest::runJsonRows("files_journal_samples", [&](const Json& row) {
    const std::string name = row.at("file").get<std::string>();
    const std::string bytes = orlftest::contentOf(orlftest::vectorFile("files/files/" + name));
    const std::string path = folder.write(name, bytes);
    const auto mode = orlfJournalModeForSQLPersistentStoreAtURL(NSURL::fileURLWithPath(path));
    if (folder.read(name) != bytes) return std::string("the file was changed");
    return orlftest::disagreement(row.at("out").get<NSUInteger>(), NSUInteger{mode});
  });
}

}  // namespace
}  // namespace ORLFoundation

#include <ORLFoundation/files/operations/ORLFDirectoryReplacement.h>

#include <ORLFoundation/files/operations/ORLFDirectoryReplacement_testing.h>
#include <ORLFoundation/files/operations/internal/ReplacementPlan.h>
#include <ORLFoundation/files/operations/internal/ReplacementTrees_testing.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/VectorFile.h>

#include <algorithm>

namespace ORLFoundation {
namespace {

using namespace internal::operations;
using orlftest::Json;
using orlftest::jsonDisagreement;

bool answerOf(const Json& handler, NSUInteger action, const std::string& path) {
  const bool isException =
      std::any_of(handler.at("except").begin(), handler.at("except").end(),
                  [&](const Json& pair) { return pair.at(0) == action && pair.at(1) == path; });
  return handler.at("default").get<bool>() != isException;
}

std::string checkInMemory(const Json& in, const Json& out) {
  TreesInMemory trees(in);
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
  return jsonDisagreement(out, actual);
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
  return jsonDisagreement(expected, {{"asks", questionsOf(calls)},
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

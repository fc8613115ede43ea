
#include <ORLFoundation/web/logging/ORLFURLSessionFileLogger.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/value/NSDate.h>
#include <ORLFoundation/platform/value/NSException_testing.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <tests/support/FileMask.h>
#include <tests/support/TemporaryFolder.h>

#include <functional>
#include <thread>
#include <utility>

namespace ORLFoundation {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr double kMoment = 1794481686;  // 2026-11-12T11:08:06Z

/// What a test makes of a text.
class Rule final : public ORLFURLSessionLogProcessor {
 public:
  using Function = std::function<std::optional<std::string>(std::optional<std::string>)>;
  explicit Rule(Function function) : function_(std::move(function)) {}
  std::optional<std::string> process(std::optional<std::string> string) override {
    return function_(std::move(string));
  }

 private:
  const Function function_;
};

using Processor = ORLFURLSessionFileLogger::Processor;

std::shared_ptr<Rule> appending(const std::string& suffix) {
  return std::make_shared<Rule>([suffix](const std::optional<std::string>& text) {
    return std::optional(text.value_or("nil") + suffix);
  });
}

class FileLogger : public orlftest::TemporaryFolderTest {
 protected:
  FileLogger()
      : clock_(NSDate::setClock, [] { return NSDate::dateWithTimeIntervalSince1970(kMoment); }) {}

  [[nodiscard]] std::string logged() const { return read("log"); }
  /// What was logged behind the first two lines of the last entry.
  void logBody(std::optional<std::string_view> body) {
    logger_.sessionLogRequestWithID({nullptr, "1-2", "POST", url_, body});
  }

  const std::optional<NSURL> url_ = NSURL::URLWithString("https://example.com/a?b=c");
  const Replaced<std::function<NSDate()>> clock_;
  ORLFURLSessionFileLogger logger_{NSURL::fileURLWithPath(path("log")), "Bank"};
};

const std::string kSent =
    "<!-- SENT BY Bank (1-2) ON 2026-11-12T11:08:06Z -->\nPOST https://example.com/a?b=c\n";
const std::string kReceived =
    "<!-- RECEIVED BY Bank (1-2) ON 2026-11-12T11:08:06Z -->\n404 GET https://example.com/a?b=c\n";

TEST_F(FileLogger, WritesARequestInTwoLinesOrThree) {
  logBody(std::nullopt);
  EXPECT_EQ(logged(), kSent + "\n\n");
  logBody("");
  logBody("body");
  EXPECT_EQ(logged(), kSent + "\n\n" + kSent + "\n\n" + kSent + "body\n\n\n");
}

TEST_F(FileLogger, WritesAResponse) {
  logger_.sessionLogResponse({nullptr, "body", 404, "1-2", "GET", url_});
  EXPECT_EQ(logged(), kReceived + "body\n\n\n");
}

TEST_F(FileLogger, WritesADownloadAlwaysInThreeLines) {
  logger_.sessionLogDownload(
      {nullptr, NSURL::fileURLWithPath("/tmp/a b"), 404, "1-2", "GET", url_});
  logger_.sessionLogDownload({nullptr, std::nullopt, 404, "1-2", "GET", url_});
  EXPECT_EQ(logged(), kReceived + "file:///tmp/a%20b\n\n\n" + kReceived + "(null)\n\n\n");
}

TEST_F(FileLogger, WritesAnError) {
  const auto error = NSError::errorWithDomain("Domain", 7);
  logger_.sessionLogError({nullptr, error, 404, "1-2", "GET", url_});
  EXPECT_EQ(logged(), kReceived + error->description() + "\n\n\n");
}

TEST_F(FileLogger, TellsOfAnErrorWithoutText) {
  logger_.sessionLogError({nullptr, nullptr, 404, "1-2", "GET", url_});
  logger_.addErrorProcessor(std::make_shared<Rule>([](const auto&) { return ""; }));
  logger_.sessionLogError({nullptr, NSError::errorWithDomain("D", 7), 404, "1-2", "GET", url_});
  EXPECT_EQ(logged(), kReceived + "Missing Error\n\n\n" + kReceived + "Missing Error\n\n\n");
}

TEST_F(FileLogger, WritesWhatIsNil) {
  logger_.sessionLogRequestWithID({nullptr, "", "", std::nullopt, std::nullopt});
  EXPECT_EQ(logged(), "<!-- SENT BY Bank () ON 2026-11-12T11:08:06Z -->\n (null)\n\n\n");
}

TEST_F(FileLogger, PutsEachTextThroughTheProcessorsOfItsKind) {
  logger_.addRequestURLProcessor(appending("1"));
  logger_.addRequestBodyProcessor(appending("2"));
  logger_.addResponseBodyProcessor(appending("3"));
  logger_.addDownloadURLProcessor(appending("4"));
  logger_.addErrorProcessor(appending("5"));
  EXPECT_EQ(logger_.redactRequestURL(url_), url_->absoluteString() + "1");
  EXPECT_EQ(logger_.redactRequestBody("b"), "b2");
  EXPECT_EQ(logger_.redactResponseBody("b"), "b3");
  EXPECT_EQ(logger_.redactDownloadURL(url_), url_->absoluteString() + "4");
  const auto error = NSError::errorWithDomain("Domain", 7);
  EXPECT_EQ(logger_.redactError(error), error->description() + "5");
}

TEST_F(FileLogger, HandsNilToTheProcessors) {
  EXPECT_EQ(logger_.redactRequestURL(std::nullopt), std::nullopt);
  EXPECT_EQ(logger_.redactRequestBody(std::nullopt), std::nullopt);
  EXPECT_EQ(logger_.redactError(nullptr), std::nullopt);
  logger_.addRequestURLProcessor(appending("1"));
  logger_.addRequestBodyProcessor(appending("2"));
  logger_.addErrorProcessor(appending("5"));
  EXPECT_EQ(logger_.redactRequestURL(std::nullopt), "nil1");
  EXPECT_EQ(logger_.redactRequestBody(std::nullopt), "nil2");
  EXPECT_EQ(logger_.redactError(nullptr), "nil5");
}

TEST_F(FileLogger, AppliesProcessorsInTheOrderOfTheirAddition) {
  const auto a = appending("a");
  const auto b = appending("b");
  logger_.addRequestBodyProcessor(a);
  logger_.addRequestBodyProcessor(b);
  logger_.addRequestBodyProcessor(a);
  EXPECT_EQ(logger_.redactRequestBody("_"), "_aba");
  logger_.removeRequestBodyProcessor(a);
  EXPECT_EQ(logger_.redactRequestBody("_"), "_b");
}

TEST_F(FileLogger, AppliesTheListOfTheMomentAndHoldsNoLockMeanwhile) {
  logger_.addRequestBodyProcessor(
      std::make_shared<Rule>([this](const std::optional<std::string>& text) {
        std::thread([this] {
          logger_.addRequestBodyProcessor(appending(" late"));
          logger_.logMessage("meanwhile");
        }).join();
        return text;
      }));
  EXPECT_EQ(logger_.redactRequestBody("b"), "b");
  EXPECT_EQ(logged(), "meanwhile\n\n");
  EXPECT_EQ(logger_.requestBodyProcessors()->size(), 2U);
}

TEST_F(FileLogger, HasNoListUntilOneIsAdded) {
  const auto a = appending("a");
  EXPECT_EQ(logger_.responseBodyProcessors(), std::nullopt);
  logger_.removeResponseBodyProcessor(a);
  EXPECT_EQ(logger_.responseBodyProcessors(), std::nullopt);
  logger_.addResponseBodyProcessor(a);
  EXPECT_THAT(*logger_.responseBodyProcessors(), ElementsAre(a));
  logger_.removeResponseBodyProcessor(appending("a"));
  logger_.removeResponseBodyProcessor(nullptr);
  EXPECT_THAT(*logger_.responseBodyProcessors(), ElementsAre(a));
  logger_.removeResponseBodyProcessor(a);
  EXPECT_THAT(*logger_.responseBodyProcessors(), IsEmpty());
}

/// Equals all of its class.
class Alike final : public ORLFURLSessionLogProcessor {
 public:
  std::optional<std::string> process(std::optional<std::string> string) override { return string; }
  [[nodiscard]] bool isEqual(const NSObject* other) const override {
    return dynamic_cast<const Alike*>(other) != nullptr;
  }
  [[nodiscard]] NSUInteger hash() const override { return 1; }
};

TEST_F(FileLogger, TakesAwayAllThatAreEqual) {
  const auto a = appending("a");
  logger_.addErrorProcessor(std::make_shared<Alike>());
  logger_.addErrorProcessor(a);
  logger_.addErrorProcessor(std::make_shared<Alike>());
  logger_.removeErrorProcessor(std::make_shared<Alike>());
  EXPECT_THAT(*logger_.errorProcessors(), ElementsAre(a));
}

using Get = ORLFURLSessionFileLogger::Processors (ORLFURLSessionFileLogger::*)() const;
using Set = void (ORLFURLSessionFileLogger::*)(ORLFURLSessionFileLogger::Processors);
using Change = void (ORLFURLSessionFileLogger::*)(const Processor&);
struct ListCase {
  Get get;
  Set set;
  Change add, remove;
};
#define ORLF_LIST_CASE(LOWER, UPPER)                        \
  {                                                         \
    &ORLFURLSessionFileLogger::LOWER##Processors,           \
        &ORLFURLSessionFileLogger::set##UPPER##Processors,  \
        &ORLFURLSessionFileLogger::add##UPPER##Processor,   \
        &ORLFURLSessionFileLogger::remove##UPPER##Processor \
  }
const ListCase kLists[] = {ORLF_LIST_CASE(requestURL, RequestURL),
                           ORLF_LIST_CASE(requestBody, RequestBody),
                           ORLF_LIST_CASE(responseBody, ResponseBody),
                           ORLF_LIST_CASE(downloadURL, DownloadURL), ORLF_LIST_CASE(error, Error)};

TEST_F(FileLogger, KeepsAListForEachKind) {
  std::vector<Processor> first;
  for (const ListCase& list : kLists) {
    first.push_back(appending("x"));
    (logger_.*list.add)(first.back());
  }
  for (std::size_t i = 0; i < std::size(kLists); ++i) {
    EXPECT_THAT(*(logger_.*kLists[i].get)(), ElementsAre(first[i])) << i;
    const auto other = appending("y");
    (logger_.*kLists[i].set)(std::vector<Processor>{other, first[i]});
    (logger_.*kLists[i].remove)(first[i]);
    EXPECT_THAT(*(logger_.*kLists[i].get)(), ElementsAre(other)) << i;
    (logger_.*kLists[i].set)(std::nullopt);
    EXPECT_EQ((logger_.*kLists[i].get)(), std::nullopt) << i;
  }
}

TEST_F(FileLogger, RefusesAProcessorThatIsNil) {
  for (const ListCase& list : kLists) {
    EXPECT_THROW((logger_.*list.add)(nullptr), NSException);
    EXPECT_THROW((logger_.*list.set)(std::vector<Processor>{nullptr}), NSException);
  }
}

TEST_F(FileLogger, LeavesOutWhatAProcessorThrowsOn) {
  LogCapture log;
  const Rule::Function functions[] = {[](const auto&) -> std::optional<std::string> {
                                        throw NSException(NSGenericException, "no");
                                      },
                                      [](const auto&) -> std::optional<std::string> { throw 7; }};
  for (const auto& function : functions) {
    const auto rule = std::make_shared<Rule>(function);
    logger_.addRequestBodyProcessor(rule);
    logBody("secret");
    logger_.removeRequestBodyProcessor(rule);
  }
  EXPECT_EQ(logged(), kSent + "\n\n" + kSent + "\n\n");
  EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("left out"), HasSubstr("left out")));
}

TEST_F(FileLogger, LeavesOutWhatAMaskCannotReadInTime) {
  LogCapture log;
  logger_.addRequestBodyProcessor(
      ORLFURLSessionLogReplacement::initWithMatchExpression("(?:a|b)*c", 0, "x"));
  logBody(std::string(2'000'000, 'a'));
  EXPECT_EQ(logged(), kSent + "\n\n");
  EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("came to a limit")));
}

TEST_F(FileLogger, MasksSecretsInEveryLine) {
  EXPECT_FALSE(logger_.addSecret("short"));
  EXPECT_TRUE(logger_.addSecret("hunter"));
  const auto url = NSURL::URLWithString("https://example.com/hunter");
  const auto error = NSError::errorWithDomain("hunter", 7);
  logger_.sessionLogRequestWithID({nullptr, "hunter", "hunter", url, "hunter"});
  logger_.sessionLogResponse({nullptr, "68756e746572", 200, "hunter", "hunter", url});
  logger_.sessionLogDownload({nullptr, url, 200, "hunter", "hunter", url});
  logger_.sessionLogError({nullptr, error, 200, "hunter", "hunter", url});
  logger_.logMessage("a message of hunter");
  EXPECT_THAT(logged(), Not(HasSubstr("hunter")));
  EXPECT_THAT(logged(), Not(HasSubstr("68756e")));
  EXPECT_THAT(logged(), HasSubstr("SENT BY Bank (***) ON 2026-11-12T11:08:06Z -->\n"
                                  "*** https://example.com/***\n***\n"));
  EXPECT_THAT(logged(), HasSubstr("a message of ***\n\n"));
}

TEST_F(FileLogger, MasksASecretThatAProcessorWouldCut) {
  EXPECT_TRUE(logger_.addSecret("hunter,two"));
  logger_.addRequestBodyProcessor(
      ORLFURLSessionLogReplacement::initWithJSONFieldName("pass", "xxx"));
  EXPECT_EQ(logger_.redactRequestBody(R"({"pass":"hunter,two"})"), R"({"pass":"xxx"})");
}

TEST_F(FileLogger, MakesAFileForItsUserAlone) {
  const orlftest::FileMask mask(0);
  logger_.logMessage("one");
  EXPECT_EQ(modeOf("log"), 0600U);
  EXPECT_EQ(logged(), "one\n\n");
}

TEST_F(FileLogger, KeepsTheModeAndTheTextOfAFileThatIsThere) {
  write("log", "before\n");
  ::chmod(path("log").c_str(), 0640);
  logger_.logMessage("one");
  EXPECT_EQ(modeOf("log"), 0640U);
  EXPECT_EQ(logged(), "before\none\n\n");
}

TEST_F(FileLogger, WritesNothingForAnEmptyMessage) {
  logger_.logMessage("");
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(FileLogger, WritesUTF8WhateverItIsGiven) {
  logger_.logMessage("a\xFF\u00E9");
  EXPECT_EQ(logged(), "a\xEF\xBF\xBD\u00E9\n\n");
}

TEST_F(FileLogger, WritesNothingToAFolderNorWhereThereIsNoFolder) {
  LogCapture log;
  for (const std::string& place : {path(""), path("missing/log"), std::string("/dev/full"),
                                   path("log") + std::string("\0x", 2)})
    ORLFURLSessionFileLogger(NSURL::fileURLWithPath(place), "Bank").logMessage("one");
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(FileLogger, SendsEntriesToTheLogWithoutAFile) {
  LogCapture log;
  ORLFURLSessionFileLogger logger(std::nullopt, "Bank");
  logger.logMessage("one");
  logger.sessionLogRequestWithID({nullptr, "1-2", "POST", url_, "body"});
  logger.logMessage("");
  EXPECT_THAT(log.lines(), ElementsAre("one\n", kSent + "body\n\n"));
  EXPECT_EQ(logger.fileURL(), std::nullopt);
  EXPECT_EQ(logger.name(), "Bank");
}

TEST_F(FileLogger, TakesThePathOfAnyAddress) {
  LogCapture log;
  ORLFURLSessionFileLogger(NSURL::URLWithString("https://example.com"), "Bank").logMessage("one");
  EXPECT_THAT(log.lines(), ElementsAre("one\n")) << "it has no path";
  ORLFURLSessionFileLogger(NSURL::URLWithString("https://example.com" + path("log")), "Bank")
      .logMessage("two");
  EXPECT_EQ(logged(), "two\n\n");
}

TEST_F(FileLogger, TellsTheMomentInUTC) { EXPECT_EQ(logger_.now(), "2026-11-12T11:08:06Z"); }

}  // namespace
}  // namespace ORLFoundation

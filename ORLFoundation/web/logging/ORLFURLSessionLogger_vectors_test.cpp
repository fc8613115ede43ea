
#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/text/NSRegularExpression.h>
#include <ORLFoundation/platform/value/NSDate_testing.h>
#include <ORLFoundation/web/logging/ORLFURLSessionFileLogger.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>
#include <gtest/gtest.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/VectorFile.h>

namespace ORLFoundation {
namespace {

using orlftest::disagreement;
using orlftest::Json;
using orlftest::textOrNil;

std::string checkField(const Json& in, const Json& out) {
  const auto mask = ORLFURLSessionLogReplacement::initWithJSONFieldName(
      in.at("field").get<std::string>(), in.at("value").get<std::string>());
  const auto text = textOrNil(in.at("text"));
  const std::string byMatcher = disagreement(textOrNil(out), mask->process(text));
  if (!byMatcher.empty() || !text) return byMatcher;
  return disagreement(textOrNil(out), mask->expression()->stringByReplacingMatchesInString(
                                          *text, mask->replacement()));
}

std::string checkReplace(const Json& in, const Json& out) {
  const auto replacement = ORLFURLSessionLogReplacement::initWithMatchExpression(
      in.at("pattern").get<std::string>(), in.at("options").get<NSUInteger>(),
      in.at("template").get<std::string>());
  return disagreement(textOrNil(out),
                      replacement ? replacement->process(textOrNil(in.at("text"))) : std::nullopt);
}

std::string checkEscaped(const Json& in, const Json& out) {
  return disagreement(
      textOrNil(out),
      std::optional(NSRegularExpression::escapedPatternForString(in.get<std::string>())));
}

TEST(ORLFURLSessionLogReplacement, AgreesWithVectors) {
  orlftest::runJsonVectors(
      "web_masking",
      {{"jsonField", checkField}, {"replace", checkReplace}, {"escapedPattern", checkEscaped}});
}

/// Gives a text in place of any.
class Given final : public ORLFURLSessionLogProcessor {
 public:
  explicit Given(std::optional<std::string> text) : text_(std::move(text)) {}
  std::optional<std::string> process(std::optional<std::string>) override { return text_; }

 private:
  const std::optional<std::string> text_;
};

/// An entry's file, where the third line comes out of its processors as the row has it.
class Entry {
 public:
  explicit Entry(const Json& in)
      : in_(in),
        third_(std::make_shared<Given>(textOrNil(in.at("third")))),
        method_(textOrNil(in.at("method")).value_or("")),
        identifier_(textOrNil(in.at("id")).value_or("")),
        clock_(NSDate::setClock, [now = *orlftest::dateFromVector(in.at("now"))] {
          constexpr double kPartOfASecond = 0.75;  // which no entry shows
          return now.dateByAddingTimeInterval(kPartOfASecond);
        }) {
    if (const auto url = textOrNil(in.at("url"))) url_ = NSURL::URLWithString(*url);
  }

  [[nodiscard]] std::string of(const std::string& operation) {
    ORLFURLSessionFileLogger logger(NSURL::fileURLWithPath((folder_.path() / "log").string()),
                                    textOrNil(in_.at("name")).value_or(""));
    const Json code = in_.value("statusCode", Json());
    const std::int64_t status = code.is_null() ? 0 : code.get<std::int64_t>();
    if (operation == "request") {
      logger.addRequestBodyProcessor(third_);
      logger.sessionLogRequestWithID({nullptr, identifier_, method_, url_, std::nullopt});
    } else if (operation == "response") {
      logger.addResponseBodyProcessor(third_);
      logger.sessionLogResponse({nullptr, std::nullopt, status, identifier_, method_, url_});
    } else if (operation == "download") {
      logger.addDownloadURLProcessor(third_);
      logger.sessionLogDownload({nullptr, std::nullopt, status, identifier_, method_, url_});
    } else {
      logger.addErrorProcessor(third_);
      logger.sessionLogError({nullptr, nullptr, status, identifier_, method_, url_});
    }
    return folder_.read("log");
  }

 private:
  const Json& in_;
  const orlftest::TemporaryFolder folder_;
  const std::shared_ptr<Given> third_;
  std::optional<NSURL> url_;
  const std::string method_, identifier_;
  const Replaced<std::function<NSDate()>> clock_;
};

TEST(ORLFURLSessionFileLogger, AgreesWithVectors) {
  orlftest::JsonChecks checks;
  for (const std::string operation : {"request", "response", "download", "error"})
    checks[operation] = [operation](const Json& in, const Json& out) {
      return disagreement(out.get<std::string>(), Entry(in).of(operation));
    };
  orlftest::runJsonVectors("web_log", checks);
}

}  // namespace
}  // namespace ORLFoundation

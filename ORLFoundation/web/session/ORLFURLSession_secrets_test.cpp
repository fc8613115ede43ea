// Secrets that pass through real exchanges, and where none of them may be seen afterwards. What is
// seen is looked for by other means than those of the masks.
#include <ORLFoundation/web/session/ORLFURLSession.h>

#include <ORLFoundation/platform/log/LogCapture.h>
#include <ORLFoundation/platform/net/NSURLRequest.h>
#include <ORLFoundation/web/logging/ORLFURLSessionFileLogger.h>
#include <ORLFoundation/web/logging/ORLFURLSessionLogReplacement.h>
#include <ORLFoundation/web/logging/ORLFURLSessionSecretMask_testing.h>
#include <ORLFoundation/web/session/ORLFURLSession_server_testing.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <tests/support/FileMask.h>
#include <tests/support/ProcessorTime.h>
#include <tests/support/TemporaryFolder.h>

#include <unordered_set>

namespace ORLFoundation {
namespace {

using orlftest::Json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

constexpr std::size_t kBatch = 100;
constexpr std::size_t kSecrets = orlftest::kIsSanitized ? 4 * kBatch : 10'000;

/// The text with escapes of one kind resolved: `mark` and so many digits. What is none stays.
std::string resolved(std::string_view text, std::string_view mark, std::size_t digits) {
  constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
  std::string plain;
  while (!text.empty()) {
    const bool isMarked = text.starts_with(mark);
    const std::string number(isMarked ? text.substr(mark.size(), digits) : "");
    if (number.size() == digits && number.find_first_not_of(kDigits) == std::string::npos) {
      const int value = std::stoi(number, nullptr, 16);
      if (digits == 2) {
        plain += static_cast<char>(value);
      } else {
        internal::base::appendUTF8(plain, static_cast<char32_t>(value));
      }
      text.remove_prefix(mark.size() + digits);
      continue;
    }
    plain += text.front();
    text.remove_prefix(1);
  }
  return plain;
}

std::string withoutPercent(std::string_view text) { return resolved(text, "%", 2); }
std::string withoutUnits(std::string_view text) { return resolved(text, "\\u", 4); }
std::string withoutBackslashes(std::string text) {
  std::erase(text, '\\');
  return text;
}

/// Looks for the first bytes of many secrets: as they are, in hexadecimal and in Base64.
class Lookout {
 public:
  void add(const std::string& secret) {
    beginnings_.insert(secret.substr(0, kBytes));
    beginnings_.insert(internal::base::hexText(secret.substr(0, kBytes / 2)));
    for (std::size_t before = 0; before < 3; ++before)
      beginnings_.insert(
          orlftest::base64Encoded(secret, before, 0, false).substr(before == 0 ? 0 : 4, kBytes));
  }
  /// What a text shows of them; "" for nothing.
  [[nodiscard]] std::string seenIn(const std::string& text) const {
    for (const std::string& form : {text, internal::base::lowerASCII(text), withoutPercent(text),
                                    withoutUnits(text), withoutBackslashes(withoutUnits(text))})
      for (std::size_t at = 0; at + kBytes <= form.size(); ++at)
        if (beginnings_.count(form.substr(at, kBytes)) > 0) return form.substr(at, kBytes);
    return "";
  }

 private:
  static constexpr std::size_t kBytes = 8;
  std::unordered_set<std::string> beginnings_;
};

std::string spelled(const std::string& secret, orlftest::Random& random) {
  using namespace orlftest;
  switch (random() % 5) {
    case 0:
      return percentEncoded(secret, random);
    case 1:
      return hexEncoded(secret, random);
    case 2:
      return base64Encoded(secret, random() % 3, random() % 3, random() % 2 == 0);
    case 3:
      return jsonEscaped(secret, random);
    default:
      return secret;
  }
}

/// One session with a log on a real server.
class SessionSecrets : public orlftest::TemporaryFolderTest {
 protected:
  SessionSecrets() { session_->setLogger(logger_); }
  ~SessionSecrets() override { session_->invalidateSessionCancelingTasks(true); }

  /// Sends a request, waits for its end, and keeps every text that tells of it.
  void send(const Json& answer, const std::shared_ptr<NSURLRequest>& request, bool isDownload) {
    server_.script(Json::array({answer, answer, answer}));
    std::optional<NSURL> place;
    if (isDownload) place = NSURL::fileURLWithPath(path("download"));
    std::shared_ptr<const NSError> error;
    const auto task = session_->taskWithRequestDestination(
        request, place, [&error](const auto&, const auto& failure) { error = failure; });
    task->resume();
    task->waitUntilFinished();
    texts_ += request->description() + "\n" + task->description() + "\n";
    texts_ += session_->description() + "\n" + id(task).description() + "\n";
    if (const auto response = task->response()) texts_ += response->description() + "\n";
    if (!error) return;
    ++failures_;
    texts_ += error->description() + "\n" + error->localizedDescription() + "\n" +
              error->userInfo()->description() + "\n";
  }
  [[nodiscard]] std::string logged() const { return read("log"); }

  const orlftest::LoopbackServer server_;
  const std::shared_ptr<ORLFURLSessionFileLogger> logger_ =
      std::make_shared<ORLFURLSessionFileLogger>(NSURL::fileURLWithPath(path("log")), "Bank");
  const std::shared_ptr<ORLFURLSession> session_ = ORLFURLSession::initWithConfiguration(nullptr);
  std::string texts_;
  int failures_ = 0;
};

TEST_F(SessionSecrets, AreInNoLogNoErrorAndNoDescription) {
  const LogCapture lines;
  orlftest::Random random(1818);
  Lookout lookout;
  std::vector<std::string> secrets;
  while (secrets.size() < kSecrets) {
    secrets.push_back(orlftest::randomSecret(random, 12 + random() % 20));
    ASSERT_TRUE(logger_->addSecret(secrets.back()));
    lookout.add(secrets.back());
  }
  for (std::size_t batch = 0; batch * kBatch < kSecrets; ++batch) {
    std::string shown = "[";
    for (std::size_t i = 0; i < kBatch; ++i)
      shown += "\"" + spelled(secrets[batch * kBatch + i], random) + "\",\n";
    const auto one = orlftest::percentEncoded(secrets[batch * kBatch], random);
    const auto other = orlftest::percentEncoded(secrets[batch * kBatch + 1], random, true);
    const auto request = NSMutableURLRequest::requestWithURL(
        NSURL::URLWithString(server_.base() + "/account?token=" + one + "#" + other));
    request->setHTTPMethod("POST");
    request->setHTTPBody(NSData(shown));
    request->setValue("Bearer " + internal::base::hexText(secrets[batch * kBatch]),
                      "Authorization");
    const Json answers[] = {
        {{"status", 200}, {"body", shown}},
        {{"status", 404}, {"body", shown}},
        {{"status", 401}, {"body", shown}},
        {{"drop", true}},
        {{"status", 200}, {"body", shown}, {"length", 1 << 20}},
        {{"status", 302}, {"headers", {{"Location", "/next?" + one}}}, {"body", shown}},
    };
    send(answers[batch % std::size(answers)], copyOf<NSURLRequest>(request), batch % 4 == 3);
  }
  EXPECT_GE(failures_, orlftest::kIsSanitized ? 1 : 30);
  const std::string log = logged();
  EXPECT_THAT(log, HasSubstr("POST " + server_.base() + "/account?token=***#***\n[\"***"));
  EXPECT_EQ(lookout.seenIn(log), "");
  EXPECT_EQ(lookout.seenIn(texts_), "");
  for (const std::string& line : lines.distinctLines()) EXPECT_EQ(lookout.seenIn(line), "");
  // That it would see one.
  EXPECT_EQ(lookout.seenIn("x" + secrets.back()), secrets.back().substr(0, 8));
  EXPECT_NE(lookout.seenIn(internal::base::hexText(secrets.front())), "");
  EXPECT_NE(lookout.seenIn(orlftest::percentEncoded(secrets.front(), random)), "");
  EXPECT_NE(lookout.seenIn(orlftest::base64Encoded(secrets.front(), 1, 2, false)), "");
  EXPECT_NE(lookout.seenIn(orlftest::jsonEscaped(secrets.front(), random)), "");
}

TEST_F(SessionSecrets, ArePasswordsTokensAndCookiesOfALogIn) {
  const orlftest::FileMask mask(0);
  const std::string password = "c0rrect, h0rse", token = "tok-5f1c9a77e2", cookie = "jar-88d1f0aa";
  EXPECT_TRUE(logger_->addSecret(cookie));
  EXPECT_TRUE(logger_->addSecret(password));
  logger_->addRequestBodyProcessor(
      ORLFURLSessionLogReplacement::initWithJSONFieldName("pin", "***"));
  logger_->addResponseBodyProcessor(
      ORLFURLSessionLogReplacement::initWithJSONFieldName("token", "***"));
  logger_->addRequestURLProcessor(
      ORLFURLSessionLogReplacement::initWithMatchExpression("token=[^&]*", 0, "token=***"));
  const auto logIn =
      NSMutableURLRequest::requestWithURL(NSURL::URLWithString(server_.base() + "/login"));
  logIn->setHTTPMethod("POST");
  logIn->setHTTPBody(
      NSData(R"({"user":"ann","password":")" + password + R"(","pin":471108150815})"));
  send({{"status", 200},
        {"headers", {{"Set-Cookie", "session=" + cookie}}},
        {"body", R"({"token":")" + token + R"(","cookie":"session=)" + cookie + "\"}"}},
       copyOf<NSURLRequest>(logIn), false);
  const auto list = NSMutableURLRequest::requestWithURL(
      NSURL::URLWithString(server_.base() + "/list?token=" + token + "&n=1"));
  list->setValue("session=" + cookie, "Cookie");
  send({{"status", 200}, {"body", "rows"}}, copyOf<NSURLRequest>(list), true);
  send({{"drop", true}}, copyOf<NSURLRequest>(list), true);

  const std::string log = logged();
  EXPECT_THAT(log, HasSubstr(R"({"user":"ann","password":"***","pin":"***"})"));
  EXPECT_THAT(log, HasSubstr(R"({"token":"***","cookie":"session=***"})"));
  EXPECT_THAT(log, HasSubstr("GET " + server_.base() + "/list?token=***&n=1\n"));
  for (const std::string& secret : {password, token, cookie, std::string("471108150815")}) {
    EXPECT_THAT(log, Not(HasSubstr(secret)));
    EXPECT_THAT(texts_, Not(HasSubstr(secret)));
  }
  EXPECT_EQ(modeOf("log"), 0600U);
}

}  // namespace
}  // namespace ORLFoundation

/// A real server on loopback, a child of the test, that answers as it is told.
#pragma once

#include <ORLFoundation/platform/net/NSURLSession_testing.h>
#include <tests/support/VectorFile.h>

#include <stdexcept>
#include <string>

namespace orlftest {

/// tests/data/net/exchange_server.py, which tells what answers may hold.
class LoopbackServer {
 public:
  LoopbackServer() : base_("http://127.0.0.1:" + process_.line()) {}

  [[nodiscard]] const std::string& base() const { return base_; }
  /// The answers from now on.
  void script(const Json& answers) const {
    if (ask(answers.dump()) != "ready") throw std::runtime_error("the server takes no answers");
  }
  /// Method, path and body of each request since then.
  [[nodiscard]] Json seen() const { return Json::parse(ask("seen")); }

 private:
  [[nodiscard]] std::string ask(const std::string& question) const {
    return process_.say(question) ? process_.line() : "";
  }

  const BesideProcess process_{
      {"python3", (testDataFolder() / "net" / "exchange_server.py").string()}};
  const std::string base_;
};

}  // namespace orlftest

#include <ORLFoundation/platform/base/Replaced.h>
#include <ORLFoundation/platform/process/NSProcessFacts.h>
#include <ORLFoundation/platform/reachability/HostLookup.h>
#include <ORLFoundation/platform/reachability/RouteSocket_testing.h>
#include <gtest/gtest.h>
#include <tests/tool/RunTool.h>

namespace orlftool {
namespace {

using namespace ORLFoundation;
namespace reachability = ORLFoundation::internal::reachability;
using orlftest::runTool;
using orlftest::ToolRun;

TEST(UserAgentCommand, PrintsTheTextOfItsFacts) {
  const Replaced<std::shared_ptr<const NSProcessFacts>> facts(
      NSSetProcessFacts, std::make_shared<const NSProcessFacts>(
                             NSProcessFacts{{13, 2, 0}, {"", "", "22.3.0", "", "x86_64"}}));
  const std::vector<std::string> words = {
      "user-agent", "--app", "App", "--app-version", "1.2", "--network-version", "1404"};
  EXPECT_EQ(runTool(words).out,
            "App/1.2 x86_64 Mac/13.2 (KHTML, like Gecko) CFNetwork/1404 Darwin/22.3.0\n");
}

TEST(UserAgentCommand, RefusesWhatAHeaderCannotHold) {
  for (const char* option : {"--app", "--app-version", "--network-version"}) {
    for (const char* text :
         {"", "a\nb", "\x7F", "a\xFF", "a\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9"}) {
      const ToolRun run = runTool({"user-agent", option, text});
      EXPECT_EQ(run.exitCode, 2) << option << " " << text;
      EXPECT_EQ(run.out, "");
      EXPECT_EQ(run.err.find(std::string("orlf user-agent: ") + option + ": expected "), 0U);
    }
    EXPECT_EQ(runTool({"user-agent", option, "é 日\xC2\xA0"}).exitCode, 0);
  }
}

TEST(QueryStringCommand, RefusesWhatIsNoText) {
  for (const char* action : {"parse", "make"}) {
    const ToolRun run = runTool({"query-string", action, "a=\xFF"});
    EXPECT_EQ(run.exitCode, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "orlf query-string: TEXT: expected UTF-8, got 'a=?'\n");
  }
}

TEST(ReachableCommand, TellsHostsFromWhatIsNone) {
  orlftest::ScriptedKernel kernel;
  const Replaced<reachability::HostResolver> resolver(
      reachability::exchangeHostResolver,
      [](const std::string&) { return reachability::Addresses(); });
  const std::string label(63, 'a');
  const std::string name = label + "." + label + "." + label + "." + std::string(61, 'b');
  for (const std::string& host :
       {label, name, name + ".", std::string("my_host"), std::string("3com"), std::string("x-1"),
        std::string("bücher.example"), std::string("1.2y"), std::string("0xg"),
        std::string("fe80::1%lo")}) {
    const ToolRun run = runTool({"reachable", host});
    EXPECT_EQ(run.out, "no\n") << host << run.err;
    EXPECT_EQ(run.exitCode, 1);
  }
  for (const std::string& host : {label + "a",
                                  name + "b",
                                  std::string("."),
                                  std::string(".a"),
                                  std::string("a.."),
                                  std::string("a b"),
                                  std::string("a/b"),
                                  std::string("a\xFF"),
                                  std::string("a\n"),
                                  std::string("[::1]"),
                                  std::string("::g"),
                                  std::string("%lo"),
                                  std::string("1"),
                                  std::string("1.2.3"),
                                  std::string("1.2.3.4.5"),
                                  std::string("256.1.1.1"),
                                  std::string("01.2.3.4"),
                                  std::string("1.2.3.4."),
                                  std::string("0x7F000001"),
                                  std::string("0X7f.1"),
                                  std::string("a.0x"),
                                  std::string("a.1")}) {
    const ToolRun run = runTool({"reachable", host});
    EXPECT_EQ(run.exitCode, 2) << host;
    EXPECT_EQ(run.err.find("orlf reachable: HOST: expected a name or an address, got '"), 0U);
    EXPECT_EQ(run.out, "");
  }
}

TEST(ReachableCommand, AnswersForAddressesAndNames) {
  orlftest::ScriptedKernel kernel;
  const Replaced<reachability::HostResolver> resolver(
      reachability::exchangeHostResolver, [](const std::string& name) {
        reachability::Addresses addresses;
        if (name == "bank.example") addresses.push_back(orlftest::addressOf("192.0.2.7"));
        return addresses;
      });
  kernel.setLink(2, IFF_UP | IFF_RUNNING);
  kernel.setRoutes("192.0.2.7", {{RTN_UNICAST, 32, true, 0, 2}});
  for (const char* host : {"192.0.2.7", "bank.example"}) {
    const ToolRun run = runTool({"reachable", host});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "yes\n") << host;
  }
  for (const char* host : {"192.0.2.8", "::1", "other.example"}) {
    const ToolRun run = runTool({"reachable", host});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    EXPECT_EQ(run.out, "no\n") << host;
  }
  const ToolRun json = runTool({"reachable", "192.0.2.7", "--json"});
  EXPECT_NE(json.out.find("\"reachable\": true"), std::string::npos) << json.out;
  kernel.setOpen(false);
  const ToolRun silent = runTool({"reachable", "192.0.2.7"});
  EXPECT_EQ(silent.exitCode, 1);
  EXPECT_EQ(silent.err, "orlf reachable: the system does not tell of its network\n");
}

TEST(ReachableCommand, GivesUpOnALookUpThatDoesNotEnd) {
  orlftest::ScriptedKernel kernel;
  const Replaced<reachability::HostResolver> resolver(
      reachability::exchangeHostResolver, [](const std::string&) {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        return reachability::Addresses();
      });
  const ToolRun run = runTool({"reachable", "slow.example", "--timeout", "0"});
  EXPECT_EQ(run.exitCode, 1);
  EXPECT_EQ(run.err, "orlf reachable: 'slow.example' could not be looked up within 0 s\n");
}

}  // namespace
}  // namespace orlftool

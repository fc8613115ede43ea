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

#include <ORLFoundation/tasks/async/ORLFThreading.h>

#include <ORLFoundation/tasks/async/ORLFThreading_testing.h>
#include <gtest/gtest.h>

namespace ORLFoundation {
namespace {

std::string playDeferred(const orlftest::Json& in, const orlftest::Json& out) {
  return orlftest::DeferredPlayer(in).play(out.at("steps"));
}

TEST(ORLFThreading, AgreesWithVectors) {
  orlftest::runJsonVectors("queue_deferred", {{"deferred", playDeferred}});
}

}  // namespace
}  // namespace ORLFoundation

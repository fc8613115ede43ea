#include <ORLFoundation/bridges/libsecret/SecretServiceItemStore.h>

#include <ORLFoundation/bridges/libsecret/PrivateSession_testing.h>
#include <ORLFoundation/platform/keychain/SecItemStore_testing.h>
#include <gtest/gtest.h>

#include <chrono>

namespace ORLFoundation {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

/// The status of every operation, which is one and the same, and none takes 5 seconds.
OSStatus statusOfAll(SecItemStore& store) {
  const auto begun = Clock::now();
  id result;
  const OSStatus status = store.copyMatching(*secPassword("bank"), result);
  EXPECT_LT(Clock::now() - begun, seconds(5));
  EXPECT_EQ(store.add(*secPassword("bank")), status);
  EXPECT_EQ(store.update(*secPassword("bank"), *secQuery({{kSecValueData, NSData("x")}})), status);
  EXPECT_EQ(store.remove(*secPassword("bank")), status);
  EXPECT_LT(Clock::now() - begun, seconds(20));
  return status;
}

TEST(SecretServiceFailures, WithoutAServiceNoKeychainIsAvailable) {
  const PrivateSessionBus bus;
  SecretServiceItemStore store;
  EXPECT_EQ(statusOfAll(store), errSecNotAvailable);
}

TEST(SecretServiceFailures, WithoutABusNoKeychainIsAvailable) {
  PrivateSessionBus bus;
  bus.stop();
  SecretServiceItemStore store;
  EXPECT_EQ(statusOfAll(store), errSecNotAvailable);
  for (const char* address : {"", "unix:path=/no/such/bus", "nonsense"}) {
    setenv("DBUS_SESSION_BUS_ADDRESS", address, 1);
    EXPECT_EQ(statusOfAll(store), errSecNotAvailable) << address;
  }
}

TEST(SecretServiceFailures, ALockedKeyringWithoutADisplayAsksNobody) {
  const PrivateSessionBus bus;
  const PrivateKeyring keyring(bus);
  SecretServiceItemStore store;
  ASSERT_EQ(store.add(*secPassword("bank")), errSecSuccess);
  keyring.lock();
  EXPECT_EQ(statusOfAll(store), errSecInteractionNotAllowed);
}

TEST(SecretServiceFailures, ALockedKeyringWithoutAPrompterEndsInTime) {
  const PrivateSessionBus bus;
  const PrivateKeyring keyring(bus);
  SecretServiceItemStore store({.mayPrompt = true});
  keyring.lock();
  EXPECT_EQ(statusOfAll(store), errSecInteractionNotAllowed);
}

TEST(SecretServiceFailures, AKeyringOfAnotherPasswordStaysLocked) {
  const PrivateSessionBus bus;
  PrivateKeyring keyring(bus);
  keyring.stop();
  keyring.start("another password");
  SecretServiceItemStore store;
  EXPECT_EQ(statusOfAll(store), errSecInteractionNotAllowed);
}

TEST(SecretServiceFailures, AServiceThatStandsStillIsNotWaitedForLong) {
  const PrivateSessionBus bus;
  const PrivateKeyring keyring(bus);
  SecretServiceItemStore store({.limit = milliseconds(300)});
  ASSERT_EQ(store.add(*secPassword("bank")), errSecSuccess);
  keyring.freeze(true);
  const auto begun = Clock::now();
  EXPECT_EQ(statusOfAll(store), errSecNotAvailable);
  EXPECT_LT(Clock::now() - begun, seconds(4));
  keyring.freeze(false);
  // What had been asked for meanwhile may have been done.
  EXPECT_NE(dataOfItem(store, *secPassword("other")), "x");
  EXPECT_LT(SecretServiceOptions().limit, seconds(5));
}

TEST(SecretServiceFailures, ABusThatEndsLeavesTheProcessAlone) {
  PrivateSessionBus bus;
  PrivateKeyring keyring(bus);
  SecretServiceItemStore store;
  ASSERT_EQ(store.add(*secPassword("bank")), errSecSuccess);
  bus.stop();
  EXPECT_EQ(statusOfAll(store), errSecNotAvailable);
}

TEST(SecretServiceFailures, ADaemonThatComesBackIsFoundAgain) {
  const PrivateSessionBus bus;
  PrivateKeyring keyring(bus);
  SecretServiceItemStore store;
  ASSERT_EQ(store.add(*secPassword("bank", {{kSecValueData, NSData("pw")}})), errSecSuccess);
  keyring.stop();
  EXPECT_EQ(statusOfAll(store), errSecNotAvailable);
  keyring.start();
  EXPECT_EQ(dataOfItem(store, *secPassword("bank")), "pw");
}

}  // namespace
}  // namespace ORLFoundation

/// A system without threads, for tests.
#pragma once

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstddef>
#include <system_error>
#include <thread>

namespace orlftest {

/// The system has no more threads for anybody while it lives: no address space holds their stacks.
class NoThreads {
 public:
  NoThreads() {
    ::pthread_getattr_default_np(&before_);
    ::pthread_attr_t huge{};
    ::pthread_attr_init(&huge);
    ::pthread_attr_setstacksize(&huge, std::size_t{1} << 47U);
    EXPECT_EQ(::pthread_setattr_default_np(&huge), 0);
    ::pthread_attr_destroy(&huge);
    EXPECT_THROW(std::thread([] {}).join(), std::system_error);
  }
  ~NoThreads() {
    ::pthread_setattr_default_np(&before_);
    ::pthread_attr_destroy(&before_);
  }
  NoThreads(const NoThreads&) = delete;
  NoThreads& operator=(const NoThreads&) = delete;

 private:
  ::pthread_attr_t before_{};
};

}  // namespace orlftest

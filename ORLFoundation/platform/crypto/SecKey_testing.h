/// Keys and signatures made by the program `openssl`, for tests.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

namespace orlftest {

/// Runs `openssl` with words in a folder; the running test fails where it does.
inline void openssl(const std::filesystem::path& folder, const std::string& words) {
  const std::string command = "cd '" + folder.string() + "' && openssl " + words + " >log 2>&1";
  EXPECT_EQ(std::system(command.c_str()), 0) << words;
}

}  // namespace orlftest

// Tools of the system that the tests of paper run.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace kvshare::paper {

// What a command of the shell prints. The test fails where the command does, and shows what was
// printed; standard error is printed where the test's is, unless the command leads it elsewhere.
inline std::string OutputOf(const std::string& command) {
  std::FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) throw std::runtime_error("no process for " + command);
  std::string output;
  char block[4096];
  while (const std::size_t n = std::fread(block, 1, sizeof block, pipe)) output.append(block, n);
  constexpr std::size_t kShown = 4000;  // it may be a picture
  EXPECT_EQ(pclose(pipe), 0) << command << ":\n" << output.substr(0, kShown);
  return output;
}

}  // namespace kvshare::paper

#pragma once

#include <gtest/gtest.h>

#include "support/run_trace.h"

namespace kiv::test {

inline void expect_same_tables(const run_result& expected, const run_result& actual) {
  ASSERT_EQ(expected.files.size(), actual.files.size());
  for (const auto& [name, bytes] : expected.files) {
    ASSERT_TRUE(actual.files.contains(name)) << name;
    EXPECT_EQ(first_difference(bytes, actual.files.at(name)), "") << name;
  }
}

}  // namespace kiv::test

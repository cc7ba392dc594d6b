#include "nox-visuals/support/child_process.h"

#include <gtest/gtest.h>

#include <csignal>

namespace nox::app::test {
namespace {

TEST(ChildProcess, EndsWhenItIsAskedTo) {
  ChildProcess process({"sleep", "60"});
  EXPECT_EQ(process.stop(), -SIGTERM);
}

TEST(ChildProcess, ThatDoesNotEndIsMadeTo) {
  ChildProcess process({"sh", "-c", "trap '' TERM; echo deaf; exec sleep 60"});
  ASSERT_TRUE(process.wait_for("deaf"));
  EXPECT_EQ(process.stop(), -SIGKILL);
}

}  // namespace
}  // namespace nox::app::test

// main() of the tests that use GStreamer.
#include <gst/gst.h>
#include <gtest/gtest.h>

int main(int argc, char **argv) {
  gst_init(&argc, &argv);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}

#include <gtest/gtest.h>

#include <cstdlib>

#include "desktop/toolkit.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  setenv("QT_QPA_PLATFORM", "offscreen", 0);  // whoever starts the tests sees nothing of them
  kvshare::desktop::StartToolkit();
  return RUN_ALL_TESTS();
}

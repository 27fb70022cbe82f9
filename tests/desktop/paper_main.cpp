#include <gmock/gmock.h>

#include "desktop/toolkit.h"

int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  kvshare::desktop::StartToolkit(kvshare::TDesktopUse::PaperOnly);
  return RUN_ALL_TESTS();
}

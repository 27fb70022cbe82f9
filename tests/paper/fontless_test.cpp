#include <gtest/gtest.h>

#include "kvshare/rtl/cp874.h"
#include "paper/systempaper.h"
#include "tests/support.h"

namespace kvshare::paper {
namespace {

// Run with fonts that have no Thai letters.
TEST(Fontless, ThaiIsRefusedAndLatinIsDrawn) {
  const TemporaryFolder folder;
  const auto printer = SystemPaper().PdfPrinter(folder.File("page.pdf"), kSheetA4);
  printer->BeginDoc();
  printer->Canvas().TextOut(0, 0, "Total 1,200.00");
  EXPECT_EQ(MessageOf<EPrinter>([&] { printer->Canvas().TextOut(0, 0, "บาท"_th); }),
            "No installed font has Thai letters");
  printer->EndDoc();
  EXPECT_TRUE(std::filesystem::exists(folder.File("page.pdf")));
}

}  // namespace
}  // namespace kvshare::paper

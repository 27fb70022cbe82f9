#include "kvshare/platform/printbmp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/ui/backend.h"
#include "tests/os/filesupport.h"

namespace kvshare {
namespace {

TPicture Plain(int width, int height) {
  return {width, height,
          std::vector<TPixel>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height),
                              {1, 2, 3})};
}

class PrintBitmap : public testing::Test {
 protected:
  void Print(const TPicture& picture, std::string_view title) const {
    home_.Make("p.bmp", BitmapFileBytes(picture));
    TPrintBitmap::PrintBmpFile("C:\\p.bmp", title);
  }
  const std::vector<TDrawn>& Page() const { return ui_.paper.jobs.back().pages.back(); }
  const TDrawnText& Text(std::size_t i) const { return std::get<TDrawnText>(Page()[i]); }
  TRect Frame() const { return std::get<TDrawnPicture>(Page()[1]).target; }

  TemporaryHome home_;
  THeadlessInterface ui_;
  TUseInterface use_{ui_};
};

TEST_F(PrintBitmap, APageInItsOrder) {
  const std::string before = FormatDateTime("m/d/yy  h:nn", Now());
  Print(Plain(4, 3), "Sales");
  const std::string after = FormatDateTime("m/d/yy  h:nn", Now());
  ASSERT_EQ(ui_.paper.jobs.size(), 1U);
  EXPECT_TRUE(ui_.paper.jobs[0].ended);
  ASSERT_EQ(ui_.paper.jobs[0].pages.size(), 1U);
  ASSERT_EQ(Page().size(), 3U);

  EXPECT_EQ(Text(0).text, "Sales");
  EXPECT_EQ(Text(0).font, (TFont{"Arial", 100}));
  EXPECT_EQ(Text(0).x, (4800 - 5 * 50) / 2);
  EXPECT_EQ(Text(0).y, 300);

  EXPECT_EQ(Frame(), (TRect{576, 500, 576 + 3648, 500 + 2736}));
  EXPECT_EQ(std::get<TDrawnPicture>(Page()[1]).picture.pixels, Plain(4, 3).pixels);

  EXPECT_EQ(Text(2).font, (TFont{"Arial", 67}));
  EXPECT_EQ(Text(2).brush, clWhite);
  EXPECT_EQ(Text(2).x, 576);
  EXPECT_EQ(Text(2).y, 6600 - 67);
  EXPECT_TRUE(Text(2).text == before || Text(2).text == after) << Text(2).text;
}

TEST_F(PrintBitmap, GeometryOfOtherPages) {
  struct Case {
    std::string_view why;
    TSize page, resolution, picture;
    std::string_view title;
    int titleX, titleHeight;
    TRect frame;
    int footerHeight;
  };
  const Case cases[] = {
      {"as high as twice its width, past the foot",
       {1000, 500},
       {72, 72},
       {1, 2},
       "ab",
       494,
       12,
       {120, 60, 880, 60 + 1520},
       8},
      {"a title wider than the page begins left of it, half a unit cut off",
       {11, 90},
       {72, 72},
       {3, 1},
       "abcd",
       -6,
       12,
       {1, 60, 9, 62},
       8},
      {"halves away from zero",
       {1050, 90},
       {9, 75},
       {1050, 1},
       "a",
       522,
       13,
       {126, 65, 924, 65},
       8},
      {"the height is cut to whole units",
       {100, 90},
       {72, 72},
       {77, 3},
       "",
       50,
       12,
       {12, 60, 88, 62},
       8},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.why);
    ui_.paper.pageSize = c.page;
    ui_.paper.pixelsPerInch = c.resolution;
    Print(Plain(c.picture.Width, c.picture.Height), c.title);
    EXPECT_EQ(Text(0).x, c.titleX);
    EXPECT_EQ(Text(0).font.Height, c.titleHeight);
    EXPECT_EQ(Frame(), c.frame);
    EXPECT_EQ(Text(2).font.Height, c.footerHeight);
    EXPECT_EQ(Text(2).x, c.frame.Left);
    EXPECT_EQ(Text(2).y, c.page.Height - c.footerHeight);
  }
}

TEST_F(PrintBitmap, NothingIsBegunForWhatCannotBePrinted) {
  EXPECT_EQ(MessageOf<EFOpenError>([] { TPrintBitmap::PrintBmpFile("C:\\none.bmp", "t"); }),
            "Cannot open file \"C:\\none.bmp\". No such file or directory");
  home_.Make("bad.bmp", "BM and no more");
  EXPECT_THROW(TPrintBitmap::PrintBmpFile("C:\\bad.bmp", "t"), EInvalidGraphic);
  EXPECT_THROW(Print(Plain(1, 600'000), "t"), ERangeError);
  ui_.paper.BeginDoc();
  EXPECT_EQ(MessageOf<EPrinter>([this] { Print(Plain(1, 1), "t"); }), "Printing in progress");
  EXPECT_TRUE(ui_.paper.Printing()) << "the other job goes on";
  ui_.paper.Abort();
  EXPECT_EQ(ui_.paper.jobs.size(), 0U);
}

TEST_F(PrintBitmap, PixelsThatAreMissing) {
  TPicture picture = Plain(2, 2);
  picture.pixels.pop_back();
  EXPECT_THROW(TPrintBitmap::PrintBitmap(ui_.paper.Canvas(), {0, 0, 9, 9}, picture),
               EInvalidGraphic);
}

// A printer whose paper ends in the middle of the page.
class FailingPrinter : public TRecordingPrinter {
  void FinishJob() override { throw EPrinter("Out of paper"); }
};

TEST(PrintBitmapFailure, ThrowsTheJobAway) {
  class Interface : public THeadlessInterface {
   public:
    TPrinter& Printer() override { return failing; }
    FailingPrinter failing;
  };
  const TemporaryHome home;
  home.Make("p.bmp", BitmapFileBytes(Plain(1, 1)));
  Interface ui;
  const TUseInterface use(ui);
  EXPECT_EQ(MessageOf<EPrinter>([] { TPrintBitmap::PrintBmpFile("C:\\p.bmp", "t"); }),
            "Out of paper");
  EXPECT_FALSE(ui.failing.Printing());
  EXPECT_EQ(ui.failing.jobs.size(), 0U);
}

}  // namespace
}  // namespace kvshare

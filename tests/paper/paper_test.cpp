#include "paper/systempaper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <memory>

#include "kvshare/platform/printbmp.h"
#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "tests/paper/tool.h"
#include "tests/support.h"

namespace kvshare::paper {
namespace {

using testing::HasSubstr;

// Grey levels of a page, 60 dots an inch.
struct Raster {
  int width = 0, height = 0;
  std::string levels;
  int At(int x, int y) const {
    return static_cast<unsigned char>(levels[static_cast<std::size_t>(y * width + x)]);
  }
  // The darkest in the area, whose corners are in hundredths of an inch.
  int Darkest(int left, int top, int right, int bottom) const {
    int darkest = 255;
    for (int y = top * 60 / 100; y < bottom * 60 / 100; ++y) {
      for (int x = left * 60 / 100; x < right * 60 / 100; ++x)
        darkest = std::min(darkest, At(x, y));
    }
    return darkest;
  }
};

constexpr std::string_view kTitle = "เอกสาร"_th;

class Paper : public testing::Test {
 protected:
  std::unique_ptr<TPrinter> NewPrinter() const { return SystemPaper().PdfPrinter(file_, kSheetA4); }

  // A job of one page that `draw` draws.
  template <typename Draw>
  void Print(Draw draw) const {
    const auto printer = NewPrinter();
    printer->Title = kTitle;
    printer->BeginDoc();
    draw(printer->Canvas());
    printer->EndDoc();
  }

  std::string Texts() const { return OutputOf("pdftotext -raw " + file_ + " -"); }
  std::string Fonts() const { return OutputOf("pdffonts " + file_); }
  Raster Page() const {
    const std::string pgm = OutputOf("pdftoppm -gray -r 60 " + file_);
    Raster raster;
    int most = 0, read = 0;
    std::sscanf(pgm.c_str(), "P5 %d %d %d%n", &raster.width, &raster.height, &most, &read);
    raster.levels = pgm.substr(static_cast<std::size_t>(read) + 1);
    return raster;
  }

  TemporaryFolder folder_;
  std::string file_ = folder_.File("page.pdf");
};

TEST_F(Paper, ASheetAndItsUnits) {
  const auto printer = NewPrinter();
  EXPECT_EQ(printer->PixelsPerInch(), (TSize{600, 600}));
  EXPECT_EQ(printer->PageSize(), (TSize{4661, 6416})) << "A4 less a quarter and half an inch";
  Print([](TCanvas& canvas) { canvas.FillRect({}); });
  EXPECT_THAT(OutputOf("pdfinfo " + file_), HasSubstr("(A4)"));
  EXPECT_THAT(OutputOf("pdfinfo " + file_), HasSubstr("เอกสาร"));
}

TEST_F(Paper, CellsAreAsHighAsTheyAreAsked) {
  const auto printer = NewPrinter();
  TCanvas& canvas = printer->Canvas();
  for (const int height : {1, 7, 67, 100, 1000}) {
    canvas.Font = {"Arial", height};
    EXPECT_EQ(canvas.TextHeight("X"), height);
    // Letters of a cell are as wide as letters of the height that makes the cell: between 8 and 10
    // tenths of it.
    if (height < 50) continue;
    const int width = canvas.TextWidth("MMMMMMMMMM");
    canvas.Font.Height = -height * 9 / 10;
    EXPECT_NEAR(width, canvas.TextWidth("MMMMMMMMMM"), width / 8) << height;
  }
  canvas.Font = {"Arial", -600};
  EXPECT_GT(canvas.TextHeight("X"), 600) << "letters, not their cell";
  canvas.Font = {"Arial", 0};
  EXPECT_NEAR(canvas.TextHeight("X"), 95, 10) << "the usual ten points";
}

TEST_F(Paper, WidthsAreSumsOfAdvances) {
  const auto printer = NewPrinter();
  TCanvas& canvas = printer->Canvas();
  canvas.Font = {"Arial", 200};
  EXPECT_EQ(canvas.TextWidth(""), 0);
  EXPECT_NEAR(canvas.TextWidth("0000000000"), 10 * canvas.TextWidth("0"), 10);
  EXPECT_EQ(canvas.TextWidth("ที่นี่"_th), canvas.TextWidth("ทน"_th)) << "marks take no room";
  const int plain = canvas.TextWidth("Total");
  canvas.Font.Bold = true;
  EXPECT_GT(canvas.TextWidth("Total"), plain);
}

TEST_F(Paper, ThaiIsTextWithItsFontInside) {
  const std::string words = Cp874ToUtf8("(หนึ่งพันสองร้อยบาทถ้วน)"_th);
  Print([](TCanvas& canvas) {
    canvas.Font = {"Arial", 150};
    canvas.TextOut(600, 600, "(หนึ่งพันสองร้อยบาทถ้วน)"_th);
    canvas.TextOut(600, 900, "Total 1,200.00");
  });
  EXPECT_THAT(Texts(), HasSubstr(words));
  EXPECT_THAT(Texts(), HasSubstr("Total 1,200.00"));
  EXPECT_THAT(Fonts(), testing::ContainsRegex("LiberationSans.* yes yes yes "));
  EXPECT_THAT(Fonts(), testing::ContainsRegex("Loma.* yes yes yes "));
}

TEST_F(Paper, TextsStandWhereTheyAreDrawn) {
  Print([](TCanvas& canvas) {
    canvas.Font = {"Arial", 300};
    canvas.TextOut(1200, 1800, "HHHH");
  });
  const Raster page = Page();
  // The cell's top left lies at 2.25, 3.5 inches of the sheet, the margins included.
  EXPECT_LT(page.Darkest(225, 355, 310, 400), 60);
  EXPECT_EQ(page.Darkest(0, 0, 827, 345), 255) << "nothing above";
  EXPECT_EQ(page.Darkest(0, 345, 220, 410), 255) << "nothing before";
  EXPECT_EQ(page.Darkest(0, 402, 827, 1169), 255) << "nothing below";
}

TEST_F(Paper, TheBrushLiesUnderATextOnWhatWasThere) {
  Print([](TCanvas& canvas) {
    canvas.Brush = {0, 0, 0};
    canvas.FillRect({0, 0, 1200, 600});
    canvas.Brush = clWhite;
    canvas.Font = {"Arial", 300};
    canvas.TextOut(300, 150, "      ");
  });
  const Raster page = Page();
  EXPECT_EQ(page.At(60 * 30 / 100, 60 * 60 / 100), 0);
  EXPECT_EQ(page.At(60 * 85 / 100, 60 * 100 / 100), 255) << "the cell";
}

TEST_F(Paper, PicturesKeepTheirColoursAndOrder) {
  // Four squares: black, white, white, black.
  TPicture picture{2, 2, {{}, clWhite, clWhite, {}}};
  Print([&picture](TCanvas& canvas) {
    canvas.StretchDraw({0, 0, 1200, 1200}, picture);
    canvas.StretchDraw({0, 3000, 0, 4000}, picture);
    canvas.StretchDraw({0, 6000, 1200, 600'000}, picture);  // past the page's foot
    canvas.StretchDraw({0, 2000, 600, 2600}, {});
  });
  const Raster page = Page();
  const int left = 40, right = 150, top = 70, bottom = 170;  // inside each square
  EXPECT_LT(page.Darkest(left, top, left + 20, top + 20), 30);
  EXPECT_GT(page.Darkest(right, top, right + 20, top + 20), 225);
  EXPECT_GT(page.Darkest(left, bottom, left + 20, bottom + 20), 225);
  EXPECT_LT(page.Darkest(right, bottom, right + 20, bottom + 20), 30);
}

TEST_F(Paper, ABitmapFileAsAPage) {
  class OnPdf : public TConsoleInterface {
   public:
    explicit OnPdf(const std::string& file) : printer(SystemPaper().PdfPrinter(file, kSheetA4)) {}
    TPrinter& Printer() override { return *printer; }
    std::unique_ptr<TPrinter> printer;
  };
  OnPdf ui(file_);
  const TUseInterface use(ui);
  const std::string bitmap = folder_.File("s.bmp");
  std::ofstream(bitmap, std::ios::binary) << BitmapFileBytes({2, 1, {{}, {}}});
  TPrintBitmap::PrintBmpFile(bitmap, "ยอดขาย"_th);
  EXPECT_THAT(Texts(), HasSubstr("ยอดขาย"));
  const Raster page = Page();
  EXPECT_LT(page.Darkest(350, 100, 480, 120), 100) << "the title in the middle";
  const int left = 25 + 93, width = 590;  // 12 and 76 per cent of the printable width
  EXPECT_LT(page.Darkest(left + 5, 150, left + width - 5, 160), 10) << "the picture";
  EXPECT_EQ(page.Darkest(left - 60, 150, left - 5, 400), 255);
  EXPECT_EQ(page.Darkest(left + width + 5, 150, 827, 400), 255);
  EXPECT_LT(page.Darkest(left, 1105, left + 150, 1119), 130) << "the footer at the page's foot";
}

TEST_F(Paper, FilesAppearWholeOrNotAtAll) {
  const auto printer = NewPrinter();
  printer->BeginDoc();
  printer->NewPage();
  EXPECT_EQ(printer->PageNumber(), 2);
  EXPECT_FALSE(std::filesystem::exists(file_)) << "not before its end";
  printer->Abort();
  EXPECT_FALSE(std::filesystem::exists(file_));
  printer->BeginDoc();
  printer->NewPage();
  printer->EndDoc();
  EXPECT_THAT(OutputOf("pdfinfo " + file_), HasSubstr("Pages:           2"));

  const auto nowhere = SystemPaper().PdfPrinter(folder_.File("none/page.pdf"), kSheetA4);
  EXPECT_THROW(nowhere->BeginDoc(), EInOutError);
  EXPECT_FALSE(nowhere->Printing());
}

}  // namespace
}  // namespace kvshare::paper

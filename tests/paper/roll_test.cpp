// Rolls of receipt printers: the bytes that reach the printer show the picture that was drawn.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <memory>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "kvshare/rtl/cp874.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "paper/dotpicture.h"
#include "paper/systempaper.h"
#include "tests/paper/tool.h"
#include "tests/support.h"

namespace kvshare::paper {
namespace {

// A receipt printer: what it burns, and what else it is told.
struct Burned {
  std::vector<DotPicture> pages;  // each ends at a cut or a feed
  int drawers = 0;
  std::string cuts;  // a letter a page: F, P, or N for none
};

class ReceiptPrinter {
 public:
  explicit ReceiptPrinter(std::string_view bytes) : bytes_(bytes) {}

  Burned Run() {
    EXPECT_TRUE(Takes("\x1B@")) << "it is made ready first";
    while (!bytes_.empty()) Step();
    EXPECT_EQ(page_.height, 0) << "every page ends";
    return std::move(burned_);
  }

 private:
  bool Takes(std::string_view command) {
    if (!bytes_.starts_with(command)) return false;
    bytes_.remove_prefix(command.size());
    return true;
  }
  unsigned Byte() {
    const auto byte = static_cast<unsigned char>(bytes_.at(0));
    bytes_.remove_prefix(1);
    return byte;
  }
  unsigned Count() {
    const unsigned low = Byte();
    return low + 256 * Byte();
  }
  void Step() {
    if (Takes(std::string_view("\x1Dv0\0", 4))) return Band();
    if (Takes("\x1Bp")) return Drawer();
    if (Takes("\x1DV")) {
      const char cut = Byte() == 65 ? 'F' : 'P';
      return EndPage(cut, Byte());
    }
    if (Takes("\x1B"
              "d")) {
      return EndPage('N', Byte() == 0 ? 1 : 0);
    }
    ADD_FAILURE() << "an unknown command: " << Byte();
    bytes_ = {};
  }
  void Band() {
    const unsigned width = Count(), rows = Count();
    EXPECT_TRUE(page_.height == 0 || page_.width == static_cast<int>(8 * width));
    page_.width = static_cast<int>(8 * width);
    page_.height += static_cast<int>(rows);
    page_.bits.insert(page_.bits.end(), bytes_.begin(),
                      bytes_.begin() + static_cast<std::ptrdiff_t>(std::size_t{width} * rows));
    bytes_.remove_prefix(std::size_t{width} * rows);
  }
  void Drawer() {
    EXPECT_EQ(Byte(), 0U);
    const unsigned on = Byte();
    EXPECT_LT(on, Byte()) << "a shorter time than off";
    ++burned_.drawers;
  }
  void EndPage(char cut, unsigned feed) {
    EXPECT_EQ(feed, 0U);
    burned_.cuts += cut;
    burned_.pages.push_back(std::exchange(page_, {}));
  }

  std::string_view bytes_;
  DotPicture page_;
  Burned burned_;
};

DotPicture DotsOfPng(const std::string& file) {
  const TPicture picture = PictureOfPng(ReadFileBytes(file), kMostPictureSide);
  DotPicture dots{picture.width, picture.height, {}};
  dots.bits.resize(dots.BytesARow() * static_cast<std::size_t>(dots.height));
  for (int y = 0; y < dots.height; ++y) {
    for (int x = 0; x < dots.width; ++x) {
      const TPixel pixel = picture.pixels[static_cast<std::size_t>(y * dots.width + x)];
      EXPECT_TRUE(pixel == clBlack || pixel == clWhite);
      auto& bits = dots.bits[static_cast<std::size_t>(y) * dots.BytesARow() +
                             static_cast<std::size_t>(x / 8)];
      if (pixel == clBlack) bits = static_cast<std::uint8_t>(bits | 0x80u >> (x % 8));
    }
  }
  return dots;
}

int BlackDots(const DotPicture& page) {
  int count = 0;
  for (const std::uint8_t byte : page.bits) count += std::popcount(byte);
  return count;
}

// Pages of several lengths: text, an area, a grey picture that runs past the right edge.
void Print(TRollPrinter& printer, const std::vector<int>& lengths) {
  const TPicture grey{2, 2, std::vector<TPixel>(4, {128, 128, 128})};
  for (const int length : lengths) {
    printer.PageLength = length;
    printer.Printing() ? printer.NewPage() : printer.BeginDoc();
    EXPECT_EQ(printer.PageHeight(), length);
    printer.Canvas().Font = {"Loma", -24};
    printer.Canvas().TextOut(10, 10, "น้ำดื่ม 12.50"_th);
    printer.Canvas().Brush = clBlack;
    printer.Canvas().FillRect({0, length - 2, 8, length});
    printer.Canvas().Brush = clWhite;
    printer.Canvas().StretchDraw({300, 60, 400, 100}, grey);
  }
  printer.EndDoc();
}

class Roll : public testing::Test {
 protected:
  TemporaryFolder folder_;
  SystemPaper paper_;
};

TEST_F(Roll, TheBytesShowThePicture) {
  const std::vector<int> lengths{300, 128, 129, 1};
  for (const auto& [roll, dots] : {std::pair{TRoll::Roll80, 576}, {TRoll::Roll58, 384}}) {
    Print(*paper_.RollFilePrinter(folder_.File("day.bin"), roll, {}), lengths);
    Print(*paper_.RollPngPrinter(folder_.File("day.png"), roll), lengths);
    const Burned burned = ReceiptPrinter(ReadFileBytes(folder_.File("day.bin"))).Run();
    ASSERT_EQ(burned.pages.size(), lengths.size());
    EXPECT_EQ(burned.cuts, "FFFF");
    EXPECT_EQ(burned.drawers, 0);
    for (std::size_t i = 0; i < lengths.size(); ++i) {
      const std::string png = i == 0 ? "day.png" : "day-" + std::to_string(i + 1) + ".png";
      const DotPicture drawn = DotsOfPng(folder_.File(png));
      EXPECT_EQ(drawn.width, dots);
      EXPECT_EQ(drawn.height, lengths[i]);
      EXPECT_EQ(burned.pages[i].bits, drawn.bits) << i;
    }
    EXPECT_GT(BlackDots(burned.pages[0]), 500) << "text, area and a grey of half the dots";
    EXPECT_EQ(burned.pages[3].bits[0], 0xFF) << "the area at the foot";
  }
}

TEST_F(Roll, GreyBecomesHalfTheDots) {
  const auto printer = paper_.RollFilePrinter(folder_.File("grey.bin"), TRoll::Roll80, {});
  printer->PageLength = 200;
  printer->BeginDoc();
  printer->Canvas().StretchDraw({0, 0, 576, 200}, {1, 1, {{128, 128, 128}}});
  printer->EndDoc();
  const Burned burned = ReceiptPrinter(ReadFileBytes(folder_.File("grey.bin"))).Run();
  EXPECT_NEAR(BlackDots(burned.pages.at(0)), 576 * 200 * 127 / 255, 400);
}

TEST_F(Roll, TheKnifeAndTheDrawer) {
  constexpr std::tuple<TRollWork, std::string_view, int> kCases[] = {
      {{TCut::Full, false}, "FF", 0},
      {{TCut::Partial, true}, "PP", 1},
      {{TCut::None, true}, "NN", 1}};
  for (const auto& [work, cuts, drawers] : kCases) {
    Print(*paper_.RollFilePrinter(folder_.File("x.bin"), TRoll::Roll58, work), {200, 200});
    const Burned burned = ReceiptPrinter(ReadFileBytes(folder_.File("x.bin"))).Run();
    EXPECT_EQ(burned.cuts, cuts);
    EXPECT_EQ(burned.drawers, drawers);
  }
}

TEST_F(Roll, PdfPagesAreAsLongAsTheirReceipts) {
  Print(*paper_.RollPdfPrinter(folder_.File("roll.pdf"), TRoll::Roll80), {800, 400});
  const std::string file = folder_.File("roll.pdf");
  EXPECT_THAT(OutputOf("pdfinfo -f 1 -l 2 " + file), testing::HasSubstr("226.772 x 283.465 pts"))
      << "80 by 100 mm";
  EXPECT_THAT(OutputOf("pdfinfo -f 1 -l 2 " + file), testing::HasSubstr("226.772 x 141.732 pts"));
  EXPECT_THAT(OutputOf("pdftotext -raw " + file + " -"), testing::HasSubstr("น้ำดื่ม 12.50"));
}

TEST_F(Roll, FilesAppearWholeOrNotAtAll) {
  const std::string file = folder_.File("day.bin");
  const auto printer = paper_.RollFilePrinter(file, TRoll::Roll80, {});
  printer->BeginDoc();
  printer->NewPage();
  printer->Abort();
  EXPECT_FALSE(FileExists(file));
  EXPECT_TRUE(std::filesystem::is_empty(std::filesystem::path(file).parent_path()));
  EXPECT_THROW(paper_.RollFilePrinter(folder_.File("no/day.bin"), TRoll::Roll80, {})->BeginDoc(),
               EInOutError);
  EXPECT_THROW(Print(*paper_.RollPngPrinter(folder_.File("no/day.png"), TRoll::Roll80), {9}),
               EInOutError);
}

TEST_F(Roll, PicturesThatAreNone) {
  Print(*paper_.RollPngPrinter(folder_.File("x.png"), TRoll::Roll58), {40});
  const std::string png = ReadFileBytes(folder_.File("x.png"));
  EXPECT_EQ(PictureOfPng(png, 384).width, 384);
  EXPECT_EQ(MessageOf<EInvalidGraphic>([&] { PictureOfPng(png, 383); }),
            "The picture has 384 x 40 pixels, and at most 383 to a side fit");
  EXPECT_THROW(PictureOfPng("no picture", 9), EInvalidGraphic);
  for (std::size_t size = 0; size + 20 < png.size(); size += 7) {
    EXPECT_THROW(PictureOfPng(png.substr(0, size), 9999), EInvalidGraphic) << size;
  }
}

}  // namespace
}  // namespace kvshare::paper

#include "kvshare/platform/printbmp.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>

#include "kvshare/rtl/datetime.h"
#include "kvshare/rtl/exceptions.h"
#include "kvshare/rtl/filebytes.h"
#include "kvshare/rtl/format.h"
#include "kvshare/rtl/formatdatetime.h"
#include "kvshare/ui/printer.h"

namespace kvshare {

namespace {

// The nearest integer; half a unit goes away from zero. All three are positive and have 31 bits.
int MulDiv(int number, int numerator, int denominator) {
  const std::int64_t twice = std::int64_t{2} * number * numerator + denominator;
  return static_cast<int>(twice / (std::int64_t{2} * denominator));
}

TFont ArialOf(int points) {
  constexpr int kPointsAnInch = 72;
  return {"Arial", MulDiv(points, Printer().PixelsPerInch().Height, kPointsAnInch)};
}

TPicture ReadPicture(std::string_view fileName) {
  std::string bytes;
  try {
    bytes = ReadFileBytes(fileName);
  } catch (const EInOutError& e) {
    throw EFOpenError(Format(R"(Cannot open file "%s". %s)", {fileName, e.Message()}));
  }
  return ReadBitmapFile(bytes);
}

// The picture's place but for its height above; throws where no coordinate can hold it.
TRect FrameFor(const TPicture& picture) {
  const int page = Printer().PageWidth();
  const int left = MulDiv(page, 12, 100);
  const int width = MulDiv(page, 76, 100);
  const std::int64_t height = std::int64_t{picture.height} * width / picture.width;
  constexpr int kRoomAbove = 1 << 24;
  if (height > std::numeric_limits<int>::max() - kRoomAbove) throw ERangeError();
  return {left, 0, left + width, static_cast<int>(height)};
}

// A job that is thrown away unless it comes to its end.
class Job {
 public:
  Job() { Printer().BeginDoc(); }
  ~Job() {
    if (Printer().Printing()) Printer().Abort();
  }
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;
  static void End() { Printer().EndDoc(); }
};

}  // namespace

void TPrintBitmap::PrintBmpFile(std::string_view fileName, std::string_view title) {
  const TPicture picture = ReadPicture(fileName);
  TRect frame = FrameFor(picture);
  const Job job;
  TCanvas& canvas = Printer().Canvas();
  canvas.Font = ArialOf(12);
  const int line = canvas.TextHeight("X");
  canvas.TextOut(CenterText(title), 3 * line, title);
  frame.Top += 5 * line;
  frame.Bottom += 5 * line;
  PrintBitmap(canvas, frame, picture);
  PrintFooterTimeStamp(frame.Left);
  Job::End();
}

void TPrintBitmap::PrintBitmap(TCanvas& canvas, const TRect& rect, const TPicture& picture) {
  const bool sized = picture.width >= 0 && picture.height >= 0;
  if (!sized || picture.pixels.size() != static_cast<std::size_t>(picture.width) *
                                             static_cast<std::size_t>(picture.height)) {
    throw EInvalidGraphic("Bitmap image is not valid");
  }
  canvas.StretchDraw(rect, picture);
}

int TPrintBitmap::CenterText(std::string_view text) {
  return (Printer().PageWidth() - Printer().Canvas().TextWidth(text)) / 2;
}

void TPrintBitmap::PrintFooterTimeStamp(int x) {
  TCanvas& canvas = Printer().Canvas();
  canvas.Font = ArialOf(8);
  canvas.Brush = clWhite;
  canvas.TextOut(x, Printer().PageHeight() - canvas.TextHeight("X"),
                 FormatDateTime("m/d/yy  h:nn", Now()));
}

}  // namespace kvshare

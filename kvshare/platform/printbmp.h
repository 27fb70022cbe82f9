// A bitmap file, as a snapshot of the screen, on one page of the default printer.
#pragma once

#include <string_view>

#include "kvshare/export.h"
#include "kvshare/ui/canvas.h"

namespace kvshare {

// On the printer of the back end in force, kvshare::Printer(). Places are device units of its page.
// No operation needs an instance.
class KVSHARE_API TPrintBitmap {
 public:
  // The page: the title at the top, centred, Arial of 12 points; the picture below, 76 per cent of
  // the page wide and as high as that makes it, past the page's foot if need be; the footer under
  // its left edge. Before a job is begun it throws EFOpenError for a file that cannot be read,
  // EInvalidGraphic for one that is no bitmap, ERangeError for a picture so narrow that its height
  // on paper passes 31 bits, and EPrinter as BeginDoc does. What fails later throws the job away
  // and comes through.
  static void PrintBmpFile(std::string_view fileName, std::string_view title);

  // The picture stretched into the rectangle. Throws EInvalidGraphic where its pixels are not width
  // * height.
  static void PrintBitmap(TCanvas& canvas, const TRect& rect, const TPicture& picture);

  // Where a text begins that stands in the middle of the page's width, in the printer canvas's
  // font; negative for one wider than the page. Half a unit is cut off.
  static int CenterText(std::string_view text);

  // Now, as `11/25/26  9:05`, Arial of 8 points on white, at the foot of the page.
  static void PrintFooterTimeStamp(int x);
};

}  // namespace kvshare

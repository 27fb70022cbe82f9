// Pages on the system's printers, in files and on the rolls of receipt printers. What draws them is
// a library of its own that is loaded on the first call and stays loaded; it needs no display.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "kvshare/export.h"
#include "kvshare/ui/backend.h"
#include "kvshare/ui/bitmap.h"
#include "kvshare/ui/printer.h"
#include "kvshare/ui/printing.h"

namespace kvshare {

// A sheet and the margins that stay white, in hundredths of a millimetre.
struct TSheet {
  int width = 21000;
  int height = 29700;
  int left = 635;
  int top = 1270;
  int right = 635;
  int bottom = 1270;
  bool operator==(const TSheet&) const = default;
};

inline constexpr TSheet kSheetA4{};
inline constexpr TSheet kSheetA5{14800, 21000};

// Paper of a receipt printer, by its width: 80 mm has 576 dots that can be printed, 58 mm has 384,
// both 203 an inch.
enum class TRoll : std::uint8_t { Roll80, Roll58 };

enum class TCut : std::uint8_t { Full, Partial, None };

// What a receipt printer does besides.
struct TRollWork {
  TCut cut = TCut::Full;    // behind every page
  bool openDrawer = false;  // once, before the first page
};

// A printer whose pages are as long as they are asked. It draws in dots; what is not black is white
// there, except that pictures are dithered.
class KVSHARE_API TRollPrinter : public TPrinter {
 public:
  static constexpr int kLongest = 32000;

  // Of the page that begins next, in dots, 1 .. kLongest; another number counts as the nearest.
  int PageLength = 1600;
};

// Jobs appear whole or not at all, but the PNG files of a roll appear one by one.
class KVSHARE_API TPaper {
 public:
  TPaper() = default;
  virtual ~TPaper() = default;
  TPaper(const TPaper&) = delete;
  TPaper& operator=(const TPaper&) = delete;

  // The system's print spooler. It lists nothing and refuses everything while it is down.
  virtual TSpooler& Spooler() = 0;

  // Pages for the default printer of the spooler, at the moment when a job begins.
  virtual TPrinter& DefaultPrinter() = 0;

  // Pages for the printer of that name, on its own sheet or on the given one.
  virtual std::unique_ptr<TPrinter> QueuePrinter(std::string_view printer,
                                                 std::optional<TSheet> sheet) = 0;

  // Pages for a PDF file, named as the interface names files. BeginDoc throws EInOutError where the
  // file cannot be written.
  virtual std::unique_ptr<TPrinter> PdfPrinter(std::string_view fileName, const TSheet& sheet) = 0;
  virtual std::unique_ptr<TRollPrinter> RollPdfPrinter(std::string_view fileName, TRoll roll) = 0;

  // The first page in the file, the second in `NAME-2.png` for `NAME.png`, and so on.
  virtual std::unique_ptr<TRollPrinter> RollPngPrinter(std::string_view fileName, TRoll roll) = 0;

  // The bytes that receipt printers understand (ESC @, GS v 0, GS V), in a file or sent to a
  // printer of the spooler as they are.
  virtual std::unique_ptr<TRollPrinter> RollFilePrinter(std::string_view fileName, TRoll roll,
                                                        TRollWork work) = 0;
  virtual std::unique_ptr<TRollPrinter> RollQueuePrinter(std::string_view printer, TRoll roll,
                                                         TRollWork work) = 0;

  // The picture of a PNG file, on white where it is transparent. Throws EInvalidGraphic for what is
  // none, and for more than kMostPictureSide pixels to a side, before memory is asked for.
  virtual TPicture ReadPng(std::string_view bytes) = 0;
};

inline constexpr int kMostPictureSide = 8000;

// Main thread only. Throws EOSError with what is missing: the library, or what it needs.
KVSHARE_API TPaper& Paper();

// The console with the system's printers.
class KVSHARE_API TPaperInterface : public TConsoleInterface {
 public:
  TSpooler& Spooler() override;
  TPrinter& Printer() override;
  std::unique_ptr<TPrinter> PdfPrinter(std::string_view fileName) override;
};

// The entry that the library kvshare-paper exports as `kvshare_paper`; throws EOSError. The number
// tells whether both were built from the same declarations.
inline constexpr int kPaperContract = 1;
using TPaperEntry = TPaper*(int contract);

}  // namespace kvshare

// A day's documents in a PDF file.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "apps/receipts/receipttexts.h"
#include "kvshare/ui/printer.h"

namespace kvshare::app {

// Each document begins on a page of its own. The file appears whole with Finish, or not at all.
class DayPaper {
 public:
  // `fileName` is UTF-8. Refuses the usage of a name that code page 874 lacks; throws EOSError
  // where the part of the library that draws pages is missing.
  explicit DayPaper(std::string_view fileName);

  // Throws EPrinter where no font has the letters.
  void Print(const receipts::Document& document, const receipts::Receipt& receipt,
             const receipts::Layout& layout, const receipts::Sheet& sheet);

  // False where there was no document: then there is no file either. Throws EInOutError.
  bool Finish();

 private:
  std::string file_;
  std::unique_ptr<TPrinter> printer_;
};

}  // namespace kvshare::app

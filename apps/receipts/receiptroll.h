// A document on the paper of a receipt printer: one long page.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "apps/receipts/pagepen.h"
#include "apps/receipts/receipttexts.h"

namespace kvshare::receipts {

// The seller and the title in the middle, each line of the document with its item above its
// numbers, amounts at the right edge, the total in words. Nothing is cut off.
class ReceiptRoll {
 public:
  // `width` is the printable one. The canvas outlives this.
  ReceiptRoll(TCanvas& canvas, int width, TSize pixelsPerInch, ReceiptTexts texts);
  ReceiptRoll(const ReceiptRoll&) = delete;
  ReceiptRoll& operator=(const ReceiptRoll&) = delete;

  // In device units.
  int Height() const { return height_; }
  void Draw();

 private:
  struct Font {
    int tenths;
    bool bold = false;
  };
  struct Block {
    int top;
    std::function<void(int top)> draw;
  };

  void AddSeller();
  void AddTitle();
  void AddRow(const std::vector<std::string>& cells);
  void AddSums();
  void AddWords();

  void AddSpace(int tenths) { height_ += pen_.Down(tenths); }
  void AddRule();
  void AddCentred(std::string_view text, Font font);
  void AddLeft(std::string_view text, Font font);
  void AddPair(std::string_view label, std::string_view text, Font font);
  void AddNamed(std::string_view label, std::string_view text);
  void Add(int height, std::function<void(int)> draw);

  PagePen pen_;
  int width_;
  Font text_, small_, large_;
  ReceiptTexts texts_;
  std::vector<Block> blocks_;
  int height_ = 0;
};

}  // namespace kvshare::receipts

// A document on sheets of paper: as many pages as it needs.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "apps/receipts/pagepen.h"
#include "apps/receipts/receipttexts.h"

namespace kvshare::receipts {

// The number and the date at the top of the first page; the table, with its head again on every
// page; the last line, the sums, the total in words and the places to sign together on the last,
// where they fit on one. Every page names its document and which page of how many it is. Nothing is
// cut off: what is long goes on in further lines and pages; a line of the document stays on one page
// unless it is higher than one. It is laid out with the letters of the canvas.
class ReceiptPages {
 public:
  // `size` is the printable area. The canvas outlives this.
  ReceiptPages(TCanvas& canvas, TSize size, TSize pixelsPerInch, ReceiptTexts texts);
  ReceiptPages(const ReceiptPages&) = delete;
  ReceiptPages& operator=(const ReceiptPages&) = delete;

  std::size_t Count() const { return pages_.size(); }
  void Draw(std::size_t page);

 private:
  struct Block {
    int height = 0;
    std::function<void(int top)> draw;
    int together = 0;  // with the blocks behind it that belong to the same line
  };
  struct Placed {
    int top;
    const Block* block;
  };
  struct Column {
    int right = 0;  // where its numbers end
    int width = 0;
  };

  void AddSeller();
  void AddTitle();
  void AddNamed(std::string_view label, const std::string& text);
  void MeasureTable();
  bool ItemsHaveRoom();
  void MakeTableHead();
  void AddRows();
  void AddRow(std::size_t row);
  void DrawNumbers(std::size_t row, int top);
  void AddSums();
  void AddNote();
  void AddWords();
  void AddSignatures();
  void AddLine(std::vector<Block>& to, int height, std::function<void(int)> draw);

  void Place();
  void PlaceOn(const Block& block, const Block* before);
  void DrawFoot(std::size_t page);

  PagePen pen_;
  int left_, right_, top_, bottom_;  // of what is written
  ReceiptTexts texts_;

  int labelWidth_ = 0;  // of the names in the head
  int tableFont_ = 0;
  int numberRight_ = 0;  // of the lines' own numbers
  int itemLeft_ = 0, itemWidth_ = 0;
  std::vector<Column> columns_;  // behind the item

  std::vector<Block> head_, rows_, tail_;
  std::size_t lastRow_ = 0;  // the first block of the last line
  Block tableHead_;
  std::vector<std::vector<Placed>> pages_;
  int next_ = 0;  // where the next block begins
};

}  // namespace kvshare::receipts

#include "apps/receipts/receiptroll.h"

#include <utility>

#include "kvshare/rtl/cp874.h"

namespace kvshare::receipts {

namespace {

// Tenths of a point.
constexpr int kNarrow = 1700;  // a roll of 58 mm has 1360, one of 80 mm 2040
constexpr int kGap = 60;
constexpr int kThin = 7;
constexpr int kLogoHeight = 560;
constexpr int kEdge = 100;  // above the first line and below the last one

constexpr std::string_view kNumber = "เลขที่ / No."_th;
constexpr std::string_view kDate = "วันที่ / Date"_th;
constexpr std::string_view kCustomer = "ลูกค้า / Customer"_th;

}  // namespace

ReceiptRoll::ReceiptRoll(TCanvas& canvas, int width, TSize pixelsPerInch, ReceiptTexts texts)
    : pen_(canvas, pixelsPerInch), width_(width), texts_(std::move(texts)) {
  const bool narrow = width < pen_.Across(kNarrow);
  text_ = {narrow ? 80 : 90};
  small_ = {narrow ? 70 : 80};
  large_ = {narrow ? 100 : 120, true};
  AddSpace(kEdge);
  AddSeller();
  AddTitle();
  AddRule();
  for (const auto& row : texts_.rows) AddRow(row);
  AddRule();
  AddSums();
  AddWords();
  AddSpace(kEdge);
}

void ReceiptRoll::Add(int height, std::function<void(int)> draw) {
  blocks_.push_back({height_, std::move(draw)});
  height_ += height;
}

void ReceiptRoll::AddRule() {
  AddSpace(30);
  Add(pen_.Down(40), [this](int top) { pen_.Rule(0, width_, top, kThin); });
}

void ReceiptRoll::AddCentred(std::string_view text, Font font) {
  if (text.empty()) return;
  pen_.Use(font.tenths, font.bold);
  for (const std::string& piece : pen_.Wrap(text, width_)) {
    Add(pen_.LineHeight(), [this, font, piece](int top) {
      pen_.Use(font.tenths, font.bold);
      pen_.Centre(width_ / 2, top, piece);
    });
  }
}

void ReceiptRoll::AddLeft(std::string_view text, Font font) {
  pen_.Use(font.tenths, font.bold);
  for (const std::string& piece : pen_.Wrap(text, width_)) {
    Add(pen_.LineHeight(), [this, font, piece](int top) {
      pen_.Use(font.tenths, font.bold);
      pen_.Left(0, top, piece);
    });
  }
}

// The label in as many lines as the text at the right edge leaves it, the text beside the last one.
void ReceiptRoll::AddPair(std::string_view label, std::string_view text, Font font) {
  pen_.Use(font.tenths, font.bold);
  const int room = width_ - pen_.Width(text) - pen_.Across(kGap);
  const std::vector<std::string> pieces = pen_.Wrap(label, room > 0 ? room : 1);
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const std::string beside(i + 1 == pieces.size() ? text : "");
    Add(pen_.LineHeight(), [this, font, piece = pieces[i], beside](int top) {
      pen_.Use(font.tenths, font.bold);
      pen_.Left(0, top, piece);
      pen_.Right(width_, top, beside);
    });
  }
}

// On one line where both have room, else below each other.
void ReceiptRoll::AddNamed(std::string_view label, std::string_view text) {
  if (text.empty()) return;
  pen_.Use(text_.tenths);
  if (pen_.Width(label) + pen_.Across(kGap) + pen_.Width(text) <= width_) {
    return AddPair(label, text, text_);
  }
  AddLeft(label, small_);
  AddLeft(text, text_);
}

void ReceiptRoll::AddSeller() {
  if (texts_.seller.empty()) return;
  if (texts_.logo) {
    const TSize logo = PagePen::Fitted(*texts_.logo, width_ * 2 / 3, pen_.Down(kLogoHeight));
    Add(logo.Height + pen_.Down(kGap), [this, logo](int top) {
      pen_.Picture((width_ - logo.Width) / 2, top, logo, *texts_.logo);
    });
  }
  for (std::size_t i = 0; i < texts_.seller.size(); ++i) {
    AddCentred(texts_.seller[i], i == 0 ? large_ : small_);
  }
  AddSpace(kGap);
}

void ReceiptRoll::AddTitle() {
  const std::string_view title = texts_.title;
  const std::size_t slash = title.find(" / ");
  AddCentred(title.substr(0, slash), large_);
  AddCentred(title.substr(slash + 3), text_);
  AddCentred(texts_.copy, text_);
  AddSpace(kGap);
  AddNamed(kNumber, texts_.number);
  AddNamed(kDate, texts_.date);
  AddNamed(kCustomer, texts_.customer);
  for (const auto& [label, text] : texts_.particulars) AddNamed(label, text);
}

// Its cells are the item, the quantity, the price, further numbers under their heads, the amount.
void ReceiptRoll::AddRow(const std::vector<std::string>& cells) {
  constexpr std::size_t kQuantity = 1, kPrice = 2;
  AddLeft(cells.front(), text_);
  for (std::size_t i = kPrice + 1; i + 1 < cells.size(); ++i) {
    if (!cells[i].empty()) AddLeft("   " + texts_.head[i] + " " + cells[i], text_);
  }
  AddPair("   " + cells[kQuantity] + " x " + cells[kPrice], cells.back(), text_);
}

void ReceiptRoll::AddSums() {
  for (std::size_t i = 0; i < texts_.sums.size(); ++i) {
    const bool total = i + 1 == texts_.sums.size();
    AddPair(texts_.sums[i].first, texts_.sums[i].second, {text_.tenths, total});
  }
  AddSpace(kGap);
}

void ReceiptRoll::AddWords() {
  AddCentred(texts_.note, small_);
  for (const std::string& words : texts_.words) AddCentred(words, text_);
}

void ReceiptRoll::Draw() {
  pen_.On(clWhite);
  for (const Block& block : blocks_) block.draw(block.top);
}

}  // namespace kvshare::receipts

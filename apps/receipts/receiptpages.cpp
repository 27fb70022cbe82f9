#include "apps/receipts/receiptpages.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "apps/receipts/textlayout.h"
#include "kvshare/rtl/cp874.h"

namespace kvshare::receipts {

namespace {

// Tenths of a point.
constexpr int kSideMargin = 260;
constexpr int kTopMargin = 180;
constexpr int kTitle = 200, kText = 100, kSmall = 80;
constexpr int kTableFonts[] = {100, 90, 80, 70, 60};  // the first that leaves the items room
constexpr int kLeastItem = 1300;
constexpr int kLabelWidth = 1000;  // at least
constexpr int kColumnGap = 100;
constexpr int kPadding = 25;
constexpr int kLogoWidth = 1400, kLogoHeight = 620;  // at most
constexpr int kHair = 4, kThin = 7, kThick = 15;

constexpr TPixel kShade{240, 240, 240};
constexpr TPixel kPale{200, 200, 200};

constexpr std::string_view kNumber = "เลขที่ / No."_th;
constexpr std::string_view kDate = "วันที่ / Date"_th;
constexpr std::string_view kCustomer = "ลูกค้า / Customer"_th;
constexpr std::string_view kPlace = "ลำดับ"_th;
constexpr std::string_view kSigners[] = {"ผู้รับเอกสาร / Received by"_th,
                                         "ผู้มีอำนาจลงนาม / Authorised by"_th};

std::string PageName(std::size_t page, std::size_t pages) {
  const std::string one = std::to_string(page);
  const std::string all = std::to_string(pages);
  constexpr std::string_view kPage = "หน้า "_th;
  constexpr std::string_view kOf = " จาก "_th;
  return std::string(kPage).append(one).append(kOf).append(all) + " / Page " + one + " of " + all;
}

}  // namespace

ReceiptPages::ReceiptPages(TCanvas& canvas, TSize size, TSize pixelsPerInch, ReceiptTexts texts)
    : pen_(canvas, pixelsPerInch),
      left_(pen_.Across(kSideMargin)),
      right_(size.Width - left_),
      top_(pen_.Down(kTopMargin)),
      bottom_(size.Height),
      texts_(std::move(texts)) {
  pen_.On(clWhite);
  pen_.Use(kSmall);
  bottom_ -= pen_.LineHeight() + 3 * pen_.Down(kPadding);
  AddSeller();
  AddTitle();
  MeasureTable();
  MakeTableHead();
  AddRows();
  AddSums();
  AddNote();
  AddWords();
  AddSignatures();
  Place();
}

void ReceiptPages::AddLine(std::vector<Block>& to, int height, std::function<void(int)> draw) {
  to.push_back({height, std::move(draw)});
}

// The logo at the left; the name larger than what follows it.
void ReceiptPages::AddSeller() {
  if (texts_.seller.empty()) return;
  const TSize logo =
      texts_.logo ? PagePen::Fitted(*texts_.logo, pen_.Across(kLogoWidth), pen_.Down(kLogoHeight))
                  : TSize{};
  const int left = left_ + (logo.Width > 0 ? logo.Width + 2 * pen_.Across(kColumnGap) : 0);
  AddLine(head_, 0, [this, logo](int top) {
    if (logo.Width > 0) pen_.Picture(left_, top, logo, *texts_.logo);
  });
  int beside = logo.Height;  // what the lines leave of the logo
  for (std::size_t i = 0; i < texts_.seller.size(); ++i) {
    const int font = i == 0 ? kText + 30 : kText - 10;
    pen_.Use(font, i == 0);
    for (const std::string& piece : pen_.Wrap(texts_.seller[i], right_ - left)) {
      beside -= pen_.LineHeight();
      AddLine(head_, pen_.LineHeight(), [this, left, font, bold = i == 0, piece](int top) {
        pen_.Use(font, bold);
        pen_.Left(left, top, piece);
      });
    }
  }
  AddLine(head_, pen_.Down(100) + std::max(beside, 0), [](int) {});
}

void ReceiptPages::AddNote() {
  if (texts_.note.empty()) return;
  pen_.Use(kSmall);
  AddLine(tail_, pen_.LineHeight() + pen_.Down(60), [this](int top) {
    pen_.Use(kSmall);
    pen_.Right(right_ - pen_.Across(kPadding), top, texts_.note);
  });
}

void ReceiptPages::AddTitle() {
  const std::size_t slash = texts_.title.find(" / ");
  const std::string thai = texts_.title.substr(0, slash);
  const std::string english = texts_.title.substr(slash + 3);
  pen_.Use(kTitle, true);
  AddLine(head_, pen_.LineHeight(), [this, thai](int top) {
    pen_.Use(kTitle, true);
    pen_.Left(left_, top, thai);
  });
  pen_.Use(kText);
  AddLine(head_, pen_.LineHeight() + pen_.Down(100), [this, english](int top) {
    pen_.Use(kText);
    pen_.Left(left_, top, english);
    pen_.Right(right_, top, texts_.copy);
    pen_.Rule(left_, right_, top + pen_.LineHeight() + pen_.Down(40), kThick);
  });
  labelWidth_ = pen_.Across(kLabelWidth);
  for (const auto& [label, text] : texts_.particulars) {
    labelWidth_ = std::max(labelWidth_, pen_.Width(label) + pen_.Across(kColumnGap));
  }
  AddNamed(kNumber, texts_.number);
  AddNamed(kDate, texts_.date);
  if (!texts_.customer.empty()) AddNamed(kCustomer, texts_.customer);
  for (const auto& [label, text] : texts_.particulars) AddNamed(label, text);
  AddLine(head_, pen_.Down(120), [](int) {});
}

// A label, and its text beside it in as many lines as it needs.
void ReceiptPages::AddNamed(std::string_view label, const std::string& text) {
  const int x = left_ + labelWidth_;
  pen_.Use(kText, true);
  bool first = true;
  for (const std::string& piece : pen_.Wrap(text, right_ - x)) {
    const std::string_view shown = std::exchange(first, false) ? label : "";
    AddLine(head_, pen_.LineHeight(), [this, x, shown, piece](int top) {
      pen_.Use(kText);
      pen_.Left(left_, top, shown);
      pen_.Use(kText, true);
      pen_.Left(x, top, piece);
    });
  }
}

void ReceiptPages::MeasureTable() {
  for (const int font : kTableFonts) {
    tableFont_ = font;
    if (ItemsHaveRoom()) return;
  }
}

bool ReceiptPages::ItemsHaveRoom() {
  const int gap = pen_.Across(kColumnGap);
  pen_.Use(tableFont_, true);
  numberRight_ = left_ + pen_.Across(kPadding) +
                 std::max(pen_.Width(kPlace), pen_.Width(std::to_string(texts_.rows.size())));
  columns_.assign(texts_.head.size() - 1, {});
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    columns_[i].width = pen_.Width(texts_.head[i + 1]);
  }
  pen_.Use(tableFont_);
  for (const auto& row : texts_.rows) {
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      columns_[i].width = std::max(columns_[i].width, pen_.Width(row[i + 1]));
    }
  }
  int edge = right_ - pen_.Across(kPadding);
  for (std::size_t i = columns_.size(); i-- > 0;) {
    columns_[i].right = edge;
    edge -= columns_[i].width + gap;
  }
  itemLeft_ = numberRight_ + gap;
  itemWidth_ = std::max(edge - itemLeft_, 1);
  return itemWidth_ >= pen_.Across(kLeastItem);
}

void ReceiptPages::MakeTableHead() {
  pen_.Use(tableFont_, true);
  const int height = pen_.LineHeight() + 4 * pen_.Down(kPadding);
  tableHead_ = {height + pen_.Down(kPadding), [this, height](int top) {
                  pen_.Fill({left_, top, right_, top + height}, kShade);
                  pen_.Use(tableFont_, true);
                  const int y = top + 2 * pen_.Down(kPadding);
                  pen_.Right(numberRight_, y, kPlace);
                  pen_.Left(itemLeft_, y, texts_.head[0]);
                  for (std::size_t i = 0; i < columns_.size(); ++i) {
                    pen_.Right(columns_[i].right, y, texts_.head[i + 1]);
                  }
                  pen_.Rule(left_, right_, top, kThin);
                  pen_.Rule(left_, right_, top + height, kThin);
                }};
}

void ReceiptPages::AddRows() {
  for (std::size_t row = 0; row < texts_.rows.size(); ++row) {
    lastRow_ = rows_.size();
    AddRow(row);
  }
}

// One block a line. They stay on one page unless they need more than one.
void ReceiptPages::AddRow(std::size_t row) {
  pen_.Use(tableFont_);
  const int padding = pen_.Down(kPadding);
  const std::vector<std::string> pieces = pen_.Wrap(texts_.rows[row][0], itemWidth_);
  const std::size_t first = rows_.size();
  int together = 0;
  for (std::size_t i = 0; i < pieces.size(); ++i) {
    const bool last = i + 1 == pieces.size();
    const int height = pen_.LineHeight() + (last ? 2 * padding : 0);
    together += height;
    AddLine(rows_, height, [this, row, i, piece = pieces[i], last, height](int top) {
      pen_.Use(tableFont_);
      // An item of several lines is one text to those who search the page.
      if (i == 0 && !last) DrawNumbers(row, top);
      pen_.Left(itemLeft_, top, piece);
      if (i == 0 && last) DrawNumbers(row, top);
      if (last) pen_.Rule(left_, right_, top + height - pen_.Down(kPadding), kHair, kPale);
    });
  }
  if (together <= bottom_ - top_ - tableHead_.height) rows_[first].together = together;
}

void ReceiptPages::DrawNumbers(std::size_t row, int top) {
  pen_.Right(numberRight_, top, std::to_string(row + 1));
  for (std::size_t i = 0; i < columns_.size(); ++i) {
    pen_.Right(columns_[i].right, top, texts_.rows[row][i + 1]);
  }
}

void ReceiptPages::AddSums() {
  AddLine(tail_, pen_.Down(40),
          [this](int top) { pen_.Rule(left_, right_, top - pen_.Down(kPadding), kThin); });
  pen_.Use(kText, true);
  int widest = 0;
  for (const Sum& sum : texts_.sums) widest = std::max(widest, pen_.Width(sum.second));
  const int amounts = right_ - pen_.Across(kPadding);
  const int labels = amounts - widest - pen_.Across(2 * kColumnGap);
  for (std::size_t i = 0; i < texts_.sums.size(); ++i) {
    const bool total = i + 1 == texts_.sums.size();
    const int above = total ? pen_.Down(3 * kPadding) : 0;
    const int height = pen_.LineHeight() + above + pen_.Down(kPadding);
    AddLine(tail_, height, [=, this, &sum = texts_.sums[i]](int top) {
      pen_.Use(kText, total);
      pen_.Right(labels, top + above, sum.first);
      pen_.Right(amounts, top + above, sum.second);
      if (!total) return;
      const int left = amounts - widest - pen_.Across(kPadding);
      pen_.Rule(left, right_, top + above / 2, kThin);
      pen_.Rule(left, right_, top + height, kThin);
      pen_.Rule(left, right_, top + height + pen_.Down(20), kThin);
    });
  }
  AddLine(tail_, pen_.Down(140), [](int) {});
}

// In a shaded band, the first language larger.
void ReceiptPages::AddWords() {
  const int inside = right_ - left_ - 4 * pen_.Across(kPadding);
  for (std::size_t i = 0; i < texts_.words.size(); ++i) {
    const bool first = i == 0;
    const int font = first ? kText + 10 : kText - 10;
    pen_.Use(font, first);
    const int height = pen_.LineHeight() + 2 * pen_.Down(kPadding);
    for (const std::string& piece : pen_.Wrap(texts_.words[i], inside)) {
      AddLine(tail_, height, [this, font, first, height, piece](int top) {
        pen_.Fill({left_, top, right_, top + height}, kShade);
        pen_.Use(font, first);
        pen_.Centre((left_ + right_) / 2, top + pen_.Down(kPadding), piece);
        pen_.On(clWhite);
      });
    }
  }
}

void ReceiptPages::AddSignatures() {
  constexpr int kRoom = 560, kLine = 1700;  // above the line, and its length on a wide page
  pen_.Use(kSmall);
  const int room = pen_.Down(kRoom);
  const int line = std::min(pen_.Across(kLine), (right_ - left_) * 9 / 20);
  AddLine(tail_, room + pen_.LineHeight() + pen_.Down(kPadding), [this, room, line](int top) {
    pen_.Use(kSmall);
    const int half = line / 2;
    int middle = left_ + half;
    for (const std::string_view signer : kSigners) {
      pen_.Rule(middle - half, middle + half, top + room, kHair);
      pen_.Centre(middle, top + room + pen_.Down(kPadding), signer);
      middle = right_ - half;
    }
  });
}

void ReceiptPages::PlaceOn(const Block& block, const Block* before) {
  const bool head =
      before != nullptr && (pages_.back().empty() || pages_.back().back().block == &head_.back());
  const int height = std::max(block.height, block.together) + (head ? before->height : 0);
  if (next_ + height > bottom_ && !pages_.back().empty()) {
    pages_.emplace_back();
    next_ = top_;
    return PlaceOn(block, before);
  }
  for (const Block* placed : {head ? before : nullptr, &block}) {
    if (placed == nullptr) continue;
    pages_.back().push_back({next_, placed});
    next_ += placed->height;
  }
}

void ReceiptPages::Place() {
  pages_.emplace_back();
  next_ = top_;
  for (const Block& block : head_) PlaceOn(block, nullptr);
  const auto last = rows_.begin() + static_cast<std::ptrdiff_t>(lastRow_);
  for (auto row = rows_.begin(); row != last; ++row) PlaceOn(*row, &tableHead_);
  int together = lastRow_ == 0 ? tableHead_.height : 0;
  for (auto row = last; row != rows_.end(); ++row) together += row->height;
  for (const Block& block : tail_) together += block.height;
  if (next_ + together > bottom_ && together + tableHead_.height <= bottom_ - top_) {
    pages_.emplace_back();
    next_ = top_;
  }
  for (auto row = last; row != rows_.end(); ++row) PlaceOn(*row, &tableHead_);
  for (const Block& block : tail_) PlaceOn(block, nullptr);
}

void ReceiptPages::DrawFoot(std::size_t page) {
  pen_.Use(kSmall);
  pen_.On(clWhite);
  pen_.Rule(left_, right_, bottom_ + pen_.Down(kPadding), kHair, kPale);
  const int y = bottom_ + 2 * pen_.Down(kPadding);
  const std::string place = PageName(page + 1, pages_.size());
  const int room = right_ - left_ - pen_.Width(place) - pen_.Across(kColumnGap);
  const std::string name = texts_.title + "  " + texts_.number;
  pen_.Left(left_, y, pen_.Wrap(name, room).front());
  pen_.Right(right_, y, place);
}

void ReceiptPages::Draw(std::size_t page) {
  pen_.On(clWhite);
  for (const Placed& placed : pages_[page]) placed.block->draw(placed.top);
  DrawFoot(page);
}

}  // namespace kvshare::receipts

// Columns of a terminal or a fixed-pitch printer. Texts are code page 874; widths count columns, in
// which Thai vowels and marks above and below take none.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kvshare::receipts {

// The text in pieces of at most `width` columns (width >= 1), split at a blank where there is one
// and never between a letter and its marks. Control characters become blanks. "" is one empty
// piece.
std::vector<std::string> Wrap(std::string_view text, std::size_t width);

// The same for a device that measures texts, a longer beginning of which is not narrower, and that
// says where a line may be broken (TCanvas::LineBreaks). A word that is too long is split between
// letters; a letter that is wider alone is a piece.
struct TextDevice {
  std::function<int(std::string_view)> widthOf;
  std::function<std::vector<std::size_t>(std::string_view)> breaksOf;
};
std::vector<std::string> Wrap(std::string_view text, int width, const TextDevice& device);

// Blanks up to `width` columns, behind and in front; a wider text stays whole.
std::string PadRight(std::string_view text, std::size_t width);
std::string PadLeft(std::string_view text, std::size_t width);

// A table whose first column takes what the others leave, and wraps; the others are aligned to the
// right and as wide as their widest cell. Where the first column would have no room its text stands
// on lines of its own.
class Table {
 public:
  explicit Table(std::size_t width) : width_(width) {}

  void Add(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }

  // One line each, LF at the end.
  void AppendTo(std::string& out) const;

 private:
  std::vector<std::size_t> Widths() const;

  std::size_t width_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace kvshare::receipts

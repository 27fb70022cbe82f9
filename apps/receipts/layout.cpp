#include "apps/receipts/layout.h"

#include <algorithm>

#include "kvshare/rtl/cp874.h"

namespace kvshare::receipts {

namespace {

constexpr std::string_view kGap = "  ";
constexpr std::size_t kLeastFirstColumn = 16;

bool IsMark(char c) {
  return IsCombiningCp874(static_cast<unsigned char>(c));
}

std::string WithoutControls(std::string_view text) {
  std::string clean(text);
  for (char& c : clean) {
    if (static_cast<unsigned char>(c) < 32 || c == 127) c = ' ';
  }
  return clean;
}

// Whether Thai may be split before text[at]: not before a vowel or sign that follows its consonant,
// and not after a vowel that stands before it.
bool MaySplit(std::string_view text, std::size_t at) {
  constexpr std::string_view kFollowing = "ะาำๅๆฯ"_th;
  constexpr std::string_view kLeading = "เแโใไ"_th;
  return !IsMark(text[at]) && kFollowing.find(text[at]) == std::string_view::npos &&
         kLeading.find(text[at - 1]) == std::string_view::npos;
}

// Where the piece ends that begins at 0: at most `width` columns, marks included. At least one
// letter, so that wrapping comes to an end.
std::size_t PieceEnd(std::string_view text, std::size_t width) {
  std::size_t columns = 0;
  std::size_t blank = 0;  // the last blank after a letter
  std::size_t i = 0;
  for (; i < text.size(); ++i) {
    if (!IsMark(text[i]) && columns++ == width) break;
    if (text[i] == ' ') blank = i;
  }
  if (i == text.size() || text[i] == ' ') return i;
  if (blank != 0) return blank;
  std::size_t split = i;
  while (split > 1 && !MaySplit(text, split)) --split;
  return split > 1 ? split : i;
}

}  // namespace

std::vector<std::string> Wrap(std::string_view text, std::size_t width) {
  const std::string clean = WithoutControls(text);
  std::string_view rest = clean;
  std::vector<std::string> pieces;
  do {
    const std::size_t end = PieceEnd(rest, width);
    pieces.emplace_back(rest.substr(0, end));
    rest.remove_prefix(end);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  } while (!rest.empty());
  return pieces;
}

std::string PadRight(std::string_view text, std::size_t width) {
  std::string padded(text);
  const std::size_t columns = DisplayWidth(text);
  if (columns < width) padded.append(width - columns, ' ');
  return padded;
}

std::string PadLeft(std::string_view text, std::size_t width) {
  const std::size_t columns = DisplayWidth(text);
  std::string padded(columns < width ? width - columns : 0, ' ');
  padded += text;
  return padded;
}

std::vector<std::size_t> Table::Widths() const {
  std::vector<std::size_t> widths(1);
  for (const auto& row : rows_) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t i = 0; i < row.size(); ++i) {
      widths[i] = std::max(widths[i], DisplayWidth(row[i]));
    }
  }
  return widths;
}

void Table::AppendTo(std::string& out) const {
  const std::vector<std::size_t> widths = Widths();
  std::size_t others = 0;
  for (std::size_t i = 1; i < widths.size(); ++i) others += kGap.size() + widths[i];
  const bool room = width_ >= others + std::min(widths[0], kLeastFirstColumn);
  const std::size_t first = room ? width_ - others : width_;

  for (const auto& row : rows_) {
    std::vector<std::string> pieces = Wrap(row[0], first);
    std::string numbers;
    for (std::size_t i = 1; i < row.size(); ++i) {
      numbers.append(kGap).append(PadLeft(row[i], widths[i]));
    }
    if (room) {
      pieces.front() = PadRight(pieces.front(), first) + numbers;
    } else {
      pieces.push_back(PadLeft(numbers, width_));
    }
    for (const std::string& piece : pieces) out.append(piece).push_back('\n');
  }
}

}  // namespace kvshare::receipts

#include "apps/receipts/textlayout.h"

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

// Where the piece ends whose first `fitting` bytes fit, marks included: there, or before it. At
// least one letter, so that wrapping comes to an end.
std::size_t SplitAt(std::string_view text, std::size_t fitting) {
  if (fitting == text.size() || text[fitting] == ' ') return fitting;
  const std::size_t blank = text.rfind(' ', fitting);
  if (blank != std::string_view::npos && blank != 0) return blank;
  std::size_t split = fitting;
  while (split > 1 && !MaySplit(text, split)) --split;
  return split > 1 ? split : fitting;
}

// The bytes that at most `width` columns take.
std::size_t FittingColumns(std::string_view text, std::size_t width) {
  std::size_t columns = 0;
  std::size_t i = 0;
  while (i < text.size() && (IsMark(text[i]) || columns++ != width)) ++i;
  return i;
}

// The most bytes, one letter with its marks at least, that are not wider.
std::size_t FittingUnits(std::string_view text, int width, const TextDevice& device) {
  const auto letterEnd = [text](std::size_t i) {
    while (i < text.size() && IsMark(text[i])) ++i;
    return i;
  };
  std::size_t fits = letterEnd(1);
  std::size_t tooLong = text.size() + 1;
  while (fits + 1 < tooLong) {
    const std::size_t middle = letterEnd(fits + (tooLong - fits) / 2);
    if (middle >= tooLong) break;
    (device.widthOf(text.substr(0, middle)) <= width ? fits : tooLong) = middle;
  }
  return fits;
}

// The last place where a line may be broken and before which, blanks left out, no more stands than
// fits; 0 where there is none.
std::size_t BreakAt(std::string_view text, std::size_t fitting,
                    const std::vector<std::size_t>& breaks) {
  const auto place = std::find_if(breaks.rbegin(), breaks.rend(), [&](std::size_t at) {
    const std::size_t last = text.find_last_not_of(' ', at - 1);
    return last != std::string_view::npos && last < fitting;
  });
  return place == breaks.rend() ? 0 : *place;
}

// Pieces as long as `endOf` says of the text that is left, without the blanks between them.
template <typename EndOf>
std::vector<std::string> Pieces(std::string_view text, EndOf endOf) {
  const std::string clean = WithoutControls(text);
  std::string_view rest = clean;
  std::vector<std::string> pieces;
  do {
    const std::size_t end = rest.empty() ? 0 : endOf(rest);
    std::string_view piece = rest.substr(0, end);
    rest.remove_prefix(end);
    const bool last = rest.find_first_not_of(' ') == std::string_view::npos;
    if (!last) piece = piece.substr(0, piece.find_last_not_of(' ') + 1);
    pieces.emplace_back(piece);
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
  } while (!rest.empty());
  return pieces;
}

}  // namespace

std::vector<std::string> Wrap(std::string_view text, std::size_t width) {
  return Pieces(
      text, [width](std::string_view rest) { return SplitAt(rest, FittingColumns(rest, width)); });
}

std::vector<std::string> Wrap(std::string_view text, int width, const TextDevice& device) {
  return Pieces(text, [width, &device](std::string_view rest) {
    if (device.widthOf(rest) <= width) return rest.size();
    const std::size_t fitting = FittingUnits(rest, width, device);
    const std::size_t end = BreakAt(rest, fitting, device.breaksOf(rest));
    return end != 0 ? end : SplitAt(rest, fitting);
  });
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

#include "paper/rasterbytes.h"

#include <algorithm>
#include <string_view>

namespace kvshare::paper {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kReset = "\x1B@"sv;
// The pulse of pin 2: on for 50 ms, off for 500 ms.
constexpr std::string_view kOpenDrawer = "\x1Bp\0\x19\xFA"sv;
constexpr std::string_view kFeedLines =
    "\x1B"
    "d\x06"sv;
constexpr std::string_view kCutFull = "\x1DV\x41\0"sv;
constexpr std::string_view kCutPartial = "\x1DV\x42\0"sv;
constexpr std::string_view kPictureBegin = "\x1Dv0\0"sv;

std::string_view EndOf(TCut cut) {
  switch (cut) {
    case TCut::Full:
      return kCutFull;
    case TCut::Partial:
      return kCutPartial;
    case TCut::None:
      break;
  }
  return kFeedLines;
}

// The low byte first.
void AppendCount(std::string& bytes, std::size_t count) {
  bytes.push_back(static_cast<char>(count & 0xFF));
  bytes.push_back(static_cast<char>(count >> 8 & 0xFF));
}

}  // namespace

void AppendRollBegin(std::string& bytes, const TRollWork& work) {
  bytes += kReset;
  if (work.openDrawer) bytes += kOpenDrawer;
}

void AppendRollPage(std::string& bytes, const DotPicture& page, const TRollWork& work) {
  for (int row = 0; row < page.height; row += kBandRows) {
    const int rows = std::min(kBandRows, page.height - row);
    bytes += kPictureBegin;
    AppendCount(bytes, page.BytesARow());
    AppendCount(bytes, static_cast<std::size_t>(rows));
    const auto dots = page.Rows(row, rows);
    bytes.append(dots.begin(), dots.end());
  }
  bytes += EndOf(work.cut);
}

}  // namespace kvshare::paper

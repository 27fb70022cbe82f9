#include "kvshare/ui/canvas.h"

namespace kvshare {

std::vector<std::size_t> TCanvas::LineBreaks(std::string_view text) {
  std::vector<std::size_t> breaks;
  for (std::size_t i = 1; i < text.size(); ++i) {
    if (text[i - 1] == ' ' && text[i] != ' ') breaks.push_back(i);
  }
  return breaks;
}

}  // namespace kvshare

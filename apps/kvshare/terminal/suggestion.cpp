#include "apps/kvshare/terminal/suggestion.h"

#include <algorithm>
#include <cstddef>

namespace kvshare::app {

namespace {

// How many steps make one of the other; two neighbours that change places are one step.
std::size_t Distance(std::string_view a, std::string_view b) {
  std::vector<std::vector<std::size_t>> steps(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
  for (std::size_t i = 0; i <= a.size(); ++i) steps[i][0] = i;
  for (std::size_t j = 0; j <= b.size(); ++j) steps[0][j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t other = a[i - 1] == b[j - 1] ? 0 : 1;
      std::size_t least =
          std::min({steps[i - 1][j] + 1, steps[i][j - 1] + 1, steps[i - 1][j - 1] + other});
      const bool exchanged = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (exchanged) least = std::min(least, steps[i - 2][j - 2] + 1);
      steps[i][j] = least;
    }
  }
  return steps[a.size()][b.size()];
}

}  // namespace

std::string NearestWord(std::string_view typed, const std::vector<std::string>& words) {
  constexpr std::size_t kFarthest = 2;
  constexpr std::size_t kLongest = 40;
  std::string nearest;
  std::size_t least = std::min(kFarthest + 1, typed.size());
  if (typed.size() > kLongest) return nearest;
  for (const std::string& word : words) {
    const std::size_t distance = Distance(typed, word);
    if (distance >= least) continue;
    least = distance;
    nearest = word;
  }
  return nearest;
}

}  // namespace kvshare::app

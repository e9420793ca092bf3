#include "answer/Nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <string>
#include <utility>

namespace tool {
namespace {

constexpr std::size_t kMostDifferent = 3;

std::size_t distance(std::string_view one, std::string_view other) {
  std::vector<std::size_t> row(other.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < one.size(); ++i) {
    std::size_t diagonal = std::exchange(row[0], i + 1);
    for (std::size_t j = 0; j < other.size(); ++j) {
      const std::size_t replaced = diagonal + (one[i] == other[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, row[j] + 1, diagonal + 1});
    }
  }
  return row.back();
}

std::string lowered(std::string_view name) {
  std::string result(name);
  std::transform(result.begin(), result.end(), result.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return result;
}

// Names whose lengths differ by more need no comparison, however long they are.
bool isFarInLength(std::string_view one, std::string_view other) {
  return std::max(one.size(), other.size()) - std::min(one.size(), other.size()) > kMostDifferent;
}

}  // namespace

std::string_view nearestOf(std::string_view name, const std::vector<std::string_view>& known) {
  std::string_view nearest;
  // Half of a name that is wrong is another name.
  std::size_t least = std::min(kMostDifferent, name.size() / 2) + 1;
  for (const std::string_view candidate : known) {
    if (candidate == name) return candidate;
    if (isFarInLength(name, candidate)) continue;
    const std::size_t difference =
        std::max<std::size_t>(distance(lowered(name), lowered(candidate)), 1);
    if (difference < least) {
      least = difference;
      nearest = candidate;
    }
  }
  return nearest;
}

}  // namespace tool

#include "Utils/NearestName.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "Utils/Ascii.h"

namespace utils {
namespace {

// No name of ours is longer; what is, is not compared letter by letter.
constexpr std::size_t kLongestName = 64;

// Returns how many letters differ, by the edit distance.
std::size_t countChanges(const std::string& from, const std::string& to) {
  // Row by row: the changes from the first letters of `from` to each beginning of `to`.
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = row[0]++;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const bool isSame = toLowerAscii(from[i]) == toLowerAscii(to[j]);
      const std::size_t replaced = diagonal + (isSame ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::string findNearestName(const std::string& written, const std::vector<std::string>& names) {
  std::string nearest;
  std::size_t least = kLongestName;
  for (const std::string& name : names) {
    const std::size_t longer = std::max(written.size(), name.size());
    if (longer > kLongestName) {
      continue;
    }
    const std::size_t changes = countChanges(written, name);
    if (changes < least && changes <= longer / 2) {
      least = changes;
      nearest = name;
    }
  }
  return nearest;
}

}  // namespace utils

#include "virtual_board/nearest.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace board {
namespace {

/// How far the word is from a beginning of the candidate, then from all of it, so that an
/// abbreviation finds its option.
std::pair<std::size_t, std::size_t> Distance(const std::string& from, const std::string& to) {
  // Distances from the beginning of `from` read so far to each beginning of `to`.
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), 0U);
  for (const char c : from) {
    std::size_t diagonal = row[0]++;
    for (std::size_t i = 0; i < to.size(); ++i) {
      const std::size_t replaced = diagonal + (c == to[i] ? 0U : 1U);
      diagonal = row[i + 1];
      row[i + 1] = std::min({replaced, diagonal + 1, row[i] + 1});
    }
  }
  return {*std::min_element(row.begin(), row.end()), row.back()};
}

}  // namespace

std::string Nearest(const std::string& word, const std::vector<std::string>& candidates) {
  return *std::min_element(candidates.begin(), candidates.end(),
                           [&](const std::string& a, const std::string& b) {
                             return Distance(word, a) < Distance(word, b);
                           });
}

}  // namespace board

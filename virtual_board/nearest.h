#pragma once

#include <string>
#include <vector>

namespace board {

/// The candidate that a mistyped or shortened word most likely stands for: the one with a beginning
/// that takes the fewest insertions, deletions and replacements of characters. There must be a
/// candidate.
[[nodiscard]] std::string Nearest(const std::string& word,
                                  const std::vector<std::string>& candidates);

}  // namespace board

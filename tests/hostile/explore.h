// Compares a driver operation with its model on every path.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

#include "hostile/path.h"
#include "hostile/records.h"

namespace hostile {

/// Values of a byte argument.
using Bytes = std::initializer_list<std::uint8_t>;

using Numbers = std::vector<std::uint64_t>;

/// Appends every number in `value`: an integer, an array, a tuple or a record.
template <typename T>
void Append(Numbers& numbers, const T& value) {
  if constexpr (std::is_integral_v<T> || std::is_enum_v<T>) {
    numbers.push_back(static_cast<std::uint64_t>(value));
  } else if constexpr (requires { value.begin(); }) {
    for (const auto& element : value) Append(numbers, element);
  } else if constexpr (requires { Fields(value); }) {
    Append(numbers, Fields(value));
  } else {
    std::apply([&](const auto&... element) { (Append(numbers, element), ...); }, value);
  }
}

template <typename T>
Numbers AllNumbers(const T& value) {
  Numbers numbers;
  Append(numbers, value);
  return numbers;
}

/// A record or number full of junk.
template <typename T>
T Junk() {
  static_assert(std::is_trivially_copyable_v<T>);
  std::array<std::uint8_t, sizeof(T)> bytes;
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(Random());
  T value;
  std::memcpy(&value, bytes.data(), sizeof(T));
  return value;
}

/// The limits of an exploration.
struct Limits {
  unsigned parts = kAllParts;  ///< Parts that may answer otherwise than on the first path.
};

/// Runs the model and the driver on every path, each with its own copies of the arguments. Their
/// accesses, results and all that they leave in the arguments must be the same.
template <typename Result, typename... Parameters, typename... Arguments>
void Explore(const Limits& limits, Result (*model)(Parameters...), Result (*driver)(Parameters...),
             const Arguments&... arguments) {
  if (testing::Test::HasFailure()) return;  // One difference says more than hundreds.
  BeginExploration(limits.parts);
  do {
    std::tuple<std::remove_cvref_t<Parameters>...> wanted(arguments...);
    std::tuple<std::remove_cvref_t<Parameters>...> got(arguments...);
    BeginPath();
    const Result wanted_result = std::apply(model, wanted);
    const Result result = std::apply(driver, got);
    const std::string trouble = EndPath();
    ASSERT_TRUE(trouble.empty()) << "the driver leaves the path " << trouble << "choices "
                                 << Choices();
    ASSERT_EQ(static_cast<int>(result), static_cast<int>(wanted_result)) << "choices " << Choices();
    ASSERT_EQ(AllNumbers(got), AllNumbers(wanted)) << "choices " << Choices();
  } while (NextPath());
}

template <typename Result, typename... Parameters, typename... Arguments>
void Explore(Result (*model)(Parameters...), Result (*driver)(Parameters...),
             const Arguments&... arguments) {
  Explore(Limits{}, model, driver, arguments...);
}

}  // namespace hostile

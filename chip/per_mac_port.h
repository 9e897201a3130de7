#pragma once

#include <array>

#include "core/port_id.h"

namespace chip {

/// One of each for the ports with a MAC, in order of their index.
template <typename T>
struct PerMacPort : std::array<T, monitor::kMacPorts.size()> {
  using Base = std::array<T, monitor::kMacPorts.size()>;

  /// `port` is one with a MAC.
  [[nodiscard]] T& operator[](monitor::PortId port) {
    return Base::operator[](monitor::IndexOf(port));
  }
  [[nodiscard]] const T& operator[](monitor::PortId port) const {
    return Base::operator[](monitor::IndexOf(port));
  }
};

}  // namespace chip

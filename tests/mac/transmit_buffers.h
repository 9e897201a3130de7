// The transmit buffers' part of bus transcripts. The monitor's transmit cursor outlives a test,
// so the tests keep track of it.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "mac/frame.h"
#include "support/scripted_bus.h"

/// The handle that the next allocation tries first; a test that allocates leaves it right.
inline unsigned g_cursor = 1;

// Answers of the buffer status register: how often the chip uses the handle.
inline constexpr char kNoUse[] = "02";
inline constexpr char kOneUse[] = "06";  // a free transmit buffer: the monitor's own hold
inline constexpr char kTwoUses[] = "0a";

/// The traffic of one query of an allocation, with the buffer base at 0200.
inline std::string Query(unsigned handle, const char* answer) {
  char text[400];
  std::snprintf(text, sizeof(text),
                "r16 010c 0200\n r16 010c 0200\n lock\n w8 0431 %02x\n"
                "r8 0430 02\n w8 0430 01\n r8 0430 01\n w8 0430 00\n r8 0430 02\n unlock\n"
                "r8 0430 %s\n",
                handle, answer);
  return text;
}

/// Allocates until the next allocation tries `handle` (1 to 15) first.
inline void MoveCursorTo(unsigned handle) {
  while (g_cursor != handle) {
    ScriptedBus bus(Query(g_cursor, g_cursor > 15 ? kNoUse : kOneUse).c_str());
    std::uint32_t data = 0;
    ASSERT_EQ(monitor::AllocTxBuffer(data), monitor::DriverStatus::kOk);
    g_cursor = g_cursor >= 15 ? 1 : g_cursor + 1;
  }
}

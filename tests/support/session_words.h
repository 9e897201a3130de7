// Reads the words of a directive.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>

#include "support/session.h"

using Words = std::istringstream;

/// The next word as a hexadecimal number. Throws SessionError when there is none.
std::uint32_t TakeHex(Words& words);

/// The next word. Throws SessionError when there is none.
std::string TakeWord(Words& words);

/// The next word, "wan", "lan" or "dmz", as a port.
monitor::PortId TakePort(Words& words);

/// "@set BLOCK ...": changes a block's state, bypassing the bus.
void ApplySetting(SessionState& state, Words& words);

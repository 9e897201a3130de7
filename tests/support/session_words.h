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

/// The next word as a port with a MAC: 0 WAN, 1 LAN, 2 DMZ.
unsigned TakePort(Words& words);

/// "@set BLOCK ...": changes a block's state, bypassing the bus.
void ApplySetting(SessionState& state, Words& words);

// Directives about frames: what arrives at the ports, what leaves them, what the buffers hold.
#pragma once

#include "support/session_words.h"

/// @frame PORT BYTES: the frame arrives and the chip takes it.
void ArriveFrame(SessionState& state, Words& words);

/// @lost PORT BYTES: the frame arrives and the chip does not take it.
void LoseFrame(SessionState& state, Words& words);

/// @sent PORT BYTES: the oldest frame that has left the chip, which is then forgotten.
/// @sent nothing: there is none.
void CheckSentFrame(SessionState& state, Words& words);

/// @set buffer HANDLE BYTES: contents of a buffer from its data address on.
void SetBuffer(SessionState& state, Words& words);

/// @set memory absent|present: whether the buffer memory can be mapped.
void SetMemory(SessionState& state, Words& words);

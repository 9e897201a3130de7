#pragma once

#include "core/engine_fields.h"
#include "core/value_names.h"

namespace monitor {

inline constexpr Reg16 kBufferBase{0x10C, "FRAME_BASE", "bits 31 to 16 of the buffers' address"};
inline constexpr Reg8 kReceiveHandle{0x426, "FRAME_RX_HANDLE", "handle of the offered frame"};
inline constexpr Reg8 kBufferControl{0x427, "FRAME_CONTROL", "receive acknowledge and release"};
inline constexpr Field kReleaseDone{2, 2, "release_done", "the release is done"};
inline constexpr Field kReceiveAcknowledge{1, 1, "rx_acknowledge", "pulsed: frame taken"};
inline constexpr Field kReleaseStart{0, 0, "release_start", "pulsed: give the buffer back"};
inline constexpr Reg8 kReleaseHandle{0x428, "FRAME_RELEASE_HANDLE", "buffer to give back"};
inline constexpr Reg8 kTransmitHandle{0x429, "FRAME_TX_HANDLE", "buffer to send"};
inline constexpr Reg8 kTransmitControl{0x42A, "FRAME_TX_CONTROL", "where and how to send"};
inline constexpr Field kTransmitHigh{6, 6, "high", "priority"};
inline constexpr Field kTransmitClass{5, 4, "class", "class of service"};
inline constexpr Field kTransmitPort{3, 0, "port", "port to send to, one-hot"};
inline constexpr Reg8 kTransmitCommand{0x42B, "FRAME_TX_COMMAND", "transmit handshake"};
inline constexpr Field kTransmitDone{1, 1, "done", "the buffer is queued"};
inline constexpr Field kTransmitStart{0, 0, "start", "pulsed: send"};
inline constexpr Reg8 kBufferStatus{0x430, "FRAME_STATUS", "buffer status handshake"};
inline constexpr Field kBufferUses{5, 2, "uses", "outstanding uses of the handle"};
inline constexpr Field kStatusDone{1, 1, "done", "the count is valid"};
inline constexpr Field kStatusStart{0, 0, "start", "pulsed: count"};
inline constexpr Reg8 kStatusHandle{0x431, "FRAME_STATUS_HANDLE", "buffer to query"};

// The three handshakes know no direction.
inline constexpr EngineFields kReleaseEngine{
    .start = kReleaseStart, .read_done = kReleaseDone, .write_done = kReleaseDone, .write = {}};
inline constexpr EngineFields kTransmitEngine{
    .start = kTransmitStart, .read_done = kTransmitDone, .write_done = kTransmitDone, .write = {}};
inline constexpr EngineFields kStatusEngine{
    .start = kStatusStart, .read_done = kStatusDone, .write_done = kStatusDone, .write = {}};

inline constexpr RegisterRow kFrameRegisters[] = {
    kBufferBase,
    {kReceiveHandle, ValueKind::kHandle},
    {kBufferControl, {kReleaseDone, kReceiveAcknowledge, kReleaseStart}},
    {kReleaseHandle, ValueKind::kHandle},
    {kTransmitHandle, ValueKind::kHandle},
    {kTransmitControl,
     {{kTransmitHigh, kPriorityNames}, kTransmitClass, {kTransmitPort, kOnePort}}},
    {kTransmitCommand, {kTransmitDone, kTransmitStart}},
    {kBufferStatus, {kBufferUses, kStatusDone, kStatusStart}},
    {kStatusHandle, ValueKind::kHandle},
};

// Buffer memory: 256 buffers, each a header and room for a frame.
inline constexpr std::uint32_t kBuffers = 256;
inline constexpr std::uint32_t kBufferSize = 2048;
inline constexpr std::uint32_t kBufferHeaderSize = 32;

// Header fields, by byte from the start of the buffer. The length is a halfword in the
// processor's own byte order; on receive only its low bits count.
inline constexpr std::uint32_t kHeaderLength = 0;
inline constexpr std::uint32_t kHeaderPort = 9;
inline constexpr std::uint32_t kHeaderReason = 10;
inline constexpr Field kReceivedLength{10, 0, "length", "bytes of the received frame"};
inline constexpr Field kReceivedPort{3, 0, "port", "port that received the frame"};
inline constexpr Field kReceivedReason{4, 0, "reason", "why the CPU gets the frame"};

// Handles 1 to 15 are transmit buffers that software fills; from 16 on the chip hands out
// received frames.
inline constexpr unsigned kFirstReceiveHandle = 16;

}  // namespace monitor

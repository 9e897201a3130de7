// What a session and its directives share.
#pragma once

#include <deque>
#include <stdexcept>
#include <string>
#include <vector>

#include "chip/router_chip.h"

/// A frame that has left a port.
struct SentFrame {
  monitor::PortId port;
  std::vector<std::uint8_t> bytes;
};

/// The running session: the chip under the monitor and what directives ask of the console.
struct SessionState {
  SessionState() {
    chip.uart.on_transmit = [this](std::uint8_t byte) { uart_output.push_back(byte); };
    chip.frames.on_transmit = [this](monitor::PortId port, std::span<const std::uint8_t> frame) {
      sent.push_back({port, {frame.begin(), frame.end()}});
    };
  }

  chip::RouterChip chip;
  std::vector<std::uint8_t> uart_output;  ///< Sent by the UART since the last look.
  std::deque<SentFrame> sent;             ///< Not yet checked, the oldest first.
  bool ctrl_c_in_waits = false;           ///< Waits on hardware find a Ctrl-C.
  bool ignore_complaints = false;         ///< Until the next line has been answered.
  std::vector<std::string> complaints;    ///< Expected until the next line has been answered.
};

/// A session that differs from what is written.
struct SessionError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Called between the directives of a line and its first key.
void BeforeKeys(SessionState& state);

/// Carries out a directive, the text after "@". Throws SessionError when it is unknown or does
/// not hold.
void RunDirective(SessionState& state, const std::string& text);

// The queue that makes the link strictly one request at a time: the head was transmitted and waits for its
// answer, every other request waits its turn.
#pragma once

#include <windows.h>

#include <string_view>

#include "base/text.h"
#include "link/link_state.h"

namespace veltra {

constexpr size_t kLongestRequest =
    1024;  // bytes, type included; a longer one is queued but never transmitted

// Frames and writes one message past the queue: the first byte alone, 5 ms later the rest. Nothing when the
// port is closed.
void SendFrame(Bytes message);

// Appends a request and transmits it when it is the only one. Nothing at all when the port is closed.
void EnqueueRequest(HWND replyTarget, Bytes content, MessageType type);

// EnqueueRequest of the tool's own text.
void SendText(std::string_view text);

// Transmits the head, again when it was transmitted before. Nothing when the queue is empty or the head is
// too long.
void TransmitHead();

// Drops every request without transmitting anything.
void ClearPicQueue();

}  // namespace veltra

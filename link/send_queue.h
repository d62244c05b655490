// The queue that makes the link strictly one request at a time: the head was transmitted and waits for its
// answer, every other request waits its turn.
#pragma once

#include <windows.h>

#include <optional>
#include <string_view>

#include "base/text.h"
#include "link/link_state.h"

namespace veltra {

// Bytes, type included; a longer one is queued but never transmitted.
constexpr size_t kLongestRequest = 1024;
// With this many waiting, the next one is refused with an error line.
constexpr size_t kMostRequests = 1000;

// Frames and writes one message past the queue: the first byte alone, 5 ms later the rest. Nothing when the
// port is closed.
void SendFrame(Bytes message);

// Appends a request and transmits it when it is the only one. Nothing at all when the port is closed.
// Refused with an error line when the queue is full.
void EnqueueRequest(HWND replyTarget, Bytes content, MessageType type);

// EnqueueRequest of the tool's own text.
void SendText(std::string_view text);

// Transmits the head, again when it was transmitted before. Nothing when the queue is empty or the head is
// too long.
void TransmitHead();

// Transmits the head when it is new; what was transmitted waits for its answer.
void TransmitNewHead();

// The request that an answer belongs to, taken out of the queue. A head that was never transmitted is not the
// one that was answered, and stays.
std::optional<PicRequest> TakeAnsweredRequest();

// Null when the queue is empty.
const PicRequest* HeadRequest();

// Drops the requests of one kind.
void DropRequests(bool (*isOfKind)(const PicRequest& request));

// Drops every request without transmitting anything.
void ClearPicQueue();

}  // namespace veltra

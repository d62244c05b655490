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
// port is closed. Returns GetTickCount of before the rest: no answer is older.
DWORD SendFrame(Bytes message);

// Appends a request and transmits it when it is the only one; while the queue is reserved it waits aside.
// Nothing at all when the port is closed. Refused with an error line when the queue is full.
void EnqueueRequest(HWND replyTarget, Bytes content, MessageType type);

// EnqueueRequest of the tool's own text.
void SendText(std::string_view text);

// Transmits the head, again when it was transmitted before. Nothing when the queue is empty or the head is
// too long.
void TransmitHead();

// Transmits the head when it is new; what was transmitted waits for its answer.
void TransmitNewHead();

// The port is being closed: an answer that has not come yet will not come any more.
void NoteLostAnswer();
// The port is open again: transmits the head again when its answer was lost so.
void RepeatAstrayHead();

// The request that an answer belongs to, taken out of the queue. A head that was never transmitted is not the
// one that was answered, and stays; so does one that was transmitted only after the controller had said the
// answer, at `saidAt` as GetMessageTime tells it: an answer that comes twice is not that of the next request,
// too. Both times are as fine as Windows' clock, 16 ms at worst.
std::optional<PicRequest> TakeAnsweredRequest(DWORD saidAt);

// Null when the queue is empty.
const PicRequest* HeadRequest();

// Takes a head away that was transmitted so long ago, or longer, and has not been answered. Transmits
// nothing.
std::optional<PicRequest> TakeUnansweredHead(DWORD milliseconds);

// Drops the requests of one kind.
void DropRequests(bool (*isOfKind)(const PicRequest& request));

// Drops every request without transmitting anything. What waits aside stays.
void ClearPicQueue();

// The same for who cancels what waits. What a firmware update has asked stays.
void CancelRequests();

// ---- a firmware update has the queue to itself

// What others ask waits aside from here on, as does what has not been transmitted yet; and what has, when
// nobody will answer it.
void ReserveQueue(bool isAnswerToCome);
// EnqueueRequest of the update.
void EnqueueForUpdate(Bytes content, MessageType type);
// What waits aside follows, in order.
void ReleaseQueue();

}  // namespace veltra

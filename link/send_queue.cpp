#include "link/send_queue.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "link/frame.h"
#include "link/link_state.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr DWORD kFirstBytePauseMs = 5;  // between the first byte of a frame and the rest

PicRequest RequestOf(HWND replyTarget, Bytes content, MessageType type) {
  PicRequest request;
  request.replyTarget = replyTarget;
  request.bytes.reserve(content.size() + 1);
  request.bytes.push_back(static_cast<uint8_t>(type));
  request.bytes.insert(request.bytes.end(), content.begin(), content.end());
  return request;
}

void Append(PicRequest request) {
  Link().picQueue.push_back(std::move(request));
  if (Link().picQueue.size() == 1) TransmitHead();
}

std::optional<PicRequest> TakeTransmittedHead() {
  PicQueue& queue = Link().picQueue;
  if (queue.empty() || !queue.front().transmitted) return std::nullopt;
  PicRequest request = std::move(queue.front());
  queue.pop_front();
  return request;
}

// Moves the requests from the n-th on to the end of the other queue.
void MoveFrom(PicQueue& queue, size_t n, PicQueue& other) {
  const auto first = queue.begin() + static_cast<ptrdiff_t>(n);
  std::move(first, queue.end(), std::back_inserter(other));
  queue.erase(first, queue.end());
}

}  // namespace

DWORD SendFrame(Bytes message) {
  const auto& port = Link().picPort;
  if (!port) return GetTickCount();
  const std::vector<uint8_t> frame = EncodeFrame(message);
  port->Write(frame.data(), 1);
  Sleep(kFirstBytePauseMs);
  const DWORD now = GetTickCount();
  port->Write(frame.data() + 1, static_cast<uint32_t>(frame.size() - 1));
  return now;
}

void EnqueueRequest(HWND replyTarget, Bytes content, MessageType type) {
  LinkState& link = Link();
  if (!link.picPort) return;
  if (link.picQueue.size() + link.waitingAside.size() >= kMostRequests) {
    Log().WriteError(TEXT("Send queue"), TEXT("full, refused: ") + Widen(TextOf(content)));
    return;
  }
  PicRequest request = RequestOf(replyTarget, content, type);
  if (link.queueIsReserved)
    link.waitingAside.push_back(std::move(request));
  else
    Append(std::move(request));
}

void SendText(std::string_view text) {
  EnqueueRequest(nullptr, BytesOf(text), MessageType::kText);
}

void TransmitHead() {
  PicQueue& queue = Link().picQueue;
  if (queue.empty() || queue.front().bytes.size() > kLongestRequest) return;
  const bool isFirst = !std::exchange(queue.front().transmitted, true);
  queue.front().wentAstray = !Link().picPort;
  queue.front().transmittedAt = SendFrame(queue.front().bytes);
  if (isFirst) queue.front().unknownUntil = queue.front().transmittedAt;
}

void TransmitNewHead() {
  const PicRequest* head = HeadRequest();
  if (head && !head->transmitted) TransmitHead();
}

void NoteLostAnswer() {
  PicQueue& queue = Link().picQueue;
  if (!queue.empty() && queue.front().transmitted) queue.front().wentAstray = true;
}

void RepeatAstrayHead() {
  const PicRequest* head = HeadRequest();
  if (head && head->wentAstray) TransmitHead();
}

std::optional<PicRequest> TakeAnsweredRequest(DWORD saidAt) {
  const PicRequest* head = HeadRequest();
  if (!head || static_cast<int32_t>(saidAt - head->unknownUntil) < 0) return std::nullopt;
  return TakeTransmittedHead();
}

std::optional<PicRequest> TakeUnansweredHead(DWORD milliseconds) {
  const PicRequest* head = HeadRequest();
  if (!head || GetTickCount() - head->transmittedAt < milliseconds) return std::nullopt;
  return TakeTransmittedHead();
}

const PicRequest* HeadRequest() {
  const PicQueue& queue = Link().picQueue;
  return queue.empty() ? nullptr : &queue.front();
}

void DropRequests(bool (*isOfKind)(const PicRequest& request)) {
  std::erase_if(Link().picQueue, isOfKind);
}

void ClearPicQueue() {
  Link().picQueue.clear();
}

void CancelRequests() {
  if (Link().queueIsReserved)
    Link().waitingAside.clear();
  else
    ClearPicQueue();
}

void ReserveQueue(bool isAnswerToCome) {
  LinkState& link = Link();
  link.queueIsReserved = true;
  const bool isHeadAwaited = isAnswerToCome && !link.picQueue.empty() && link.picQueue.front().transmitted;
  MoveFrom(link.picQueue, isHeadAwaited ? 1 : 0, link.waitingAside);
  for (PicRequest& request : link.waitingAside) request.transmitted = false;
}

void EnqueueForUpdate(Bytes content, MessageType type) {
  if (Link().picPort) Append(RequestOf(nullptr, content, type));
}

void ReleaseQueue() {
  LinkState& link = Link();
  link.queueIsReserved = false;
  MoveFrom(link.waitingAside, 0, link.picQueue);
  TransmitNewHead();
}

}  // namespace veltra

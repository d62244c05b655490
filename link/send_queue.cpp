#include "link/send_queue.h"

#include "link/frame.h"
#include "link/link_state.h"
#include "system/system_state.h"

namespace veltra {
namespace {

constexpr DWORD kFirstBytePauseMs = 5;  // between the first byte of a frame and the rest

}  // namespace

void SendFrame(Bytes message) {
  const auto& port = Link().picPort;
  if (!port) return;
  const std::vector<uint8_t> frame = EncodeFrame(message);
  port->Write(frame.data(), 1);
  Sleep(kFirstBytePauseMs);
  port->Write(frame.data() + 1, static_cast<uint32_t>(frame.size() - 1));
}

void EnqueueRequest(HWND replyTarget, Bytes content, MessageType type) {
  if (!Link().picPort) return;
  if (Link().picQueue.size() >= kMostRequests) {
    Log().WriteError(TEXT("Send queue"), TEXT("full, refused: ") + Widen(TextOf(content)));
    return;
  }
  PicRequest request;
  request.replyTarget = replyTarget;
  request.bytes.reserve(content.size() + 1);
  request.bytes.push_back(static_cast<uint8_t>(type));
  request.bytes.insert(request.bytes.end(), content.begin(), content.end());
  Link().picQueue.push_back(std::move(request));
  if (Link().picQueue.size() == 1) TransmitHead();
}

void SendText(std::string_view text) {
  EnqueueRequest(nullptr, BytesOf(text), MessageType::kText);
}

void TransmitHead() {
  PicQueue& queue = Link().picQueue;
  if (queue.empty() || queue.front().bytes.size() > kLongestRequest) return;
  queue.front().transmitted = true;
  SendFrame(queue.front().bytes);
}

void TransmitNewHead() {
  const PicRequest* head = HeadRequest();
  if (head && !head->transmitted) TransmitHead();
}

std::optional<PicRequest> TakeAnsweredRequest() {
  PicQueue& queue = Link().picQueue;
  if (queue.empty() || !queue.front().transmitted) return std::nullopt;
  PicRequest request = std::move(queue.front());
  queue.pop_front();
  return request;
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

}  // namespace veltra

#include "link/send_queue.h"

#include "app/app_state.h"
#include "link/frame.h"

namespace veltra {
namespace {

constexpr DWORD kFirstBytePauseMs = 5;  // between the first byte of a frame and the rest

}  // namespace

void SendFrame(Bytes message) {
  const auto& port = GetAppState().picPort;
  if (!port) return;
  const std::vector<uint8_t> frame = EncodeFrame(message);
  port->Write(frame.data(), 1);
  Sleep(kFirstBytePauseMs);
  port->Write(frame.data() + 1, static_cast<uint32_t>(frame.size() - 1));
}

void EnqueueRequest(HWND replyTarget, Bytes content, MessageType type) {
  AppState& state = GetAppState();
  if (!state.picPort) return;
  PicRequest request;
  request.replyTarget = replyTarget;
  request.bytes.reserve(content.size() + 1);
  request.bytes.push_back(static_cast<uint8_t>(type));
  request.bytes.insert(request.bytes.end(), content.begin(), content.end());
  state.picQueue.push_back(std::move(request));
  if (state.picQueue.size() == 1) TransmitHead();
}

void SendText(std::string_view text) {
  EnqueueRequest(nullptr, BytesOf(text), MessageType::kText);
}

void TransmitHead() {
  PicQueue& queue = GetAppState().picQueue;
  if (queue.empty() || queue.front().bytes.size() > kLongestRequest) return;
  queue.front().transmitted = true;
  SendFrame(queue.front().bytes);
}

void ClearPicQueue() {
  GetAppState().picQueue.clear();
}

}  // namespace veltra

#include "tests/windows/line.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <thread>

#include "simulator/wire.h"

namespace windows_test {
namespace {

using simulator::MessageType;

std::vector<uint8_t> BytesOf(std::string_view hex) {
  std::vector<uint8_t> bytes;
  for (size_t at = 0; at + 2 <= hex.size(); at += 3)
    bytes.push_back(static_cast<uint8_t>(std::stoi(std::string(hex.substr(at, 2)), nullptr, 16)));
  return bytes;
}

}  // namespace

bool Line::IsOpen() {
  pollfd state{terminal_.Get(), 0, 0};
  return poll(&state, 1, 0) >= 0 && !(state.revents & POLLHUP);
}

void Line::ReadWhatIsThere() {
  uint8_t buffer[4096];
  ssize_t count = 0;
  while ((count = read(terminal_.Get(), buffer, sizeof buffer)) > 0)
    for (ssize_t i = 0; i < count; ++i) received_.push_back({buffer[i], Clock::now()});
}

void Line::Expect(std::string_view bytes, const Where& where) {
  const std::vector<uint8_t> expected = BytesOf(bytes);
  std::vector<uint8_t> seen;
  Clock::time_point first;
  const auto limit = Clock::now() + kPatience;
  while (seen.size() < expected.size()) {
    ReadWhatIsThere();
    if (received_.empty()) {
      if (Clock::now() > limit)
        Fail("expected " + std::string(bytes) + ", saw only " + simulator::DescribeBytes(seen), where);
      pollfd source{terminal_.Get(), POLLIN, 0};
      poll(&source, 1, static_cast<int>(kPollPause.count()));
      if (source.revents & POLLHUP) std::this_thread::sleep_for(kPollPause);
      continue;
    }
    const Byte byte = received_.front();
    received_.pop_front();
    seen.push_back(byte.value);
    if (seen.size() == 1) first = byte.at;
    if (seen.size() == 2) pause_ = std::chrono::duration_cast<std::chrono::microseconds>(byte.at - first);
    if (byte.value != expected[seen.size() - 1])
      Fail("expected " + std::string(bytes) + ", saw " + simulator::DescribeBytes(seen), where);
  }
}

void Line::ExpectNothing(const Where& where) {
  ReadWhatIsThere();
  if (received_.empty()) return;
  std::vector<uint8_t> bytes;
  for (const Byte& byte : received_) bytes.push_back(byte.value);
  Fail("nothing was to be sent, but saw " + simulator::DescribeBytes(bytes), where);
}

std::string Line::TakeText(const Where& where) {
  ReadWhatIsThere();
  if (received_.empty()) return {};
  simulator::FrameReader reader;
  std::vector<uint8_t> seen;
  while (!received_.empty()) {
    seen.push_back(received_.front().value);
    received_.pop_front();
    const std::optional<simulator::WireEvent> event = reader.Take(seen.back());
    if (!event) continue;
    if (!event->fault.empty()) Fail(event->fault + ": " + simulator::DescribeBytes(event->wire), where);
    return {event->message.begin() + 1, event->message.end()};
  }
  Fail("half a frame: " + simulator::DescribeBytes(seen), where);
}

void Line::SendText(std::string_view text, const Where& where) {
  Send(simulator::EncodeFrame(simulator::MakeMessage(MessageType::kText, text)), where);
}

void Line::SendReply(std::string_view content, const Where& where) {
  Send(simulator::EncodeFrame(simulator::MakeMessage(MessageType::kReply, content)), where);
}

void Line::SendLogLine(std::string_view text, const Where& where) {
  Send(simulator::EncodeFrame(simulator::MakeMessage(MessageType::kLogLine, text)), where);
}

void Line::SendRaw(std::string_view bytes, const Where& where) {
  Send(BytesOf(bytes), where);
}

void Line::Send(const std::vector<uint8_t>& bytes, const Where& where) {
  size_t done = 0;
  const auto limit = Clock::now() + kPatience;
  while (done < bytes.size()) {
    const ssize_t count = write(terminal_.Get(), bytes.data() + done, bytes.size() - done);
    if (count > 0) done += static_cast<size_t>(count);
    if (count < 0 && errno != EAGAIN && errno != EINTR)
      Fail(std::string("the line takes nothing: ") + std::strerror(errno), where);
    if (count < 0 && Clock::now() > limit) Fail("nobody reads the line", where);
    if (count < 0) std::this_thread::sleep_for(kPollPause);
  }
}

}  // namespace windows_test

#include "pal/devices/serial_port.h"

#include <algorithm>
#include <utility>

#include "pal/kernel/sync_objects.h"
#include "pal/machine/die.h"
#include "pal/machine/state.h"

namespace pal {
namespace {

constexpr std::u16string_view kDevicePrefix = u"\\\\.\\";
constexpr std::u16string_view kPortPrefix = u"COM";

// While a transfer is under way OVERLAPPED::Internal holds STATUS_PENDING, as on Windows; afterwards it holds
// the error number rather than a status.
constexpr ULONG_PTR kUnderWay = 0x103;

bool ReadsReturnAtOnce(const COMMTIMEOUTS& timeouts) {
  return timeouts.ReadIntervalTimeout == MAXDWORD && timeouts.ReadTotalTimeoutMultiplier == 0 &&
         timeouts.ReadTotalTimeoutConstant == 0;
}

void SetCompletionEvent(State& state, const OVERLAPPED& overlapped, bool signaled) {
  if (const auto event = state.handles.Find<EventObject>(overlapped.hEvent)) event->Set(signaled);
}

}  // namespace

std::optional<int> PortNumberOf(std::u16string_view name) {
  const bool isDevice = name.starts_with(kDevicePrefix);
  const std::optional<int> noPort = isDevice ? std::optional(0) : std::nullopt;
  if (isDevice) name.remove_prefix(kDevicePrefix.size());
  if (!SameName(name.substr(0, kPortPrefix.size()), kPortPrefix)) return noPort;
  name.remove_prefix(kPortPrefix.size());
  if (name.empty() || name.size() > 3) return noPort;
  int number = 0;
  for (const char16_t digit : name) {
    if (digit < u'0' || digit > u'9') return noPort;
    number = number * 10 + (digit - u'0');
  }
  return number > 0 ? std::optional(number) : noPort;
}

void BeginOverlapped(State& state, OVERLAPPED& overlapped) {
  if (!overlapped.hEvent) Die("a transfer without an event");
  overlapped.Internal = kUnderWay;
  overlapped.InternalHigh = 0;
  SetCompletionEvent(state, overlapped, false);
}

void CompleteOverlapped(State& state, OVERLAPPED& overlapped, DWORD error, DWORD transferred) {
  overlapped.Internal = error;
  overlapped.InternalHigh = transferred;
  SetCompletionEvent(state, overlapped, true);
  state.scheduler.Notify();
}

bool IsUnderWay(const OVERLAPPED& overlapped) {
  return overlapped.Internal == kUnderWay;
}

// ---- the program's handle -----------------------------------------------------------------------------------

DWORD PortHandle::Refusal() const {
  if (closed_) return ERROR_INVALID_HANDLE;
  return deviceGone_ ? ERROR_BAD_COMMAND : ERROR_SUCCESS;
}

DCB& PortHandle::Settings() const {
  return port_.dcb_;
}

COMMTIMEOUTS& PortHandle::Timeouts() const {
  return port_.timeouts_;
}

void PortHandle::OnClose() {
  closed_ = true;
  EndWait({ERROR_OPERATION_ABORTED, 0});
  port_.handle_.reset();
  port_.state_.Emit(SerialClosed{port_.number_});
}

void PortHandle::DeviceGone() {
  deviceGone_ = true;
  EndWait({ERROR_OPERATION_ABORTED, 0});
}

// The driver ends a wait at the moment of the event, even when the waiting thread comes to run later.
void PortHandle::EndWait(Outcome outcome) {
  if (!waits_ || outcome_ || port_.hung_ != SerialPort::Hung::kNot) return;
  outcome_ = outcome;
  port_.state_.scheduler.Notify();
}

void PortHandle::Raise(DWORD events) {
  events &= mask_;
  if (events == 0) return;
  if (waits_ && !outcome_) {
    EndWait({ERROR_SUCCESS, events});
  } else {
    raised_ |= events;
  }
}

// What waits in the host is fetched when the queue is empty: on the road of a press a call of the host less
// counts.
void PortHandle::FetchFromTty() {
  if (!tty_ || deviceGone_ || !port_.input_.empty()) return;
  std::vector<uint8_t> bytes;
  const bool alive = tty_->Read(bytes);
  port_.Receive(bytes);
  if (!alive) DeviceGone();
}

// A read in memory is taken over first and done when the program waits for it; one on a tty is done at once:
// Windows' drivers do either.
DWORD PortHandle::CompleteSoon(OVERLAPPED& overlapped, DWORD error, DWORD transferred) {
  if (tty_) {
    CompleteOverlapped(port_.state_, overlapped, error, transferred);
    return error;
  }
  Scheduler& scheduler = port_.state_.scheduler;
  scheduler.At(scheduler.Now(),
               [&state = port_.state_, handle = weak_from_this(), &overlapped, error, transferred] {
                 const MachineLock lock(state.mutex);
                 const std::shared_ptr<PortHandle> open = handle.lock();
                 if (open && !open->closed_) CompleteOverlapped(state, overlapped, error, transferred);
               });
  return ERROR_IO_PENDING;
}

DWORD PortHandle::Read(std::span<uint8_t> buffer, OVERLAPPED* overlapped, DWORD& transferred) {
  if (const DWORD refusal = Refusal()) return refusal;
  if (!overlapped) return ERROR_INVALID_PARAMETER;  // the handle is an overlapped one
  if (!ReadsReturnAtOnce(port_.timeouts_)) Die("ReadFile on a port whose reads wait");
  BeginOverlapped(port_.state_, *overlapped);
  if (const auto failure = std::exchange(port_.readFailure_, std::nullopt)) {
    port_.commErrors_ |= failure->commErrors;
    if (failure->atOnce) return failure->error;
    return CompleteSoon(*overlapped, failure->error, 0);
  }
  const size_t count = std::min(buffer.size(), port_.input_.size());
  const auto end = port_.input_.begin() + static_cast<std::ptrdiff_t>(count);
  std::copy(port_.input_.begin(), end, buffer.begin());
  port_.input_.erase(port_.input_.begin(), end);
  transferred = static_cast<DWORD>(count);
  return CompleteSoon(*overlapped, ERROR_SUCCESS, transferred);
}

DWORD PortHandle::Write(std::span<const uint8_t> bytes, OVERLAPPED* overlapped, DWORD& transferred) {
  if (const DWORD refusal = Refusal()) return refusal;
  if (!overlapped) return ERROR_INVALID_PARAMETER;
  BeginOverlapped(port_.state_, *overlapped);
  std::optional<size_t> taken = bytes.size();
  if (tty_) {
    const COMMTIMEOUTS& timeouts = port_.timeouts_;
    const auto limit = static_cast<int>(timeouts.WriteTotalTimeoutConstant +
                                        timeouts.WriteTotalTimeoutMultiplier * bytes.size());
    taken = tty_->Write(bytes, limit);
    if (!taken) DeviceGone();
  }
  const DWORD error = taken ? ERROR_SUCCESS : ERROR_OPERATION_ABORTED;
  transferred = static_cast<DWORD>(taken.value_or(0));
  if (transferred > 0) port_.Transmit(bytes.first(transferred));
  CompleteOverlapped(port_.state_, *overlapped, error, transferred);
  return error;
}

DWORD PortHandle::SetMask(DWORD events) {
  if (events & ~EV_RXCHAR) Die("SetCommMask with an unknown event");
  EndWait({ERROR_SUCCESS, 0});
  mask_ = events;
  raised_ &= events;
  return ERROR_SUCCESS;
}

DWORD PortHandle::WaitEvent(DWORD* events) {
  if (mask_ == 0 || waits_) return ERROR_INVALID_PARAMETER;
  waits_ = true;
  outcome_.reset();
  if (raised_ != 0) EndWait({ERROR_SUCCESS, std::exchange(raised_, 0)});
  const std::function<bool()> isOver = [this] { return outcome_.has_value(); };
  do {
    FetchFromTty();
  } while (port_.state_.scheduler.Wait(isOver, std::nullopt, tty_ ? tty_->Descriptor() : -1) ==
           Waited::kReadable);
  waits_ = false;
  const Outcome outcome = outcome_.value_or(Outcome{ERROR_OPERATION_ABORTED, 0});
  if (events) *events = outcome.events;
  return outcome.error;
}

DWORD PortHandle::Cancel() {
  const bool heeds = port_.hung_ != SerialPort::Hung::kForEver;
  if (heeds) port_.hung_ = SerialPort::Hung::kNot;
  EndWait({ERROR_OPERATION_ABORTED, 0});
  return ERROR_SUCCESS;
}

DWORD PortHandle::TakeErrors(DWORD& errors, COMSTAT* status) {
  errors = std::exchange(port_.commErrors_, 0);
  if (status) {
    *status = {};
    status->cbInQue = static_cast<DWORD>(port_.input_.size());
  }
  return ERROR_SUCCESS;
}

DWORD PortHandle::Purge(DWORD flags) {
  port_.state_.Emit(SerialPurged{port_.number_, flags});
  if (!(flags & PURGE_RXCLEAR)) return ERROR_SUCCESS;
  if (tty_) tty_->DiscardInput();
  port_.input_.clear();
  return ERROR_SUCCESS;
}

DWORD PortHandle::SetSettings(const DCB& dcb) {
  if (dcb.ByteSize < 5 || dcb.ByteSize > 8 || dcb.BaudRate == 0) return ERROR_INVALID_PARAMETER;
  if (tty_ && !tty_->Configure(dcb)) return ERROR_INVALID_PARAMETER;
  port_.dcb_ = dcb;
  return ERROR_SUCCESS;
}

// ---- the port -----------------------------------------------------------------------------------------------

SerialPort::SerialPort(State& state, int number) : state_(state), number_(number) {
  dcb_.DCBlength = sizeof(dcb_);
}

DWORD SerialPort::Open(HANDLE& handle, DWORD access, DWORD share) {
  if (!handle_.expired())
    return ERROR_ACCESS_DENIED;  // also while a handle of the device that vanished is open
  if (!present_) return ERROR_FILE_NOT_FOUND;
  if (access != (GENERIC_READ | GENERIC_WRITE)) Die("a port that is not opened to read and write");
  std::unique_ptr<TtyLine> tty;
  if (!ttyPath_.empty()) {
    tty = TtyLine::Open(ttyPath_);
    if (!tty) return ERROR_FILE_NOT_FOUND;
  }
  auto opened = std::make_shared<PortHandle>(*this, std::move(tty));
  handle_ = opened;
  timeouts_ = {};
  commErrors_ = 0;
  handle = state_.handles.Add(std::move(opened));
  state_.Emit(SerialOpened{number_, access, share});
  return ERROR_SUCCESS;
}

void SerialPort::OnWrite(std::function<void(std::span<const uint8_t>)> device) {
  const MachineLock lock(state_.mutex);
  device_ = std::move(device);
}

void SerialPort::Transmit(std::span<const uint8_t> bytes) {
  std::vector<uint8_t> copy(bytes.begin(), bytes.end());
  if (device_) state_.scheduler.At(state_.scheduler.Now(), [device = device_, copy] { device(copy); });
  state_.Emit(SerialWrite{number_, std::move(copy)});
}

void SerialPort::Deliver(std::span<const uint8_t> bytes) {
  const MachineLock lock(state_.mutex);
  Receive(bytes);
}

// What arrives while nobody has the port open is lost.
void SerialPort::Receive(std::span<const uint8_t> bytes) {
  const std::shared_ptr<PortHandle> handle = handle_.lock();
  if (bytes.empty() || !handle || !handle->IsAlive()) return;
  input_.insert(input_.end(), bytes.begin(), bytes.end());
  handle->Raise(EV_RXCHAR);
}

void SerialPort::Vanish() {
  const MachineLock lock(state_.mutex);
  present_ = false;
  input_.clear();
  if (const std::shared_ptr<PortHandle> handle = handle_.lock()) handle->DeviceGone();
}

void SerialPort::Return() {
  const MachineLock lock(state_.mutex);
  present_ = true;
}

bool SerialPort::IsOpen() const {
  const MachineLock lock(state_.mutex);
  const std::shared_ptr<PortHandle> handle = handle_.lock();
  return handle && handle->IsAlive();
}

void SerialPort::FailNextRead(DWORD error, DWORD commErrors, bool atOnce) {
  const MachineLock lock(state_.mutex);
  readFailure_ = {error, commErrors, atOnce};
}

void SerialPort::Hang(Hung hung) {
  const MachineLock lock(state_.mutex);
  hung_ = hung;
  const std::shared_ptr<PortHandle> handle = handle_.lock();
  if (hung == Hung::kNot && handle) handle->WakeWithoutEvent();
}

DCB SerialPort::Settings() const {
  const MachineLock lock(state_.mutex);
  return dcb_;
}

COMMTIMEOUTS SerialPort::Timeouts() const {
  const MachineLock lock(state_.mutex);
  return timeouts_;
}

void SerialPort::SetDriverDefaults(const DCB& dcb) {
  const MachineLock lock(state_.mutex);
  dcb_ = dcb;
}

SerialPort& SerialPorts::Add(int number) {
  const MachineLock lock(state_.mutex);
  return PortOf(number);
}

void SerialPorts::AttachTty(int number, const std::filesystem::path& tty) {
  const MachineLock lock(state_.mutex);
  if (state_.scheduler.IsVirtual()) Die("a tty of the host needs wall time");
  PortOf(number).UseTty(tty);
}

SerialPort& SerialPorts::PortOf(int number) {
  return ports_.try_emplace(number, state_, number).first->second;
}

SerialPort* SerialPorts::Find(int number) {
  const auto found = ports_.find(number);
  return found == ports_.end() ? nullptr : &found->second;
}

}  // namespace pal

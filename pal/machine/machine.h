// The machine behind the platform adaptation layer: what tests, the simulator and the console see of the
// computer on which the tool believes it runs. Nothing in the tool itself includes this file.
//
// One Machine at a time. Creating one resets the layer; destroying it ends a program that still runs: every
// wait fails, message loops see WM_QUIT, message boxes return IDCANCEL, and when the entry has returned its
// other threads and its handles go, as with a process. A program that does not return within ten seconds ends
// the test with a message.
//
// Threads. The program runs on its own thread; the caller's thread is the "outside". With virtual time
// exactly one of them runs at any moment and they change only where the program waits, so that runs are
// deterministic: the outside calls Advance(), the program runs until it waits beyond that time, Advance()
// returns. With wall time all of them run freely.
//
// Events. What hardware and people do at a given time is an event: a function that runs when the clock
// reaches it. In virtual time the outside may also touch the machine directly between two calls of Advance().
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <windows.h>

#include "pal/machine/effects.h"

namespace pal {

enum class Clock { kVirtual, kWall };

class SerialPort;
struct State;  // the inside, see state.h

// A window of another program. The handler runs when a message reaches it and gives the message's result;
// `payload` holds the copied bytes of WM_COPYDATA. Every message is also an effect (ForeignMessageSent). What
// is sent is handled on the sender's thread, what is posted or broadcast as an event. A handler may call the
// machine, but not wait: At, Post and Emit, not Advance or Send.
struct ForeignMessage {
  UINT message = 0;
  WPARAM wParam = 0;
  LPARAM lParam = 0;
  uint64_t copyDataTag = 0;
  std::vector<uint8_t> payload;
};
using ForeignWindowHandler = std::function<LRESULT(const ForeignMessage&)>;

// A message box that waits for the person.
struct OpenMessageBox {
  HWND owner = nullptr;
  std::u16string text;
  std::u16string caption;
  UINT type = 0;
};

// An icon in the notification area, as the person sees it.
struct TrayIcon {
  HWND window = nullptr;
  UINT id = 0;
  UINT callbackMessage = 0;
  int picture = 0;  // number of its icon resource, 0 for none
  std::u16string tooltip;
};

// Of the default playback device.
struct PlaybackVolume {
  float level = 0.5F;  // 0 to 1
  bool isMuted = false;
};

class Machine {
 public:
  explicit Machine(Clock clock = Clock::kVirtual);
  ~Machine();
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  // ---- time ---------------------------------------------------------------------------------------------
  [[nodiscard]] Time Now() const;  // since the machine was created
  void At(Time when, std::function<void()> event);
  void After(Time delay, std::function<void()> event) { At(Now() + delay, std::move(event)); }
  // Lets everything happen that is due within `span`, then returns. With wall time: sleeps that long.
  void Advance(Time span);
  // Advances until the condition holds (checked after every event and whenever the program waits) or the
  // limit is over; returns whether it holds.
  bool AdvanceUntil(const std::function<bool()>& condition, Time limit);
  // Runs `action` where events run, and returns when it has run.
  void Do(const std::function<void()>& action);
  // Local time at Now() == 0, as GetLocalTime reports it. Default: 2024-11-19 14:05:00.000.
  void SetLocalTime(const SYSTEMTIME& start);

  // ---- the program --------------------------------------------------------------------------------------
  using EntryPoint = int(WINAPI*)(HINSTANCE, HINSTANCE, PWSTR, int);
  // Starts the program on its own thread; it begins to run with the next Advance(). `commandLine` is what
  // GetCommandLineW returns, program name included. One program at a time; after it ended another may start.
  void StartProgram(EntryPoint entry, std::u16string commandLine);
  void StartProgram(std::function<int()> entry);      // for contract tests
  [[nodiscard]] std::optional<int> ExitCode() const;  // empty while it runs
  // The program's top-level window of that class, null when there is none.
  [[nodiscard]] HWND ProgramWindow(std::u16string_view className) const;
  // Sends or posts a message to a window of the program as another process would; a send is answered when the
  // program next looks for messages, and the clock runs until then. Returns empty when it was not answered in
  // `limit`; a limit of 0 does not wait, and an event may send so. The payload, and the structure to which
  // the lParam of WM_DEVICECHANGE points, are copied. Post returns false when there is no such window or its
  // queue is full.
  std::optional<LRESULT> Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                              Time limit = std::chrono::seconds(30));
  std::optional<LRESULT> SendCopyData(HWND window, HWND sender, uint64_t tag,
                                      std::span<const uint8_t> payload,
                                      Time limit = std::chrono::seconds(30));
  bool Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
  // What the program holds now, for leak checks: handles by kind ("event", "mutex", "file", "serial", "key",
  // "thread handle"), "window", "timer", "menu", "icon" (loaded pictures),
  // "brush", "com object", and "thread": those that run beside the main thread.
  [[nodiscard]] int CountOpen(std::string_view kind) const;
  [[nodiscard]] size_t QueuedMessages() const;  // posted messages that wait for the program's main thread

  // ---- failures -----------------------------------------------------------------------------------------
  // The next `times` calls of the function of that name ("RegisterClassExW", "CreateThread", ...) fail with
  // that last error. `skip` calls succeed first.
  void Fail(std::string function, int times, DWORD lastError, int skip = 0);

  // ---- effects ------------------------------------------------------------------------------------------
  // Everything that the program did to the machine, in order. With wall time look at it only where the
  // program does not run: in the condition of AdvanceUntil, in a listener, or when the program has ended.
  [[nodiscard]] const std::vector<Effect>& Effects() const;
  // The listener is called at each effect, on the thread that has it, and must not wait.
  void OnEffect(std::function<void(const Effect&)> listener);
  // For devices behind loadable modules (the joystick, the board): adds their own effect to the stream.
  void Emit(EffectDetail detail);

  // ---- serial ports -------------------------------------------------------------------------------------
  SerialPort& AddSerialPort(int number);  // in memory, present from now on; the machine owns it
  void AttachTty(int number,
                 const std::filesystem::path& tty);  // a real tty or pty of the host, wall time only

  // ---- registry -----------------------------------------------------------------------------------------
  void SetRegistryValue(HKEY root, std::u16string_view path, std::u16string_view name, DWORD type,
                        std::span<const uint8_t> data);
  void SetRegistryDword(HKEY root, std::u16string_view path, std::u16string_view name, uint32_t value);
  [[nodiscard]] std::optional<uint32_t> RegistryDword(HKEY root, std::u16string_view path,
                                                      std::u16string_view name) const;
  [[nodiscard]] std::vector<std::u16string> RegistryValueNames(HKEY root, std::u16string_view path) const;

  // ---- disk ---------------------------------------------------------------------------------------------
  // Windows paths live below a temporary directory of the host: "C:\\a\\b" is <root>/C/a/b, names compared
  // without regard to case. The directories of the program and of the common documents exist from the start.
  [[nodiscard]] std::filesystem::path HostPath(std::u16string_view windowsPath) const;
  void WriteFile(std::u16string_view windowsPath, std::string_view content);
  [[nodiscard]] std::optional<std::string> ReadFile(std::u16string_view windowsPath) const;
  void RemoveFile(std::u16string_view windowsPath);
  void SetReadOnly(std::u16string_view windowsPath, bool readOnly);
  // Makes opening for writing fail with ERROR_SHARING_VIOLATION, as another program's handle would.
  void HoldForWriting(std::u16string_view windowsPath, bool held);
  static constexpr std::u16string_view kProgramDirectory = u"C:\\Program Files\\Veltra\\";
  static constexpr std::u16string_view kProgramFile = u"C:\\Program Files\\Veltra\\veltratool.exe";
  static constexpr std::u16string_view kCommonDocuments = u"C:\\Users\\Public\\Documents";
  // What the resource compiler made for the program: string tables, version, menus, dialogs, icons, sounds.
  void LoadResources(const std::filesystem::path& file);

  // ---- loadable modules ---------------------------------------------------------------------------------
  struct Export {
    std::string name;
    FARPROC address = nullptr;
  };
  // A DLL in the program's directory. LoadLibrary of its full path finds it, of a bare name does not.
  void AddModule(std::u16string_view fileName, std::vector<Export> exports);
  void RemoveModule(std::u16string_view fileName);
  // How long programs run that the shell starts; they end at once by default.
  void SetExecutedProgramTime(Time time);

  // ---- desktop ------------------------------------------------------------------------------------------
  HWND AddForeignWindow(std::u16string_view className, ForeignWindowHandler handler = {});
  void RemoveForeignWindow(HWND window);
  // The program of that window looks at no messages from now on, or does so again: who sends it something
  // waits.
  void SetHung(HWND window, bool hung);
  void AddForeignMutex(std::u16string_view name);  // another process holds it
  // The person. A message box stays open until it is answered, unless an automatic answer is set.
  [[nodiscard]] std::vector<OpenMessageBox> OpenMessageBoxes() const;  // innermost last
  void AnswerMessageBox(int button);                                   // the innermost
  void AnswerMessageBoxesWith(std::optional<int> button);
  // Windows version as the version test reports it; default 6.1 with service pack 1.
  void SetWindowsVersion(WORD major, WORD minor, WORD servicePack);
  // True: the program is a 32-bit one on a 64-bit Windows.
  void SetWow64(bool wow64);

  // ---- notification area --------------------------------------------------------------------------------
  // Without a shell there is no taskbar: Shell_NotifyIconW fails. A shell that comes up knows no icon and
  // tells every top-level window "TaskbarCreated". The machine begins with a shell.
  void StopShell();
  void StartShell();
  void RestartShell();
  [[nodiscard]] std::optional<TrayIcon> FindTrayIcon(UINT id) const;  // the newest of that number
  // The person. False when no such icon stands. The pointer stays where the icon is.
  bool ClickTrayIcon(UINT id);
  bool DoubleClickTrayIcon(UINT id);
  bool RightClickTrayIcon(UINT id);

  // ---- menus --------------------------------------------------------------------------------------------
  // A menu stays open until the person chooses, or closes it. What hangs on its items counts as open, too.
  [[nodiscard]] std::optional<std::vector<MenuItem>> OpenMenu() const;
  // False when no menu is open or has such an item to choose. A label is the text without its "&".
  bool ChooseMenuItem(std::u16string_view label);
  bool DismissMenu();

  // ---- playback -----------------------------------------------------------------------------------------
  [[nodiscard]] PlaybackVolume Playback() const;

 private:
  std::unique_ptr<State> state_;
};

// The machine that the API works on; aborts when there is none.
Machine& CurrentMachine();

// One serial port of the machine, seen from the line.
class SerialPort {
 public:
  virtual ~SerialPort() = default;
  // The device at the other end: called (as an event, at the time of the write) with every block written.
  virtual void OnWrite(std::function<void(std::span<const uint8_t>)> device) = 0;
  // Bytes arrive from the device. In virtual time the program's reader has taken them, or waits for something
  // else than the port, before the clock moves on.
  virtual void Deliver(std::span<const uint8_t> bytes) = 0;
  // The device vanishes (unplugged, powered down by sleep): open handles fail, opening fails. And comes back.
  virtual void Vanish() = 0;
  virtual void Return() = 0;
  [[nodiscard]] virtual bool IsOpen() const = 0;
  // The next read fails with this error, in the call itself or in its completion, and raises these flags of
  // ClearCommError.
  virtual void FailNextRead(DWORD error, DWORD commErrors, bool atOnce = false) = 0;
  // The settings that the program made last, for tests.
  [[nodiscard]] virtual DCB Settings() const = 0;
  [[nodiscard]] virtual COMMTIMEOUTS Timeouts() const = 0;
  virtual void SetDriverDefaults(
      const DCB& dcb) = 0;  // what GetCommState reports before the program set anything
};

}  // namespace pal

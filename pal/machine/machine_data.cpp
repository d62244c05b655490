// The machine's outside: registry, disk, resources, modules and the version of Windows.
#include <fstream>
#include <iterator>

#include "pal/machine/data_state.h"
#include "pal/machine/machine.h"
#include "pal/machine/state.h"
#include "pal/text/unicode.h"

namespace pal {
namespace {

std::shared_ptr<RegistryKey> RootOf(const State& state, HKEY root) {
  auto key = state.data->registry.Root(root);
  if (!key) Die("no root of the registry");
  return key;
}

std::optional<std::string> ReadHostFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

std::u16string ModulePath(std::u16string_view fileName) {
  return std::u16string(Machine::kProgramDirectory) + std::u16string(fileName);
}

}  // namespace

std::shared_ptr<DataState> MakeDataState() {
  return std::make_shared<DataState>();
}

// Keys, files, searches and modules are in the handle table, and the language belongs to the thread.
void ReleaseProgramData(State& /*state*/) {}

// ---- registry -----------------------------------------------------------------------------------------------

void Machine::SetRegistryValue(HKEY root, std::u16string_view path, std::u16string_view name, DWORD type,
                               std::span<const uint8_t> data) {
  const MachineLock lock(state_->mutex);
  RegistryStore::Create(RootOf(*state_, root), path)->SetValue(name, type, {data.begin(), data.end()});
}

void Machine::SetRegistryDword(HKEY root, std::u16string_view path, std::u16string_view name,
                               uint32_t value) {
  uint8_t bytes[sizeof(value)];
  for (size_t i = 0; i < sizeof(value); ++i) bytes[i] = static_cast<uint8_t>(value >> (8 * i));
  SetRegistryValue(root, path, name, REG_DWORD, bytes);
}

std::optional<uint32_t> Machine::RegistryDword(HKEY root, std::u16string_view path,
                                               std::u16string_view name) const {
  const MachineLock lock(state_->mutex);
  const auto key = RegistryStore::Find(RootOf(*state_, root), path);
  const RegistryValue* value = key ? key->FindValue(name) : nullptr;
  if (!value || value->type != REG_DWORD || value->data.size() != sizeof(uint32_t)) return std::nullopt;
  uint32_t number = 0;
  for (size_t i = sizeof(number); i-- > 0;) number = number << 8 | value->data[i];
  return number;
}

std::vector<std::u16string> Machine::RegistryValueNames(HKEY root, std::u16string_view path) const {
  const MachineLock lock(state_->mutex);
  std::vector<std::u16string> names;
  if (const auto key = RegistryStore::Find(RootOf(*state_, root), path))
    for (const RegistryValue& value : key->values) names.push_back(value.name);
  return names;
}

// ---- disk ---------------------------------------------------------------------------------------------------

std::filesystem::path Machine::HostPath(std::u16string_view windowsPath) const {
  const MachineLock lock(state_->mutex);
  return state_->data->disk.HostPath(windowsPath);
}

void Machine::WriteFile(std::u16string_view windowsPath, std::string_view content) {
  const MachineLock lock(state_->mutex);
  state_->data->disk.Write(windowsPath, content);
}

std::optional<std::string> Machine::ReadFile(std::u16string_view windowsPath) const {
  const MachineLock lock(state_->mutex);
  return state_->data->disk.Read(windowsPath);
}

void Machine::RemoveFile(std::u16string_view windowsPath) {
  const MachineLock lock(state_->mutex);
  state_->data->disk.Remove(windowsPath);
}

void Machine::SetReadOnly(std::u16string_view windowsPath, bool readOnly) {
  const MachineLock lock(state_->mutex);
  const DiskPath path = state_->data->disk.Locate(windowsPath);
  if (!path.IsFile()) Die("SetReadOnly of a file that is not there: " + ToUtf8(windowsPath));
  SetHostReadOnly(path.host, readOnly);
}

void Machine::HoldForWriting(std::u16string_view windowsPath, bool held) {
  const MachineLock lock(state_->mutex);
  state_->data->disk.Hold(windowsPath, held);
}

void Machine::LoadResources(const std::filesystem::path& file) {
  const std::optional<std::string> content = ReadHostFile(file);
  if (!content) Die("cannot read the resource file " + file.string());
  const MachineLock lock(state_->mutex);
  state_->data->resources.Load({reinterpret_cast<const uint8_t*>(content->data()), content->size()});
}

// ---- modules and Windows ------------------------------------------------------------------------------------

void Machine::AddModule(std::u16string_view fileName, std::vector<Export> exports) {
  const MachineLock lock(state_->mutex);
  state_->data->modules.Add({ModulePath(fileName), std::move(exports)});
}

void Machine::RemoveModule(std::u16string_view fileName) {
  const MachineLock lock(state_->mutex);
  state_->data->modules.Remove(ModulePath(fileName));
}

void Machine::SetWindowsVersion(WORD major, WORD minor, WORD servicePack) {
  const MachineLock lock(state_->mutex);
  state_->data->windowsVersion = {major, minor, servicePack};
}

void Machine::SetWow64(bool wow64) {
  const MachineLock lock(state_->mutex);
  state_->data->isWow64 = wow64;
}

}  // namespace pal

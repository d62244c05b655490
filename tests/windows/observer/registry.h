// The registry as the observer's commands name it: root "user" or "machine", then a path.
#pragma once

#include <string>

namespace observer {

// "Name=kind:value" for every value of the key, separated by tabs, in alphabetical order; the kind is
// "number", "text" or "type N", the value of the last in hexadecimal. Empty when the key is missing.
std::string ListValues(const std::string& root, const std::string& path);
void SetNumber(const std::string& root, const std::string& path, const std::string& name,
               unsigned long value);
void SetText(const std::string& root, const std::string& path, const std::string& name,
             const std::string& text);
// Deletes the key with all below it; a missing key is no error.
void DeleteKey(const std::string& root, const std::string& path);

}  // namespace observer

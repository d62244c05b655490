// A Windows of its own for this process and what it starts.
#pragma once

#include <filesystem>

namespace simulator {

// Starts the process again, with the same arguments, inside simulator/wine/session.sh, unless it runs there
// already. Then installs the tool and its devices, from the folder of the built programs, into one folder of
// that Windows, as on a tablet. Throws when it cannot.
void EnterWindows(char** arguments, const std::filesystem::path& programs);

}  // namespace simulator

// Finds the program's data folder, <prefix>/share/quorvex (the machine settings, the default
// template package and the extension packages live there), and the user's home folder.
#pragma once

#include <filesystem>

namespace qv {

// The data folder, found in this order: $QUORVEX_DATA_DIR when set; a share/quorvex beside
// or above the running executable (an installed bin/ or the build tree); the folder of the
// install prefix compiled into the program. The result is absolute; it may not exist when the
// program was neither built nor installed properly.
std::filesystem::path DataFolder();

// The user's home folder: $HOME, else the account's home from the password database, else the
// working folder. Never empty.
std::filesystem::path HomeFolder();

}  // namespace qv

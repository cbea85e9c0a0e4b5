// Finding <prefix>/share/quorvex from the environment, the executable's place, or the prefix
// the program was built for.
#include "support/data_folder.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <system_error>

namespace qv {

namespace {

namespace fs = std::filesystem;

// A folder counts as the data folder when it holds the machine tree.
bool LooksLikeDataFolder(const fs::path& folder) {
  std::error_code ec;
  return fs::is_regular_file(folder / "machine-settings", ec);
}

}  // namespace

fs::path DataFolder() {
  if (const char* env = std::getenv("QUORVEX_DATA_DIR"); env && *env) {
    std::error_code ec;
    const fs::path absolute = fs::absolute(env, ec);
    return ec ? fs::path(env) : absolute.lexically_normal();
  }
  std::error_code ec;
  const fs::path exe = fs::read_symlink("/proc/self/exe", ec);
  if (!ec) {
    // bin/../share/quorvex when installed; in the build tree the executables sit a few levels
    // below the folder that holds share/quorvex.
    fs::path folder = exe.parent_path();
    for (int level = 0; level < 5 && !folder.empty(); ++level) {
      const fs::path candidate = folder / "share" / "quorvex";
      if (LooksLikeDataFolder(candidate)) return candidate.lexically_normal();
      if (folder == folder.root_path()) break;
      folder = folder.parent_path();
    }
  }
#ifdef QV_BUILD_DATA_DIR
  if (LooksLikeDataFolder(QV_BUILD_DATA_DIR)) return fs::path(QV_BUILD_DATA_DIR);
#endif
#ifdef QV_INSTALL_DATA_DIR
  return fs::path(QV_INSTALL_DATA_DIR);
#else
  return fs::path("/usr/local/share/quorvex");
#endif
}

fs::path HomeFolder() {
  if (const char* home = std::getenv("HOME"); home && *home) return home;
  if (const passwd* pw = getpwuid(getuid()); pw && pw->pw_dir && *pw->pw_dir) return pw->pw_dir;
  // No home at all (a stripped-down container): the working folder is the best guess left.
  std::error_code ec;
  const fs::path cwd = fs::current_path(ec);
  return ec ? fs::path("/tmp") : cwd;
}

}  // namespace qv

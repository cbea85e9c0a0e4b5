// Finding the data folder (the environment first, then the build tree this test runs in) and
// the home folder.
#include "support/data_folder.h"

#include <gtest/gtest.h>

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace qv {
namespace {

TEST(DataFolderTest, EnvironmentThenTheBuildTree) {
  const char* saved = std::getenv("QUORVEX_DATA_DIR");
  const std::string saved_value = saved ? saved : "";

  ::setenv("QUORVEX_DATA_DIR", "/opt/somewhere/../quorvex-data", 1);
  EXPECT_EQ(DataFolder(), std::filesystem::path("/opt/quorvex-data"));

  ::unsetenv("QUORVEX_DATA_DIR");
  // The test runs from the build tree, whose share/quorvex the build filled from share/.
  const std::filesystem::path expected = std::filesystem::path(QV_BINARY_DIR) / "share" / "quorvex";
  EXPECT_EQ(std::filesystem::weakly_canonical(DataFolder()),
            std::filesystem::weakly_canonical(expected));
  EXPECT_TRUE(std::filesystem::exists(DataFolder() / "machine-settings"));

  ::setenv("QUORVEX_DATA_DIR", "", 1);  // empty counts as unset
  EXPECT_EQ(std::filesystem::weakly_canonical(DataFolder()),
            std::filesystem::weakly_canonical(expected));

  if (saved) {
    ::setenv("QUORVEX_DATA_DIR", saved_value.c_str(), 1);
  } else {
    ::unsetenv("QUORVEX_DATA_DIR");
  }
}

TEST(HomeFolderTest, HomeThenTheAccount) {
  const char* saved = std::getenv("HOME");
  const std::string saved_value = saved ? saved : "";
  ::setenv("HOME", "/some/home", 1);
  EXPECT_EQ(HomeFolder(), std::filesystem::path("/some/home"));
  ::unsetenv("HOME");
  const passwd* pw = getpwuid(getuid());
  ASSERT_FALSE(HomeFolder().empty());
  if (pw && pw->pw_dir && *pw->pw_dir) {
    EXPECT_EQ(HomeFolder(), std::filesystem::path(pw->pw_dir));
  }
  if (saved) ::setenv("HOME", saved_value.c_str(), 1);
}

}  // namespace
}  // namespace qv

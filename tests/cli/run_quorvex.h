// Runs the built quorvex command the way a user does, in a private HOME, and hands back its
// exit status, stdout and stderr.
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

namespace qv::cli_testing {

struct Run {
  int status = -1;
  std::string out;
  std::string err;
};

inline std::string Slurp(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  std::stringstream s;
  s << in.rdbuf();
  return s.str();
}

// A fresh folder below the test scratch folder, with a home of its own.
inline std::filesystem::path FreshDir(const std::string& name) {
  const char* root = std::getenv("QV_TEST_SCRATCH");
  std::filesystem::path dir =
      (root && *root ? std::filesystem::path(root) : std::filesystem::temp_directory_path()) /
      ("cli-" + name);
  std::filesystem::remove_all(dir);
  std::filesystem::create_directories(dir / "home");
  return dir;
}

inline std::string Quote(const std::string& arg) {
  std::string q = "'";
  for (char c : arg)
    q += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return q + "'";
}

// `args` are quoted one by one; `env` is put in front as is ("ODBCINI=... ").
inline Run Quorvex(const std::filesystem::path& dir, std::initializer_list<std::string> args,
                   const std::string& env = "") {
  std::string cmd = "cd " + Quote(dir.string()) + " && HOME=" + Quote((dir / "home").string()) +
                    " XDG_CONFIG_HOME= " + env + " " + QV_QUORVEX_BINARY;
  for (const std::string& a : args)
    cmd += " " + Quote(a);
  cmd += " >" + Quote((dir / "out.txt").string()) + " 2>" + Quote((dir / "err.txt").string()) +
         " </dev/null";
  Run run;
  const int raw = std::system(cmd.c_str());
  run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  run.out = Slurp(dir / "out.txt");
  run.err = Slurp(dir / "err.txt");
  return run;
}

inline bool Has(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

}  // namespace qv::cli_testing

// A timed command-line run of Load on the 500 x 20 project, reporting the wall and CPU time
// of the load and the process's peak resident memory. The project is built and saved by a
// child process, so the peak of this process is what loading costs, over a fresh root.
// Prints one line per figure; arguments (such as the benchmark runner's) are ignored.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <ctime>

#include "large_project.h"
#include "persistence/project_file.h"
#include "platform/fs.h"

namespace {

double PeakRssMiB() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  return static_cast<double>(usage.ru_maxrss) / 1024.0;
}

double CpuMs() {
  timespec ts{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &ts);
  return static_cast<double>(ts.tv_sec) * 1e3 + static_cast<double>(ts.tv_nsec) / 1e6;
}

}  // namespace

int main() {
  const qv::String path = qv::bench::BenchFile("memory.qvp");
  const pid_t child = fork();
  if (child < 0) return 2;
  if (child == 0) {
    qv::SaveProjectFile(*qv::bench::BuildLargeProject(), path);
    _exit(0);
  }
  int status = 0;
  waitpid(child, &status, 0);
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
    std::fprintf(stderr, "building the project failed\n");
    return 2;
  }

  qv::Ref<qv::Tyx> tyx = qv::CreateTyx();
  const double before = PeakRssMiB();
  const double cpu0 = CpuMs();
  const auto wall0 = std::chrono::steady_clock::now();
  qv::LoadProjectFile(*tyx, path);
  const double wall =
      std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - wall0).count();
  const double cpu = CpuMs() - cpu0;
  const double peak = PeakRssMiB();
  if (!tyx->ProjErr().empty()) {
    std::fprintf(stderr, "the load failed: %s\n", tyx->ProjErr().ToUtf8().c_str());
    return 1;
  }
  std::printf("project file        %.1f MB, %d tables x %d fields\n",
              static_cast<double>(qv::fs::FileSize(path)) / 1e6, qv::bench::kTables,
              qv::bench::kFields);
  std::printf("load wall time      %.1f ms\n", wall);
  std::printf("load CPU time       %.1f ms\n", cpu);
  std::printf("peak RSS            %.1f MiB (%.1f MiB before the load)\n", peak, before);
  std::printf("limits              250 ms, 200 MB: %s\n",
              cpu < 250.0 && peak * 1.048576 < 200.0 ? "within" : "EXCEEDED");
  return 0;
}

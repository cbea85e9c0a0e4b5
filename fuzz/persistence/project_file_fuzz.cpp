// Any bytes as a project file: Load into a fresh root must end with ProjErr set or empty and
// never raise or crash; a project that loaded is saved again, where the only way out is a
// qv::Error (a file whose sequence numbers leave a gap cannot be written in order).
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "automation/error.h"
#include "model/tyx.h"
#include "persistence/project_file.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace {

// The saved defaults would read the settings store on every input; the fuzzer wants the
// reader, so LoadDefault leaves the registered settings as they are.
class FuzzServices : public qv::TyxServices {
 public:
  void LoadDefault(qv::Tyx&) override {}
};

const std::filesystem::path& Folder() {
  static const std::filesystem::path folder = [] {
    const auto path =
        std::filesystem::temp_directory_path() / ("qv-fuzz-project-" + std::to_string(getpid()));
    std::filesystem::create_directories(path);
    return path;
  }();
  return folder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  qv::Vars().Status = qv::MakeRef<qv::TyxStatus>(qv::StatusMode::kQuiet);
  const std::filesystem::path in = Folder() / "in.qvp";
  std::ofstream(in, std::ios::binary | std::ios::trunc)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));

  qv::Ref<qv::Tyx> tyx = qv::MakeRef<qv::Tyx>();
  tyx->SetServices(std::make_shared<FuzzServices>());
  qv::LoadProjectFile(*tyx, qv::String::FromUtf8(in.string()));
  if (!tyx->ProjErr().empty()) return 0;
  try {
    qv::SaveProjectFile(*tyx, qv::String::FromUtf8((Folder() / "out.qvp").string()));
  } catch (const qv::Error&) {
  }
  return 0;
}

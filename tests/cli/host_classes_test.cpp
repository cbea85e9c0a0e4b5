// The ProgID table: every row makes a working object of the class its name promises, names are
// unique without regard to case, and an engine that registered the table hands them out.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <set>

#include "automation/convert.h"
#include "cli/host_classes.h"
#include "vbscript/engine.h"

namespace qv::cli {
namespace {

TEST(HostClasses, EveryProgIdMakesItsClassThroughCreateObject) {
  // A new root seeds the user's settings tree: keep it in a home of the test's own.
  const char* scratch = std::getenv("QV_TEST_SCRATCH");
  const auto home = std::filesystem::path(scratch && *scratch ? scratch : "/tmp") / "host-classes";
  std::filesystem::create_directories(home);
  ::setenv("HOME", home.c_str(), 1);
  ::unsetenv("XDG_CONFIG_HOME");
  ::unsetenv("XDG_DOCUMENTS_DIR");
  vbs::Engine engine;
  RegisterHostClasses(engine.Registry());
  std::set<std::string> seen;
  for (const HostClass& c : HostClasses()) {
    const String prog_id(c.prog_id);
    const std::string id = prog_id.ToUtf8();
    ASSERT_EQ(id.rfind("TyxClass.", 0), 0u) << id;
    std::string lower = id;
    for (char& ch : lower)
      ch = static_cast<char>(std::tolower(static_cast<unsigned char>(ch)));
    EXPECT_TRUE(seen.insert(lower).second) << "twice: " << id;

    // Made by the script, in any case of the ProgID, it is the class the name says.
    String lowered = String::FromUtf8(lower);
    const Variant made = engine.Eval(u"TypeName(CreateObject(\"" + lowered + u"\"))");
    EXPECT_EQ(ToString(made).ToUtf8(), id.substr(9));
  }
  EXPECT_GE(seen.size(), 9u);
  EXPECT_FALSE(engine.Registry().Has(u"TyxClass.NoSuchClass"));
}

}  // namespace
}  // namespace qv::cli

// Tyx.Save and Tyx.Load as a host or a script reaches them: by name through the root's object
// interface, on roots made by CreateTyx with the shipped machine defaults.
#include <gtest/gtest.h>

#include <stdlib.h>

#include <string>
#include <vector>

#include "project_fixture.h"
#include "root/create_tyx.h"

namespace qv::testing {
namespace {

class RootEntryTest : public ProjectFileTest {
 protected:
  void SetUp() override {
    ::setenv("QUORVEX_DATA_DIR", QV_SOURCE_DIR "/share", 1);
    ProjectFileTest::SetUp();
  }

  static Variant Call(Tyx& tyx, StringView member, std::vector<Variant> args, uint16_t flags) {
    return tyx.Invoke(tyx.GetIdOfName(member), flags, Args(args));
  }
};

TEST_F(RootEntryTest, SaveAndLoadByNameRoundTrip) {
  const Ref<Tyx> tyx = CreateTyx();
  BuildSmallProject(*tyx);
  tyx->SetAutoSync(false);  // its database isn't there to be compared with
  const String first = PathOf("by-name.qvp");
  Call(*tyx, u"save", {Variant(first)}, kInvokeMethod);

  const Ref<Tyx> reopened = CreateTyx();
  Call(*reopened, u"Load", {Variant(first)}, kInvokeMethod);
  EXPECT_EQ(ToString(Call(*reopened, u"ProjErr", {}, kInvokeGet)).ToUtf8(), "");
  EXPECT_EQ(ToString(Call(*reopened, u"ProjName", {}, kInvokeGet)).ToUtf8(),
            "Shop & <Co> \"Online\"");
  EXPECT_EQ(ToInteger(Call(*reopened, u"DBCnt", {}, kInvokeGet)), 1);

  const String second = PathOf("by-name-2.qvp");
  Call(*reopened, u"Save", {Variant(second)}, kInvokeMethod);
  EXPECT_EQ(FirstDifference(Bytes(second), Bytes(first)), "");

  // A failed load reports through ProjErr; nothing is raised to the caller.
  const Ref<Tyx> third = CreateTyx();
  EXPECT_NO_THROW(Call(*third, u"Load", {Variant(PathOf("missing.qvp"))}, kInvokeMethod));
  EXPECT_EQ(ToString(Call(*third, u"ProjErr", {}, kInvokeGet)).ToUtf8(),
            "Quorvex: Load Project File failed! Please check!");
  // Save raises: a folder that does not exist.
  EXPECT_THROW(Call(*third, u"Save", {Variant(PathOf("no/such/dir/p.qvp"))}, kInvokeMethod), Error);
}

}  // namespace
}  // namespace qv::testing

// Variant storage: types, sharing of payloads, arrays with copy on write.
#include "automation/variant.h"

#include <gtest/gtest.h>

#include "automation/error.h"
#include "automation/safe_array.h"

namespace qv {
namespace {

TEST(Variant, KeepsEmptyApartFromEmptyTextAndReportsVarTypes) {
  const Variant empty;
  const Variant text(String{});
  EXPECT_TRUE(empty.is_empty());
  EXPECT_FALSE(text.is_empty());
  EXPECT_EQ(text.VarTypeCode(), 8);
  EXPECT_EQ(Variant::Null().VarTypeCode(), 1);
  EXPECT_EQ(Variant(int16_t{1}).VarTypeCode(), 2);
  EXPECT_EQ(Variant(1).VarTypeCode(), 3);
  EXPECT_EQ(Variant(1.5f).VarTypeCode(), 4);
  EXPECT_EQ(Variant(1.5).VarTypeCode(), 5);
  EXPECT_EQ(Variant::Currency(15000).VarTypeCode(), 6);
  EXPECT_EQ(Variant::Date(1).VarTypeCode(), 7);
  EXPECT_EQ(Variant::Nothing().VarTypeCode(), 9);
  EXPECT_TRUE(Variant::Nothing().is_nothing());
  EXPECT_EQ(Variant::ErrorValue(5).VarTypeCode(), 10);
  EXPECT_EQ(Variant(true).VarTypeCode(), 11);
  EXPECT_EQ(Variant(uint8_t{7}).VarTypeCode(), 17);
  EXPECT_TRUE(Variant::Missing().is_missing());
}

TEST(Variant, CopyingALargeStringSharesItsBuffer) {
  const Variant big(String(1 << 20, u'x'));
  const Variant copy = big;  // NOLINT(performance-unnecessary-copy-initialization)
  EXPECT_EQ(copy.as_string().BufferId(), big.as_string().BufferId());
  Variant moved = std::move(const_cast<Variant&>(copy));
  EXPECT_EQ(moved.as_string().size(), size_t{1} << 20);
}

TEST(Variant, ArraysCopyOnWriteAndCheckBounds) {
  const ArrayBound bounds[] = {{1, 3}, {0, 2}};  // (1 To 3, 0 To 1)
  Variant a(MakeRef<SafeArray>(VarType::Variant, bounds));
  EXPECT_EQ(a.VarTypeCode(), 8204);
  const int32_t at[] = {3, 1};
  a.mutable_array()->At(at) = Variant(42);

  Variant b = a;  // shares until written
  EXPECT_EQ(a.as_array(), b.as_array());
  b.mutable_array()->At(at) = Variant(7);
  EXPECT_NE(a.as_array(), b.as_array());
  EXPECT_EQ(a.as_array()->At(at).as_long(), 42);
  EXPECT_EQ(b.as_array()->At(at).as_long(), 7);

  const int32_t outside[] = {4, 0};
  EXPECT_THROW(a.as_array()->At(outside), Error);
  const int32_t too_few[] = {1};
  EXPECT_THROW(a.as_array()->At(too_few), Error);

  // ReDim Preserve changes only the last dimension and keeps what still fits.
  const ArrayBound grown[] = {{1, 3}, {0, 4}};
  a.mutable_array()->Redim(grown, true);
  EXPECT_EQ(a.as_array()->At(at).as_long(), 42);
  const ArrayBound wrong[] = {{1, 4}, {0, 4}};
  EXPECT_THROW(a.mutable_array()->Redim(wrong, true), Error);

  // 61 dimensions are one too many.
  std::vector<ArrayBound> many(61, ArrayBound{0, 1});
  EXPECT_THROW(SafeArray(VarType::Variant, many), Error);
  // A fixed array refuses ReDim with error 10.
  a.mutable_array()->set_fixed(true);
  try {
    a.mutable_array()->Redim(grown, false);
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 10);
  }
}

}  // namespace
}  // namespace qv

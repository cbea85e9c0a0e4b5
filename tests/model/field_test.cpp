// Fields: the registration order that the project file depends on, the defaults derived per
// column type and per DBMS kind, the DAO type mapping, and the list's renumbering, renaming
// and lookups.
#include "model/fields.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/tyx_vars.h"

namespace qv {
namespace {

std::vector<std::string> NamesWhere(const TyProperties& bag, auto&& pred) {
  std::vector<std::string> out;
  bag.ForEach([&](TyProperty& p) {
    if (pred(p)) out.push_back(p.Name().ToUtf8());
  });
  return out;
}

class FieldTest : public ::testing::Test {
 protected:
  void SetUp() override { ResetVars(); }
  void TearDown() override { ResetVars(); }

  // A bare column as a loader leaves it, then its defaults.
  Ref<TyxField> Column(StringView name, int16_t type, int32_t size = 50, bool autoinc = false) {
    Ref<TyxField> f = MakeRef<TyxField>();
    f->SetFldName(String(name));
    f->SetFieldSupport(type);
    f->SetFldSize(size);
    f->SetFldAutoIncrement(autoinc);
    f->LoadFldDefault();
    return f;
  }
};

TEST_F(FieldTest, RegistrationOrderAndFlags) {
  Ref<TyxField> f = MakeRef<TyxField>();
  const TyProperties& bag = f->Properties();
  ASSERT_EQ(bag.Count(), 101);
  const auto all = NamesWhere(bag, [](auto&) { return true; });
  EXPECT_EQ(all.front(), "FldSync");
  EXPECT_EQ(all[1], "FldSeq");
  EXPECT_EQ(all[2], "FldName");
  EXPECT_EQ(all[35], "FldVar");
  EXPECT_EQ(all[68], "FileNameFld");
  EXPECT_EQ(all.back(), "FldAjax");
  EXPECT_EQ(NamesWhere(bag, [](TyProperty& p) { return !p.FileSave(); }),
            (std::vector<std::string>{"FldSync", "FldVar"}));
  EXPECT_EQ(NamesWhere(bag, [](TyProperty& p) { return p.RegSave(); }),
            (std::vector<std::string>{"FldTagAPrefix", "FldBold", "FldItalic", "FldAlign",
                                      "FldNumDigits", "FldMemoMaxLength", "FldColumnWrap",
                                      "FldGroupByShowSummary", "FldRepeatColumns"}));
  EXPECT_EQ(bag.Find(u"FldNumDigits")->RegFormat(), 4);
  EXPECT_EQ(bag.Find(u"FldBold")->RegFormat(), 1);
  // Schema facts come from the new definition on synchronisation; user choices are kept.
  const auto schema = NamesWhere(bag, [](TyProperty& p) { return !p.Sync(); });
  EXPECT_EQ(schema.size(), 21u);
  EXPECT_EQ(schema.back(), "FldOrder");
  EXPECT_EQ(bag.Find(u"FldMin")->DataType(), u"Variant");
  EXPECT_EQ(bag.Find(u"FldSize")->DataType(), u"Long");
}

TEST_F(FieldTest, AutoIncrementIntegerColumn) {
  Ref<TyxField> f = Column(u"ID", adInteger, 4, true);
  EXPECT_EQ(f->FldHtmlTag(), u"NO");
  EXPECT_FALSE(f->FldAdd());
  EXPECT_TRUE(f->FldEdit());
  EXPECT_TRUE(f->FldView());
  EXPECT_TRUE(f->FldList());
  EXPECT_EQ(f->FldValidate(), u"INTEGER");
  EXPECT_EQ(f->FldSrchOpr(), u"=");
  EXPECT_EQ(f->FldQuoteS(), u"");
  EXPECT_FALSE(f->FldBasicSearch());
  EXPECT_EQ(f->FldCaption(), u"ID");
  EXPECT_EQ(f->FldVar(), u"x_ID");
}

TEST_F(FieldTest, BooleanColumnDependsOnTheDbmsKind) {
  Vars().CurrentDbmsName = u"ACCESS";
  Ref<TyxField> access = Column(u"Active", adBoolean);
  EXPECT_EQ(access->FldHtmlTag(), u"RADIO");
  EXPECT_EQ(access->FldTagValues(), u"\"Yes\",\"Yes\"\r\n\"No\",\"No\"");
  EXPECT_EQ(access->FldSrchOpr(), u"=");
  Vars().CurrentDbmsName = u"PostgreSQL";
  Ref<TyxField> other = Column(u"Active", adBoolean);
  EXPECT_EQ(other->FldTagValues(), u"\"1\",\"Yes\"\r\n\"0\",\"No\"");
  // "Microsoft Access" is not one of the two exact names of Access.
  Vars().CurrentDbmsName = u"Microsoft Access";
  EXPECT_EQ(Column(u"B", adBoolean)->FldTagValues(), u"\"1\",\"Yes\"\r\n\"0\",\"No\"");
}

TEST_F(FieldTest, TextMemoAndBinaryColumns) {
  Ref<TyxField> memo = Column(u"Notes", adLongVarChar, 0);
  EXPECT_EQ(memo->FldHtmlTag(), u"TEXTAREA");
  EXPECT_EQ(memo->FldTagCols(), 35);
  EXPECT_EQ(memo->FldTagRows(), 4);
  EXPECT_FALSE(memo->FldList());
  EXPECT_TRUE(memo->FldSearch());
  EXPECT_TRUE(memo->FldBasicSearch());
  EXPECT_EQ(memo->FldSrchOpr(), u"LIKE");

  Ref<TyxField> text = Column(u"order_date_text", adVarWChar, 80);
  EXPECT_EQ(text->FldTagSize(), 30);
  EXPECT_EQ(text->FldTagMaxLength(), 80);
  EXPECT_EQ(text->FldQuoteS(), u"'");
  EXPECT_EQ(text->FldCaption(), u"order date text");

  Ref<TyxField> blob = Column(u"Photo", adLongVarBinary);
  EXPECT_EQ(blob->FldHtmlTag(), u"FILE");
  EXPECT_EQ(blob->FldHrefFld(), u"Photo");
  EXPECT_FALSE(blob->FldList());
  EXPECT_FALSE(blob->FldSearch());
  EXPECT_FALSE(blob->FldBasicSearch());

  Ref<TyxField> guid = Column(u"Key", adGUID);
  EXPECT_EQ(guid->FldTagSize(), 38);
  EXPECT_EQ(guid->FldTagMaxLength(), 38);
  EXPECT_EQ(guid->FldValidate(), u"GUID");
}

TEST_F(FieldTest, DateColumnsFollowTheSharedDateFormat) {
  Vars().DefaultDateFormat = 6;
  Ref<TyxField> us = Column(u"OrderDate", adDBTimeStamp);
  EXPECT_EQ(us->FldHtmlTag(), u"TEXT");
  EXPECT_EQ(us->FldFmtType(), u"Date/Time");
  EXPECT_EQ(us->FldDtFormat(), 6);
  EXPECT_EQ(us->FldValidate(), u"USDATE");
  EXPECT_EQ(us->FldCaption(), u"Order Date");
  EXPECT_EQ(us->FldQuoteS(), u"'");

  Vars().DefaultDateFormat = 0;
  Ref<TyxField> plain = Column(u"Shipped", adDate);
  EXPECT_EQ(plain->FldFmtType(), u"None");
  EXPECT_EQ(plain->FldValidate(), u"");
  EXPECT_TRUE(plain->Properties().Find(u"FldDtFormat")->Value().is_empty());

  Vars().CurrentDbmsName = u"MS Jet";
  EXPECT_EQ(Column(u"D", adDBTime)->FldQuoteE(), u"#");
  EXPECT_EQ(Column(u"D", adDBTime)->FldValidate(), u"TIME");
  Vars().CurrentDbmsName = u"Oracle";
  EXPECT_EQ(Column(u"D", adDate)->FldQuoteE(), u"'");
}

TEST_F(FieldTest, UnsupportedTypeAndOddNames) {
  Ref<TyxField> bin = Column(u"Raw", adVarBinary);
  EXPECT_FALSE(bin->FldSupport());
  EXPECT_EQ(bin->FldType(), adVarBinary);
  for (bool flag : {bin->FldGenerate(), bin->FldList(), bin->FldEdit(), bin->FldAdd(),
                    bin->FldView(), bin->FldSearch()}) {
    EXPECT_FALSE(flag);
  }
  EXPECT_EQ(bin->FldHtmlTag(), u"TEXT");
  EXPECT_TRUE(bin->Properties().Find(u"FldQuoteS")->Value().is_empty());

  EXPECT_EQ(Column(u"2nd price", adCurrency)->FldVar(), u"x_x2nd_price");
  EXPECT_EQ(Column(u"a%b", adCurrency)->FldVar(), u"x_a25b");
  EXPECT_EQ(Column(u"a%b", adCurrency)->FldValidate(), u"FLOAT");

  Vars().RepeatColumns = 3;
  Ref<TyxField> f = Column(u"Title", adVarChar);
  EXPECT_EQ(f->FldRepeatColumns(), 3);
  f->SetFldCaption(u"My title");
  f->SetFldReq(true);
  f->LoadFldDefault();
  EXPECT_EQ(f->FldCaption(), u"My title");
  EXPECT_TRUE(f->FldRequired());
}

TEST_F(FieldTest, ListKeepsSeqContiguousAndApartFromListOrder) {
  Ref<TyxFields> list = MakeRef<TyxFields>();
  for (auto* n : {u"A", u"B", u"C", u"D"})
    EXPECT_TRUE(list->Add(n));
  EXPECT_FALSE(list->Add(u"a"));
  EXPECT_FALSE(list->Add(u""));
  EXPECT_EQ(list->curName(), u"D");
  EXPECT_EQ(list->curSeq().type(), VarType::Integer);
  EXPECT_EQ(ToInteger(list->curSeq()), 4);
  // The user reorders: D first.
  list->Seq(4)->SetFldSeq(0);
  list->Seq(1)->SetFldSeq(4);
  list->Seq(0)->SetFldSeq(1);
  EXPECT_EQ(list->Seq(1)->FldName(), u"D");
  EXPECT_EQ(list->curName(), u"D");  // Seq leaves the current field alone

  EXPECT_TRUE(list->Delete(u"B"));  // FldSeq 2
  EXPECT_FALSE(list->Delete(u"B"));
  EXPECT_FALSE(list->Delete(u""));
  EXPECT_EQ(list->Count(), 3);
  EXPECT_EQ(list->Seq(1)->FldName(), u"D");
  EXPECT_EQ(list->Seq(2)->FldName(), u"C");
  EXPECT_EQ(list->Seq(3)->FldName(), u"A");
  EXPECT_FALSE(list->Seq(4));

  // Rename: key, name and variable follow; a taken name raises 457 from the collection.
  EXPECT_TRUE(list->Change(u"C", u"Cost %"));
  EXPECT_EQ(list->curName(), u"Cost %");
  Ref<TyxField> renamed = list->Item(Variant(u"Cost %"));
  ASSERT_TRUE(renamed);
  EXPECT_EQ(renamed->FldVar(), u"x_Cost_25");
  EXPECT_EQ(renamed->FldSeq(), 2);
  EXPECT_FALSE(list->Change(u"nope", u"x"));
  EXPECT_FALSE(list->Change(u"A", u""));
  try {
    list->Change(u"A", u"D");
    FAIL();
  } catch (const Error& e) {
    EXPECT_EQ(e.number(), 457);
  }
  // Exact lookups by name; a miss leaves the current field.
  EXPECT_FALSE(list->Item(Variant(u"cost %")));
  EXPECT_FALSE(list->Exist(Variant(u"a")));
  EXPECT_TRUE(list->Exist(Variant(u"A")));
  EXPECT_EQ(list->curName(), u"Cost %");
  EXPECT_EQ(list->Item(Variant(int32_t{1}))->FldName(), u"A");
  EXPECT_EQ(list->curName(), u"A");
  list->SetSeq(1);
  EXPECT_EQ(list->curName(), u"D");
  EXPECT_EQ(ToInteger(list->curSeq()), 1);
  // Iteration is the list's own order.
  std::vector<String> order;
  Ref<Enumerator> e = list->NewEnum();
  for (Variant v; e->Next(v);)
    order.push_back(static_cast<TyxField*>(v.as_object())->FldName());
  ASSERT_EQ(order.size(), 3u);
  EXPECT_EQ(order[0], u"A");
  EXPECT_EQ(order[2], u"D");
}

}  // namespace
}  // namespace qv

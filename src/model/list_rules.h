// Where the model's four named lists differ, side by side. Everything else about them (Item,
// Count, the current entry, Delete's renumbering, Seq, what scripts see) is one implementation
// in named_list.h.
#pragma once

namespace qv {

struct ListRules {
  const char16_t* type_name;     // what TypeName() shows
  const char16_t* exist_member;  // the script name of the exact-name test
  // Add of a name in use makes that entry current and succeeds, instead of failing.
  bool add_selects_existing;
  // Change renames an entry and derives its variable name (entry's kVarIndex) from the new
  // name with var_prefix; var_on_add derives it on Add already.
  bool has_change;
  bool var_on_add;
  const char16_t* var_prefix;
  bool seq_as_text;      // curSeq answers text rather than a number
  bool has_set_members;  // SetItem and SetSeq, which move the current entry without a result
};

// clang-format off
//                                              type name         exist member       add selects  has     var on  var    seq as  SetItem,
//                                                                                   existing     Change  Add     prefix text    SetSeq
inline constexpr ListRules kFieldListRules{     u"TyxFields",     u"FieldExist",     false,       true,   false,  u"x_", false,  true};
inline constexpr ListRules kTableListRules{     u"TyxTables",     u"TableExist",     false,       true,   false,  u"",   false,  true};
inline constexpr ListRules kChartListRules{     u"TyxCharts",     u"ChartExist",     true,        true,   true,   u"",   false,  false};
inline constexpr ListRules kExtensionListRules{ u"TyxExtensions", u"ExtensionExist", true,        false,  false,  u"",   true,   false};
// clang-format on

}  // namespace qv

// ChooseOracleSchema and its dialog.
#include "schema/oracle_schema.h"

#include <algorithm>
#include <optional>

#include "automation/convert.h"
#include "platform/prompter.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

String UpperText(const Variant& v) {
  return v.is_null() || v.is_empty() ? String() : ToUpper(ToString(v));
}

String AskForSchema(const std::vector<String>& schema_list) {
  const std::vector<String> choices(schema_list.begin() + 1, schema_list.end());
  SharedStatus().SuspendLine();
  const std::optional<size_t> pick = CurrentPrompter().PickName(
      Vars().ProductName, String(kChooseSchemaText) + u"\r\n" + kChooseSchemaLabel, choices);
  return pick && *pick < choices.size() ? choices[*pick] : String();
}

}  // namespace

void ChooseOracleSchema(data::Recordset& rs, StringView uid, String& current_schema,
                        std::vector<String>& schema_list) {
  const String wanted = current_schema.empty() ? ToUpper(uid) : current_schema;
  schema_list.assign(1, String());
  if (rs.Eof()) return;
  bool seen = false;
  for (; !rs.Eof(); rs.MoveNext()) {
    if (ToString(rs.Fields(u"TABLE_TYPE").Value()) != u"TABLE") continue;
    const String owner = UpperText(rs.Fields(u"TABLE_SCHEMA").Value());
    if (owner == wanted) seen = true;
    if (std::find(schema_list.begin() + 1, schema_list.end(), owner) == schema_list.end()) {
      schema_list.push_back(owner);
    }
  }
  rs.MoveFirst();
  current_schema = seen ? wanted : AskForSchema(schema_list);
}

}  // namespace qv

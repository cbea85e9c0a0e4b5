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

// frmSchema: cmdOK with no choice says so and the form stays. Only a prompter that has no
// answers left (a script, the end of a terminal's input) ends it without a schema.
String AskForSchema(const std::vector<String>& schema_list) {
  const std::vector<String> choices(schema_list.begin() + 1, schema_list.end());
  SharedStatus().SuspendLine();
  Prompter& prompter = CurrentPrompter();
  const String text = String(kChooseSchemaText) + u"\r\n" + kChooseSchemaLabel;
  while (true) {
    const std::optional<size_t> pick = prompter.PickName(Vars().ProductName, text, choices);
    if (pick && *pick < choices.size()) return choices[*pick];
    if (!prompter.CanAnswer()) return String();
    prompter.ShowMessage(Vars().ProductName, u"Please choose a schema to proceed!",
                         PromptIcon::kExclamation);
  }
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

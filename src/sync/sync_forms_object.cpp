// The members of TyxSyncForms: each forwards to the form of sync_dialogs.h.
#include "sync/sync_forms_object.h"

#include <optional>

#include "sync/sync_dialogs.h"

namespace qv {

namespace {

// KeepDefinition: True when the user chose "Keep".
bool AskSync(TyxSyncForms&, std::optional<String> message) {
  return AskKeepDefinition(message.value_or(String()));
}

String MapDialog(TyxSyncForms&, String title, String text, String new_caption, String old_caption,
                 String new_list, String old_list, std::optional<bool> show_all) {
  return ShowMapDialog(title, text, new_caption, old_caption, new_list, old_list,
                       show_all.value_or(false));
}

String SelectTable(TyxSyncForms&, String new_table, String old_list) {
  return SelectTableForm(new_table, old_list);
}

String SelectField(TyxSyncForms&, String table, String new_field, String old_list) {
  return SelectFieldForm(table, new_field, old_list);
}

String RenameTable(TyxSyncForms&, String existing_table, String new_list) {
  return RenameTableForm(existing_table, new_list);
}

}  // namespace

const DispatchTable<TyxSyncForms>& TyxSyncForms::Table() {
  static const auto table = DispatchTable<TyxSyncForms>(u"TyxSyncForms")
                                .Method<&AskSync>(u"frmSync")
                                .Method<&MapDialog>(u"ShowMapDialog")
                                .Method<&SelectTable>(u"frmSyncSelectTable")
                                .Method<&SelectField>(u"frmSyncSelectField")
                                .Method<&RenameTable>(u"frmSyncRenameTable");
  return table;
}

}  // namespace qv

// The questions that synchronisation asks: keep or update a definition (frmSync), map new
// names to old ones (the mapping dialog), and the three selection forms that pick one old name
// for a new one. Each is a modal form told through the process's prompter, so a terminal gets
// the question and a script or CI gets its answers or the safe choice.
#pragma once

#include <vector>

#include "automation/string.h"

namespace qv {

// The text frmSync shows when its caller gives none.
inline constexpr StringView kSyncDefaultMessage =
    u"Database has been modified since last change. Do you want to keep old definition or "
    u"update to new definition?";

// frmSync: "Update" (cmdUpgrade) or "Keep" (cmdKeep). True when the user chose to keep.
// Nobody to answer means update, the value KeepDefinition starts with.
bool AskKeepDefinition(StringView message);

// The mapping dialog. `new_list` and `old_list` are comma lists; the result holds one old name
// per new name, in the order of the new list, "" where none was chosen. A cancelled dialog
// gives back `old_list` as it came in. `show_all` is handed to the dialog's Show and changes
// nothing in what it asks.
String ShowMapDialog(StringView title, StringView text, StringView new_caption,
                     StringView old_caption, StringView new_list, StringView old_list,
                     bool show_all);

// The selection forms: each offers the comma list of old names and gives back the one chosen,
// or "" when the user skips.
String SelectTableForm(StringView new_table, StringView old_list);  // frmSyncSelectTable
String SelectFieldForm(StringView table, StringView new_field,
                       StringView old_list);                             // frmSyncSelectField
String RenameTableForm(StringView existing_table, StringView new_list);  // frmSyncRenameTable

// The parts of a comma list, without empty entries.
std::vector<String> SplitCommaList(StringView list);
// The parts of a comma list with the empty ones in their places ("a,,b" gives three).
std::vector<String> SplitListKeepingEmpty(StringView list);

}  // namespace qv

// The synchronisation forms over the prompter.
#include "sync/sync_dialogs.h"

#include <optional>

#include "platform/prompter.h"
#include "support/status.h"
#include "support/tyx_vars.h"

namespace qv {

namespace {

// Unlike SplitCommaList, empty entries keep their places.
String JoinCommaList(const std::vector<String>& names) {
  String list;
  for (size_t i = 0; i < names.size(); ++i) {
    if (i > 0) list.Append(u',');
    list.Append(names[i].view());
  }
  return list;
}

// One selection form: the old names in cboSelect, the labels above the text. cmdOK with no
// choice says "Please select!" and asks again; cmdSkip (a cancelled pick) gives "".
String SelectionForm(StringView title, StringView text, StringView old_list) {
  const std::vector<String> names = SplitCommaList(old_list);
  Prompter& prompter = CurrentPrompter();
  SharedStatus().SuspendLine();
  Prompt prompt;
  prompt.kind = Prompt::kPickName;
  prompt.title = String(title);
  prompt.text = String(text);
  prompt.names = names;
  while (true) {
    const Reply reply = prompter.Ask(prompt);
    if (reply.cancelled) return String();
    if (reply.pick && *reply.pick < names.size()) return names[*reply.pick];
    prompter.ShowMessage(Vars().ProductName, u"Please select!", PromptIcon::kCritical);
    if (!prompter.CanAnswer()) return String();
  }
}

}  // namespace

std::vector<String> SplitCommaList(StringView list) {
  std::vector<String> parts;
  size_t start = 0;
  while (start <= list.size()) {
    size_t comma = list.find(u',', start);
    if (comma == StringView::npos) comma = list.size();
    if (comma > start) parts.emplace_back(list.substr(start, comma - start));
    start = comma + 1;
  }
  return parts;
}

std::vector<String> SplitListKeepingEmpty(StringView list) {
  std::vector<String> parts;
  size_t start = 0;
  while (true) {
    const size_t comma = list.find(u',', start);
    if (comma == StringView::npos) {
      parts.emplace_back(list.substr(start));
      return parts;
    }
    parts.emplace_back(list.substr(start, comma - start));
    start = comma + 1;
  }
}

bool AskKeepDefinition(StringView message) {
  SharedStatus().SuspendLine();
  const StringView text = message.empty() ? kSyncDefaultMessage : message;
  // Button 0 is cmdUpgrade: KeepDefinition starts False, so nobody answering means update.
  const size_t button =
      CurrentPrompter().ChooseButton(Vars().ProductName, text, u"Update", u"Keep", 0);
  return button == 1;
}

String ShowMapDialog(StringView title, StringView text, StringView new_caption,
                     StringView old_caption, StringView new_list, StringView old_list,
                     bool /*show_all*/) {
  const std::vector<String> new_names = SplitCommaList(new_list);
  const std::vector<String> old_names = SplitCommaList(old_list);
  SharedStatus().SuspendLine();
  const std::optional<std::vector<std::optional<size_t>>> map =
      CurrentPrompter().MapNames(title, text, new_caption, old_caption, new_names, old_names);
  if (!map) return String(old_list);
  std::vector<String> chosen;
  chosen.reserve(new_names.size());
  for (const std::optional<size_t>& entry : *map) {
    chosen.push_back(entry ? old_names[*entry] : String());
  }
  chosen.resize(new_names.size());
  return JoinCommaList(chosen);  // an entry left "" keeps its place
}

String SelectTableForm(StringView new_table, StringView old_list) {
  const String title = Vars().ProductName + u" - New table found";
  return SelectionForm(title,
                       u"New table: " + String(new_table) +
                           u"\r\nOld table(s) found in the project with the same schema. If the "
                           u"new table is a renamed table and you want to preserve your "
                           u"settings, select the old table that you want to rename as the new "
                           u"table. \r\nRename from:",
                       old_list);
}

String SelectFieldForm(StringView table, StringView new_field, StringView old_list) {
  const String title = Vars().ProductName + u" - New field found";
  return SelectionForm(title,
                       u"Table: " + String(table) + u"\r\nNew field: " + String(new_field) +
                           u"\r\nOld field(s) found in the project with the same schema. If the "
                           u"new field is a renamed field and you want to preserve your "
                           u"settings, select the old field that you want to rename as the new "
                           u"field. \r\nRename from:",
                       old_list);
}

String RenameTableForm(StringView existing_table, StringView new_list) {
  const String title = Vars().ProductName + u" - Rename existing table";
  return SelectionForm(title,
                       u"Existing table: " + String(existing_table) +
                           u"\r\nYou have selected the following table to be renamed from a "
                           u"table in the database schema. Please select the table name to be "
                           u"renamed.\r\nRename to:",
                       new_list);
}

}  // namespace qv

// Load: the project file back into the root. The file is parsed whole first, so a file that is
// not well-formed changes nothing beyond the saved defaults that Load starts with. The reader
// then walks the elements by name, matches each attribute to a FileSave entry of the object's
// bag by its exact name, converts the text by the entry's DataType, and derives what the file
// does not hold (variable names, field quotes, table keys). Any failure on the way ends in the
// load-failed text, and what was read so far stays.
#include <algorithm>
#include <exception>
#include <iterator>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "model/tyx.h"
#include "persistence/load_sync_check.h"
#include "persistence/project_document.h"
#include "persistence/project_file.h"
#include "persistence/project_values.h"
#include "platform/fs.h"
#include "support/common.h"
#include "support/status.h"
#include "support/tyx_functions.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

constexpr std::u16string_view kLoadFailed = u": Load Project File failed! Please check!";
constexpr std::u16string_view kInvalidFile = u": Invalid Project File!";
constexpr std::u16string_view kNoDatabase = u": No Database Information in Project File!";

// Raised when a file is older than the oldest version this engine reads. Older files went
// through a converter in the past; there is none here, so they end like any failed load.
struct TooOldFile {};

void SetProjErr(std::u16string_view words) {
  TyxVars& vars = Vars();
  vars.ProjErr = vars.ProductTitle + words;
}

String Text(std::string_view utf8) {
  return String::FromUtf8(utf8);
}

String LineBreaksFromBars(std::string_view utf8) {
  String out;
  out.Reserve(utf8.size() + 8);
  size_t start = 0;
  for (size_t bar = utf8.find('|'); bar != std::string_view::npos; bar = utf8.find('|', start)) {
    out.Append(Text(utf8.substr(start, bar - start)).view());
    out.Append(u"\r\n");
    start = bar + 1;
  }
  out.Append(Text(utf8.substr(start)).view());
  return out;
}

// The quote pair of a field from its type, by the rule of SetFieldSupport; nothing for a type
// that the rule does not list, whose quotes stay as the file had them.
std::optional<StringView> FieldQuote(int16_t ado_type, int32_t dbms_kind) {
  static constexpr int16_t kUnquoted[] = {20, 11, 6, 14, 5, 3, 131, 4, 2, 16, 21, 19, 18, 17, 139};
  static constexpr int16_t kQuoted[] = {8, 129, 72, 203, 202, 201, 200, 130, 205};
  static constexpr int16_t kDates[] = {7, 133, 134, 135};
  const auto in = [ado_type](const auto& list) {
    return std::find(std::begin(list), std::end(list), ado_type) != std::end(list);
  };
  if (in(kUnquoted)) return StringView();
  if (in(kQuoted)) return StringView(u"'");
  if (in(kDates)) return StringView(dbms_kind == 1 ? u"#" : u"'");
  return std::nullopt;
}

// What the reader knows about one attribute name of the document.
struct NameRule {
  bool js = false;          // "js": stored only when it names an existing file
  bool tag_values = false;  // "fldtagvalues": "|" back to line breaks
};

class ProjectReader {
 public:
  ProjectReader(Tyx& tyx, const ProjectDocument& doc) : tyx_(tyx), doc_(doc) {
    rules_.resize(static_cast<size_t>(doc.name_count()));
    for (int32_t i = 0; i < doc.name_count(); ++i) {
      const String& name = doc.name(i);
      rules_[static_cast<size_t>(i)].js = EqualsNoCase(name, u"js");
      rules_[static_cast<size_t>(i)].tag_values = EqualsNoCase(name, u"fldtagvalues");
    }
    extension_ = doc.FindName(u"Extension");
    database_ = doc.FindName(u"Database");
    table_ = doc.FindName(u"Table");
    field_ = doc.FindName(u"Field");
    name_ = doc.FindName(u"Name");
    db_name_ = doc.FindName(u"DBName");
    tbl_name_ = doc.FindName(u"TblName");
    fld_name_ = doc.FindName(u"FldName");
  }

  // The progress total: the elements below the first Database of the root.
  void CountProgress() {
    const int32_t db = doc_.FirstChildNamed(doc_.root(), u"Database");
    total_ = db == ProjectDocument::kNone ? 0 : doc_.ChildCount(db);
    count_ = 0;
  }
  int32_t total() const { return total_; }

  void ReadAttributes(int32_t element, TyProperties& bag) {
    std::vector<int32_t>* slots = SlotsOf(bag);
    for (const ProjectDocument::Attribute& a : doc_.attributes(element)) {
      TyProperty* p = Match(bag, slots, a.name);
      if (p) Store(*p, a);
    }
  }

  void ReadProjectNodes(int32_t element) {
    for (int32_t c = doc_.element(element).first_child; c != ProjectDocument::kNone;
         c = doc_.element(c).next_sibling) {
      const int32_t name = doc_.element(c).name;
      if (name == extension_) {
        ReadExtension(c);
      } else if (name == database_) {
        ReadDatabase(c);
      } else if (name == table_) {
        ReadTable(c);
      } else if (name == field_) {
        ReadField(c);
      }
    }
  }

 private:
  // The first FileSave entry whose Name equals the attribute's name exactly. Bags that hold
  // their class's layout unchanged share slot numbers, so the key search runs once per name
  // and class; a bag changed by the host is searched by name.
  // The slot cache of the bag's layout, or nullptr for a bag without one.
  std::vector<int32_t>* SlotsOf(const TyProperties& bag) {
    const PropertyLayout* layout = bag.layout();
    if (!layout) return nullptr;
    std::vector<int32_t>& slots = slots_[layout];
    if (slots.empty()) slots.assign(rules_.size(), kUnknownSlot);
    return &slots;
  }

  TyProperty* Match(const TyProperties& bag, std::vector<int32_t>* slots, int32_t name) {
    const String& text = doc_.name(name);
    int32_t slot = -1;
    if (slots) {
      int32_t& cached = (*slots)[static_cast<size_t>(name)];
      if (cached == kUnknownSlot) cached = bag.SlotOf(text);
      slot = cached;
    } else {
      slot = bag.SlotOf(text);
    }
    if (TyProperty* p = bag.AtSlot(slot); p && p->FileSave() && p->Name() == text) return p;
    // A name that its key does not find exactly: a renamed entry may still carry it.
    TyProperty* found = nullptr;
    bag.ForEach([&](TyProperty& p) {
      if (!found && p.FileSave() && p.Name() == text) found = &p;
    });
    return found;
  }

  void Store(TyProperty& p, const ProjectDocument::Attribute& a) {
    const std::string_view value = doc_.value(a);
    const NameRule& rule = rules_[static_cast<size_t>(a.name)];
    if (rule.js) {
      if (!value.empty() && fs::FileExists(Text(value)))
        p.SetValue(ToPropertyValue(value, p.DataType()));
      return;
    }
    if (rule.tag_values) {
      p.SetValue(Variant(LineBreaksFromBars(value)));
      return;
    }
    const PropType type = p.Type();
    if (type == PropType::String || type == PropType::Variant) {
      p.SetValue(Variant(Intern(value)));  // no word that ToPropertyValue converts by
      return;
    }
    p.SetValue(ToPropertyValue(value, p.DataType()));
  }

  // Short texts repeat across thousands of fields ("TEXT", "None", "Values"); they share one
  // buffer, which saves an allocation per value and memory for the life of the project.
  String Intern(std::string_view utf8) {
    if (utf8.empty()) return String();
    if (utf8.size() > kInternMaxSize) return Text(utf8);
    if (const auto it = interned_.find(utf8); it != interned_.end()) return it->second;
    String text = Text(utf8);
    if (interned_.size() < kInternMaxCount) interned_.emplace(std::string(utf8), text);
    return text;
  }

  // An attribute's text; an absent attribute reads as "".
  String AttributeOf(int32_t element, int32_t name) const {
    const std::optional<std::string_view> value = doc_.attribute(element, name);
    return value ? Text(*value) : String();
  }

  void ReadExtension(int32_t element) {
    const String name = AttributeOf(element, name_);
    if (name.empty()) return;
    TyxExtensions& extensions = tyx_.Extensions();
    if (!extensions.Add(name)) return;
    TyxExtension* extension = extensions.list().ByKey(extensions.curName());
    if (!extension) throw Error(kErrObjectRequired);
    ReadAttributes(element, extension->Properties());
  }

  void ReadDatabase(int32_t element) {
    const std::optional<std::string_view> value = doc_.attribute(element, db_name_);
    // A missing DBName cannot become text; only a present, empty one falls back to "qv_db".
    if (!value) throw Error(kErrInvalidUseOfNull);
    String name = Text(*value);
    if (name.empty()) name = u"qv_db";
    tyx_.CurrentDbName = name;
    tyx_.Databases().Add(name);
    const Ref<TyxDatabase> db = tyx_.Databases().Item(Variant(name));
    ReadAttributes(element, db->Properties());
    ReadProjectNodes(element);
  }

  void ReadTable(int32_t element) {
    const String name = AttributeOf(element, tbl_name_);
    if (name.empty()) return;
    if (total_ > 0) {
      TyxStatus& status = SharedStatus();
      status.DispStatus(Variant(u"Loading TABLE/VIEW \"" + name + u"\"..."));
      ++count_;
      status.SetStatus(Variant(PercentOf(count_, total_)));
    }
    TyxTables& tables = tyx_.db()->Tables();
    if (!tables.Add(name)) return;
    TyxTable* table = tables.list().ByKey(name);
    if (!table) throw Error(kErrObjectRequired);
    ReadAttributes(element, table->Properties());
    table->SetTblVar(ToVarName(table->TblName(), u""));
    ReadProjectNodes(element);
  }

  void ReadField(int32_t element) {
    const String name = AttributeOf(element, fld_name_);
    const Ref<TyxDatabase> db = tyx_.db();
    TyxTables& tables = db->Tables();
    const String table_name = tables.curName();
    if (name.empty() || table_name.empty()) return;
    TyxTable* table = tables.list().ByKey(table_name);
    if (!table) throw Error(kErrObjectRequired);
    TyxFields& fields = table->Fields();
    if (!fields.Add(name)) return;
    TyxField* field = fields.list().ByKey(name);
    if (!field) throw Error(kErrObjectRequired);
    ReadAttributes(element, field->Properties());

    field->SetFldVar(ToVarName(field->FldName(), u"x_"));
    if (const std::optional<StringView> quote = FieldQuote(field->FldType(), KindOf(*db))) {
      field->SetFldQuoteS(String(*quote));
      field->SetFldQuoteE(String(*quote));
    }
    if (field->FldAutoIncrement()) field->SetFldAdd(false);
  }

  // DatabaseKind of the database's DBMS name, worked out once per name.
  int32_t KindOf(const TyxDatabase& db) {
    const String dbms = db.DBDBMSName();
    if (!kind_known_ || dbms != kind_name_) {
      kind_name_ = dbms;
      kind_ = DatabaseKind(dbms);
      kind_known_ = true;
    }
    return kind_;
  }

  static constexpr int32_t kUnknownSlot = -2;
  static constexpr size_t kInternMaxSize = 32;
  static constexpr size_t kInternMaxCount = 4096;

  struct TextHash {
    using is_transparent = void;
    size_t operator()(std::string_view s) const noexcept {
      return std::hash<std::string_view>()(s);
    }
  };

  Tyx& tyx_;
  const ProjectDocument& doc_;
  std::vector<NameRule> rules_;
  std::unordered_map<const PropertyLayout*, std::vector<int32_t>> slots_;
  std::unordered_map<std::string, String, TextHash, std::equal_to<>> interned_;
  int32_t extension_, database_, table_, field_;
  int32_t name_, db_name_, tbl_name_, fld_name_;
  int32_t total_ = 0;
  int32_t count_ = 0;
  String kind_name_;
  int32_t kind_ = 5;
  bool kind_known_ = false;
};

int16_t NumberOrZero(const Variant& value) {
  try {
    return ToInteger(value);
  } catch (const Error&) {
    return 0;
  }
}

// Steps 2 to 10: parse, check, and read the whole file into the root. False when the load
// has already ended with its own text in ProjErr.
bool ReadFile(Tyx& tyx, const String& project_file, bool& status_open) {
  ProjectDocument doc;
  if (!doc.Load(project_file)) throw Error::Failure(doc.error());
  const int32_t root = doc.root();
  const std::optional<std::string_view> version = doc.attribute(root, u"Version");
  if (!version) throw Error(kErrInvalidUseOfNull);
  if (VersionGreater(Vars().MinVersion, Text(*version))) throw TooOldFile();
  if (doc.name(doc.element(root).name) != u"Project") {
    SetProjErr(kInvalidFile);
    return false;
  }

  ProjectReader reader(tyx, doc);
  reader.CountProgress();
  TyxStatus& status = SharedStatus();
  if (reader.total() > 0) {
    const String title = u"Loading Project File...";
    Vars().StatusTitle = title;
    status.ShowStatus(Variant(tyx.lhWnd), Variant(LengthMarked(title)));
    status_open = true;
  }
  reader.ReadAttributes(root, tyx.Properties());
  if (tyx.SmtpServer().empty()) {
    tyx.SetSmtpServer(u"localhost");
    tyx.SetSmtpServerPort(25);
  }
  reader.ReadProjectNodes(root);
  if (status_open) {
    status.CloseStatus();
    status_open = false;
  }
  return true;
}

// Steps 11 to 19, once the file is read.
void FinishLoad(Tyx& tyx, const LoadSyncCheck& sync_check) {
  TyxVars& vars = Vars();
  vars.SqlQuoteStyle = tyx.SQLQuote();
  vars.DefaultDateFormat = NumberOrZero(tyx.Entry(Tyx::kdefaultDateFormat).Value());

  if (tyx.Databases().Count() < 1) {
    SetProjErr(kNoDatabase);
    return;
  }
  const Ref<TyxDatabase> db = tyx.db();
  vars.CurrentDbmsName = db->DBDBMSName();
  SetQuoteChars(vars.CurrentDbmsName);
  db->SetDBQuoteS(ToString(vars.DbQuoteOpen));
  db->SetDBQuoteE(ToString(vars.DbQuoteClose));
  vars.SecDefault = db->SecDefault();

  if (tyx.AutoSync()) {
    if (sync_check) {
      sync_check(tyx);
    } else {
      CheckWithoutSchema(tyx);
    }
  }
  RebuildTableKeys(tyx);
}

}  // namespace

void LoadProjectFile(Tyx& tyx, const String& project_file, const LoadSyncCheck& sync_check) {
  bool status_open = false;
  try {
    Vars().ProjErr = String();
    tyx.LoadDefault();
    if (!ReadFile(tyx, project_file, status_open)) return;
    FinishLoad(tyx, sync_check);
    return;
  } catch (const Error&) {
  } catch (const TooOldFile&) {
  } catch (const std::exception&) {
  }
  if (status_open) SharedStatus().CloseStatus();
  SetProjErr(kLoadFailed);
}

void RebuildTableKeys(Tyx& tyx) {
  if (tyx.Databases().Count() < 1) return;
  const Ref<TyxDatabase> db = tyx.db();
  db->Tables().list().ForEach([](TyxTable& table) {
    String keys;
    table.Fields().list().ForEach([&](TyxField& field) {
      if (!field.FldIsPrimaryKey()) return;
      if (!keys.empty()) keys.Append(u',');
      keys.Append(field.FldName().view());
    });
    table.SetTblKey(SortKeyList(keys));
  });
}

}  // namespace qv

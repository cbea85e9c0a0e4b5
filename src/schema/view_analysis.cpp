// The key decision of AnalyseViewSql, written once over two small adapters.
#include "schema/view_analysis.h"

#include <functional>
#include <optional>

#include "schema/view_sql_parser.h"
#include "support/common.h"

namespace qv {

namespace {

StringView Trim(StringView s) {
  while (!s.empty() && (s.front() == u' ' || s.front() == u'\t'))
    s.remove_prefix(1);
  while (!s.empty() && (s.back() == u' ' || s.back() == u'\t'))
    s.remove_suffix(1);
  return s;
}

StringView DropBrackets(StringView s) {
  if (!s.empty() && s.front() == u'[') s.remove_prefix(1);
  if (!s.empty() && s.back() == u']') s.remove_suffix(1);
  return s;
}

// What the decision needs to know of the tables and the view, on either path.
struct ViewFacts {
  std::function<std::optional<String>(StringView)> key_of_table;  // nothing: no such table
  std::function<bool(StringView)> view_has_field;
  String view_key;
};

// The key the view takes, if any, after TblUpdatable is written.
std::optional<String> DecideKey(const ViewSqlParser& p, const ViewFacts& facts) {
  if (p.JoinCount() == 0) {
    if (!facts.key_of_table(p.TableName())) return std::nullopt;
    if (facts.view_has_field(facts.view_key)) return facts.view_key;
    return std::nullopt;
  }
  if (p.JoinCount() != 1) return std::nullopt;
  const String left_key = facts.key_of_table(p.LeftTable()).value_or(String());
  const String right_key = facts.key_of_table(p.RightTable()).value_or(String());
  if (p.JoinType() != u"INNER" || left_key.empty() || right_key.empty()) return std::nullopt;
  String key;
  const bool left_on_key =
      QualifyColumn(p.LeftTable(), left_key) == QualifyColumn(p.LeftTable(), p.LeftField());
  const bool right_on_key =
      QualifyColumn(p.RightTable(), right_key) == QualifyColumn(p.RightTable(), p.RightField());
  if (left_on_key && right_on_key) {
    key = left_key;
  } else if (p.LeftField() == left_key) {
    key = right_key;
  } else if (p.RightField() == right_key) {
    key = left_key;
  }
  if (key.empty() || !facts.view_has_field(key)) return std::nullopt;
  return key;
}

}  // namespace

String QualifyColumn(StringView table, StringView field) {
  StringView f = field;
  const size_t dot = f.find(u'.');
  if (dot != StringView::npos) {
    f = f.substr(dot + 1);
    f = f.substr(0, f.find(u'.'));
  }
  return u"[" + String(DropBrackets(Trim(table))) + u"].[" + String(DropBrackets(Trim(f))) + u"]";
}

void AnalyseViewSql(TyxDatabase& db, TyxTable& view, StringView sql) {
  ViewSqlParser p;
  p.SetSql(sql);
  view.SetTblUpdatable(p.Updatable());
  if (!p.Updatable()) return;
  ViewFacts facts;
  facts.key_of_table = [&db](StringView name) -> std::optional<String> {
    TyxTable* t = db.Tables().list().ByName(name);
    if (!t) return std::nullopt;
    return t->TblKey();
  };
  facts.view_has_field = [&view](StringView name) {
    return !name.empty() && view.Fields().list().ByName(name) != nullptr;
  };
  facts.view_key = view.TblKey();
  const std::optional<String> key = DecideKey(p, facts);
  if (!key) return;
  view.SetTblKey(SortKeyList(*key));
  if (p.JoinCount() == 1) view.SetTblView(true);
}

void AnalyseViewSql(const std::vector<TySchemaTable>& tables, TySchemaTable& view, StringView sql) {
  ViewSqlParser p;
  p.SetSql(sql);
  view.TblUpdatable = p.Updatable();
  if (!p.Updatable()) return;
  ViewFacts facts;
  facts.key_of_table = [&tables](StringView name) -> std::optional<String> {
    for (const TySchemaTable& t : tables) {
      if (t.TblName == name) return t.TblKey;
    }
    return std::nullopt;
  };
  facts.view_has_field = [&view](StringView name) {
    return !name.empty() && view.FindField(name) != nullptr;
  };
  facts.view_key = view.TblKey;
  const std::optional<String> key = DecideKey(p, facts);
  if (key) view.TblKey = SortKeyList(*key);
}

}  // namespace qv

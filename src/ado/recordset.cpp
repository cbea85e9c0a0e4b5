// Recordset: opening, moving, reading and writing values, and the operations over held rows.
#include "ado/recordset.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <exception>
#include <filesystem>

#include "ado/ado_errors.h"
#include "ado/command.h"
#include "ado/connection.h"
#include "ado/criteria.h"
#include "ado/fields.h"
#include "ado/values.h"
#include "automation/convert.h"
#include "automation/safe_array.h"
#include "platform/data/data_types.h"
#include "platform/data/recordset.h"

namespace qv::ado {

using namespace qv::data;

namespace {

constexpr StringView kSource = u"ADODB.Recordset";

constexpr int32_t adOpenForwardOnly = 0;
constexpr int32_t adOpenDynamic = 2;
constexpr int32_t adOpenStatic = 3;
constexpr int32_t adLockReadOnly = 1;
constexpr int32_t adLockBatchOptimistic = 4;
constexpr int32_t adUseClient = 3;
constexpr int32_t adCmdFile = 256;
constexpr int32_t adEditNone = 0;
constexpr int32_t adEditInProgress = 1;
constexpr int32_t adEditAdd = 2;
constexpr int32_t adPosUnknown = -1;
constexpr int32_t adPosBOF = -2;
constexpr int32_t adPosEOF = -3;

bool IsMissingOrEmpty(const Variant& v) {
  return v.is_missing() || v.is_empty() || v.is_null() || v.is_nothing();
}

// "SELECT ... FROM name [WHERE ...]": the one table a plain query reads, if it reads one.
std::optional<String> SingleTableOf(StringView sql) {
  const String upper = ToUpper(sql);
  const StringView u = upper.view();
  if (!TrimBlanks(u).starts_with(u"SELECT")) return std::nullopt;
  const size_t from = u.find(u" FROM ");
  if (from == StringView::npos) return std::nullopt;
  size_t start = from + 6;
  while (start < u.size() && u[start] == u' ')
    ++start;
  size_t end = start;
  Char close = 0;
  if (start < u.size() && (u[start] == u'[' || u[start] == u'"' || u[start] == u'`')) {
    close = u[start] == u'[' ? u']' : u[start];
    end = u.find(close, start + 1);
    if (end == StringView::npos) return std::nullopt;
    ++end;
  } else {
    while (end < u.size() && u[end] != u' ' && u[end] != u',' && u[end] != u';' &&
           u[end] != u'\r' && u[end] != u'\n' && u[end] != u'(')
      ++end;
  }
  if (end == start) return std::nullopt;
  const StringView rest = TrimBlanks(u.substr(end));
  if (!rest.empty() && !rest.starts_with(u"WHERE") && !rest.starts_with(u"ORDER") &&
      !rest.starts_with(u";")) {
    return std::nullopt;
  }
  StringView name = sql.substr(start, end - start);
  if (close) name = name.substr(1, name.size() - 2);
  return String(name);
}

}  // namespace

RecordsetObject::RecordsetObject() = default;

RecordsetObject::~RecordsetObject() {
  if (connection_) connection_->Detach(this);
}

void RecordsetObject::RequireOpen() const {
  if (!open_) throw AdoError(adErrObjectClosed, kSource);
}

void RecordsetObject::RequireClosed() const {
  if (open_) throw AdoError(adErrObjectOpen, kSource);
}

std::optional<size_t> RecordsetObject::FindColumn(StringView name) const {
  const auto it = column_index_.find(name);
  if (it == column_index_.end()) return std::nullopt;
  return it->second;
}

Ref<FieldObject> RecordsetObject::FieldAt(size_t column) {
  assert(column < columns_.size());
  return MakeRef<FieldObject>(Ref<RecordsetObject>(this), column, generation_);
}

Ref<FieldsObject> RecordsetObject::Fields() {
  return MakeRef<FieldsObject>(Ref<RecordsetObject>(this));
}

void RecordsetObject::SetColumns(std::vector<ColumnInfo> columns) {
  ++generation_;
  column_index_.clear();
  columns_ = std::move(columns);
  for (size_t i = 0; i < columns_.size(); ++i) {
    column_index_.emplace(columns_[i].name, i);
  }
}

void RecordsetObject::AppendColumn(ColumnInfo column) {
  // Columns of a recordset in memory may be added while it is closed; ADO also lets an open
  // one without rows grow, which pages use to build a table column by column.
  if (open_ && (connection_ || !records().empty())) {
    throw AdoError(adErrIllegalOperation, u"ADODB.Fields");
  }
  column_index_.emplace(column.name, columns_.size());
  columns_.push_back(std::move(column));
}

data::ColumnInfo& RecordsetObject::DefineColumn(size_t column) {
  if (open_) throw AdoError(adErrIllegalOperation, u"ADODB.Field");
  return columns_[column];
}

void RecordsetObject::DeleteColumn(size_t column) {
  if (open_) throw AdoError(adErrIllegalOperation, u"ADODB.Fields");
  auto columns = columns_;
  columns.erase(columns.begin() + static_cast<ptrdiff_t>(column));
  SetColumns(std::move(columns));
}

void RecordsetObject::ResetState() {
  cursor_.reset();
  streamed_ = false;
  row_.clear();
  stream_eof_ = false;
  stream_position_ = 0;
  records_ = std::make_shared<Records>();
  view_.clear();
  pos_ = 0;
  edit_mode_ = adEditNone;
  edit_values_.clear();
  edit_changed_.clear();
  table_.Clear();
  key_columns_.clear();
}

// Opening

void RecordsetObject::Open(Args args) {
  CheckArgCount(args, 0, 5);
  RequireClosed();
  if (HasArg(args, 2) && ToLong(args[2]) != -1) cursor_type_ = ToLong(args[2]);
  if (HasArg(args, 3) && ToLong(args[3]) != -1) lock_type_ = ToLong(args[3]);
  const int32_t options = HasArg(args, 4) ? ToLong(args[4]) : -1;
  Variant source = HasArg(args, 0) ? args[0] : source_;
  Variant connection = HasArg(args, 1) ? args[1] : pending_connection_;

  std::vector<Variant> params;
  int32_t command_type = options;
  if (source.is_object() && source.as_object()) {
    auto* command = dynamic_cast<CommandObject*>(source.as_object());
    if (!command) throw AdoError(adErrInvalidArgument, kSource);
    if (IsMissingOrEmpty(connection)) connection = command->ActiveConnection();
    params = command->ParameterValues();
    if (command_type == -1) command_type = command->command_type_;
    source = Variant(command->command_text_);
  }

  // A saved recordset: named as a file (adCmdFile), or a file path given without a connection.
  if (source.is_string() && !source.as_string().empty() &&
      ((options != -1 && (options & adCmdFile)) ||
       (IsMissingOrEmpty(connection) &&
        std::filesystem::is_regular_file(std::filesystem::path(source.as_string().ToUtf8()))))) {
    OpenPersisted(source.as_string());
    return;
  }
  if (IsMissingOrEmpty(source) && IsMissingOrEmpty(connection)) {
    // A recordset in memory: its columns come from Fields.Append.
    if (columns_.empty()) throw AdoError(adErrInvalidConnection, kSource);
    ResetState();
    if (cursor_type_ == adOpenForwardOnly || cursor_type_ == adOpenDynamic)
      cursor_type_ = adOpenStatic;
    if (lock_type_ == adLockReadOnly) lock_type_ = adLockBatchOptimistic;
    cursor_location_ = adUseClient;
    connection_ = nullptr;
    open_ = true;
    return;
  }

  Ref<ConnectionObject> cn;
  if (connection.is_object() && connection.as_object()) {
    cn = Ref<ConnectionObject>(dynamic_cast<ConnectionObject*>(connection.as_object()));
    if (!cn) throw AdoError(adErrInvalidConnection, kSource);
  } else if (connection.is_string() && !connection.as_string().empty()) {
    cn = MakeRef<ConnectionObject>();
    Variant open_args[] = {connection};
    cn->Open(open_args);
  }
  if (!cn || !cn->IsOpen()) throw AdoError(adErrInvalidConnection, kSource);
  if (IsMissingOrEmpty(source))
    throw AdoError(adErrInvalidConnection, kSource,
                   u"Command text was not set for the command object.");
  if (!cursor_location_set_) cursor_location_ = cn->CursorLocation();
  connection_ = cn;
  source_ = Variant(ToString(source));
  OpenSource(ToString(source), params, command_type);
}

void RecordsetObject::OpenSource(const String& text, std::span<const Variant> params,
                                 int32_t command_type) {
  if (cursor_type_ < 0) cursor_type_ = adOpenForwardOnly;
  if (lock_type_ < 0) lock_type_ = adLockReadOnly;
  if (cursor_location_ == adUseClient) cursor_type_ = adOpenStatic;
  command_text_ = connection_->CommandTextFor(text, command_type < 0 ? -1 : command_type & ~0x80);
  command_params_.assign(params.begin(), params.end());
  command_options_ = command_type;
  data::StatementResult result = connection_->Run(command_text_, command_params_);
  OpenOnResult(connection_, Variant(text), std::move(result), cursor_type_, lock_type_);
  if (open_ && lock_type_ != adLockReadOnly) {
    const int32_t kind = command_type & 0xFFFF;
    if (kind == 2 || kind == 512 || command_text_ != text) {
      const StringView name = TrimBlanks(text);
      table_ = name.size() >= 2 && name.front() == u'[' && name.back() == u']'
                   ? String(name.substr(1, name.size() - 2))
                   : String(name);
    }
    FindSourceTable();
  }
}

void RecordsetObject::OpenOnResult(Ref<ConnectionObject> cn, Variant source,
                                   data::StatementResult result, int32_t cursor_type,
                                   int32_t lock_type) {
  ResetState();
  if (connection_ && connection_ != cn) connection_->Detach(this);
  connection_ = std::move(cn);
  source_ = std::move(source);
  cursor_type_ = cursor_type;
  lock_type_ = lock_type;
  if (!result.rows) {
    open_ = false;  // a statement without rows gives a closed recordset
    return;
  }
  SetColumns(result.rows->Columns());
  open_ = true;
  const bool stream = cursor_type_ == adOpenForwardOnly && lock_type_ == adLockReadOnly &&
                      cursor_location_ != adUseClient;
  if (stream) {
    cursor_ = std::move(result.rows);
    streamed_ = true;
    connection_->Attach(this);
    FetchNext();
    return;
  }
  Materialise(*result.rows);
}

void RecordsetObject::OpenOnRowset(Ref<ConnectionObject> cn, Rowset rowset) {
  data::StatementResult result;
  result.rows = std::make_unique<RowsetCursor>(std::move(rowset));
  cursor_location_ = adUseClient;
  OpenOnResult(std::move(cn), Variant(), std::move(result), adOpenStatic, adLockReadOnly);
}

void RecordsetObject::Materialise(Cursor& cursor) {
  std::vector<Variant> row;
  try {
    while ((max_records_ <= 0 || records().size() < static_cast<size_t>(max_records_)) &&
           cursor.Fetch(row)) {
      records().emplace_back().values = std::move(row);
      row = {};
    }
  } catch (const ProviderError& failure) {
    connection_->Fail(failure);
  }
  RebuildView();
  pos_ = 0;
}

void RecordsetObject::FetchNext() {
  if (!cursor_ || (max_records_ > 0 && stream_position_ >= max_records_)) {
    stream_eof_ = true;
    cursor_.reset();
    return;
  }
  try {
    if (cursor_->Fetch(row_)) {
      ++stream_position_;
      return;
    }
  } catch (const ProviderError& failure) {
    stream_eof_ = true;
    cursor_.reset();
    connection_->Fail(failure);
  }
  stream_eof_ = true;
  cursor_.reset();
}

void RecordsetObject::ConnectionClosing() {
  if (streamed_) {
    ResetState();
    open_ = false;
  }
  connection_ = nullptr;
}

void RecordsetObject::FindSourceTable() {
  if (table_.empty()) {
    String common;
    bool same = !columns_.empty();
    for (const ColumnInfo& c : columns_) {
      if (c.base_table.empty() || (!common.empty() && !EqualsNoCase(common, c.base_table))) {
        same = false;
        break;
      }
      common = c.base_table;
    }
    if (same) table_ = common;
  }
  if (table_.empty()) {
    if (auto single = SingleTableOf(command_text_)) table_ = *single;
  }
  if (table_.empty() || !connection_) return;
  try {
    auto keys = connection_->Require().OpenSchema(adSchemaPrimaryKeys,
                                                  {Variant(), Variant(), Variant(table_)});
    for (; !keys->Eof(); keys->MoveNext()) {
      const Variant name = keys->Fields(u"COLUMN_NAME").Value();
      if (!name.is_string()) continue;
      if (auto column = FindColumn(name.as_string())) {
        key_columns_.push_back(*column);
        columns_[*column].attributes |= adFldKeyColumn;
      }
    }
  } catch (const Error&) {
    // Without the key, rows are found again by all their values.
  }
}

void RecordsetObject::Close() {
  RequireOpen();
  edit_mode_ = adEditNone;
  if (connection_) connection_->Detach(this);
  ResetState();
  open_ = false;
  if (connection_) {
    SetColumns({});
    connection_ = nullptr;
  }
}

void RecordsetObject::Requery() {
  RequireOpen();
  FinishEdit();
  if (!connection_) {
    RebuildView();
    pos_ = 0;
    return;
  }
  Ref<ConnectionObject> cn = connection_;
  const String table = table_;
  data::StatementResult result = cn->Run(command_text_, command_params_);
  OpenOnResult(cn, source_, std::move(result), cursor_type_, lock_type_);
  table_ = table;
  if (lock_type_ != adLockReadOnly) FindSourceTable();
}

// Position

bool RecordsetObject::Eof() {
  RequireOpen();
  if (Streaming()) return stream_eof_;
  return view_.empty() || pos_ >= static_cast<int64_t>(view_.size());
}

bool RecordsetObject::Bof() {
  RequireOpen();
  if (Streaming()) return stream_eof_ && stream_position_ == 0;
  return view_.empty() || pos_ < 0;
}

bool RecordsetObject::HasCurrent() const {
  if (Streaming()) return !stream_eof_;
  return pos_ >= 0 && pos_ < static_cast<int64_t>(view_.size()) &&
         !records()[view_[static_cast<size_t>(pos_)]].deleted;
}

RecordsetObject::Record& RecordsetObject::Current() {
  assert(!Streaming() && pos_ >= 0 && pos_ < static_cast<int64_t>(view_.size()));
  return records()[view_[static_cast<size_t>(pos_)]];
}

void RecordsetObject::RequireCurrent() {
  RequireOpen();
  if (!HasCurrent()) throw AdoError(adErrNoCurrentRecord, kSource);
}

void RecordsetObject::RequireScrollable() {
  if (Streaming()) throw AdoError(kErrCannotFetchBackward, kSource);
}

// A deleted record stays current until the cursor leaves it; then it leaves the view.
void RecordsetObject::DropDeletedAtCursor() {
  if (Streaming() || pos_ < 0 || pos_ >= static_cast<int64_t>(view_.size())) return;
  if (!records()[view_[static_cast<size_t>(pos_)]].deleted) return;
  view_.erase(view_.begin() + pos_);
}

void RecordsetObject::MoveNext() {
  RequireOpen();
  FinishEdit();
  if (Streaming()) {
    if (stream_eof_) throw AdoError(adErrNoCurrentRecord, kSource);
    FetchNext();
    return;
  }
  if (pos_ >= static_cast<int64_t>(view_.size())) throw AdoError(adErrNoCurrentRecord, kSource);
  const bool was_deleted = pos_ >= 0 && records()[view_[static_cast<size_t>(pos_)]].deleted;
  DropDeletedAtCursor();
  if (!was_deleted) ++pos_;
}

void RecordsetObject::MovePrevious() {
  RequireOpen();
  FinishEdit();
  RequireScrollable();
  if (pos_ < 0) throw AdoError(adErrNoCurrentRecord, kSource);
  DropDeletedAtCursor();
  --pos_;
  if (pos_ >= static_cast<int64_t>(view_.size())) pos_ = static_cast<int64_t>(view_.size()) - 1;
}

void RecordsetObject::MoveFirst() {
  RequireOpen();
  FinishEdit();
  if (Streaming()) {
    // A forward-only cursor goes back to the start by running its statement again.
    if (stream_position_ <= 1 && !stream_eof_) return;
    Requery();
    return;
  }
  DropDeletedAtCursor();
  pos_ = 0;
}

void RecordsetObject::MoveLast() {
  RequireOpen();
  FinishEdit();
  RequireScrollable();
  DropDeletedAtCursor();
  pos_ = view_.empty() ? 0 : static_cast<int64_t>(view_.size()) - 1;
}

void RecordsetObject::Move(int32_t count, const Variant& start) {
  RequireOpen();
  FinishEdit();
  if (Streaming()) {
    if (count < 0) throw AdoError(kErrCannotFetchBackward, kSource);
    if (count > 0 && stream_eof_) throw AdoError(adErrNoCurrentRecord, kSource);
    for (int32_t i = 0; i < count && !stream_eof_; ++i)
      FetchNext();
    return;
  }
  if (!IsMissingOrEmpty(start)) SetBookmark(start);
  if (count == 0) return;
  if ((count > 0 && pos_ >= static_cast<int64_t>(view_.size())) || (count < 0 && pos_ < 0)) {
    throw AdoError(adErrNoCurrentRecord, kSource);
  }
  const bool was_deleted =
      HasCurrent() ? false : (pos_ >= 0 && pos_ < static_cast<int64_t>(view_.size()));
  DropDeletedAtCursor();
  int64_t target = pos_ + count - (was_deleted && count > 0 ? 1 : 0);
  if (target < 0) target = -1;
  if (target > static_cast<int64_t>(view_.size())) target = static_cast<int64_t>(view_.size());
  pos_ = target;
}

int32_t RecordsetObject::RecordCount() {
  RequireOpen();
  if (Streaming() || cursor_type_ == adOpenForwardOnly ||
      (cursor_type_ == adOpenDynamic && cursor_location_ != adUseClient)) {
    return -1;
  }
  int32_t count = 0;
  for (const uint32_t index : view_) {
    if (!records()[index].deleted) ++count;
  }
  return count;
}

// Values

const Variant& RecordsetObject::Value(size_t column) {
  if (!open_) throw AdoError(adErrObjectClosed, u"ADODB.Field");
  if (edit_mode_ != adEditNone) return edit_values_[column];
  if (Streaming()) {
    if (stream_eof_) throw AdoError(adErrNoCurrentRecord, u"ADODB.Field");
    return row_[column];
  }
  if (!HasCurrent()) throw AdoError(adErrNoCurrentRecord, u"ADODB.Field");
  return Current().values[column];
}

Variant RecordsetObject::OriginalValue(size_t column) {
  if (!open_) throw AdoError(adErrObjectClosed, u"ADODB.Field");
  if (Streaming()) return Value(column);
  if (!HasCurrent()) throw AdoError(adErrNoCurrentRecord, u"ADODB.Field");
  const Record& record = Current();
  if (edit_mode_ == adEditAdd) return Variant::Null();
  return record.original.empty() ? record.values[column] : record.original[column];
}

Variant RecordsetObject::UnderlyingValue(size_t column) {
  if (!open_) throw AdoError(adErrObjectClosed, u"ADODB.Field");
  if (Streaming() || !connection_ || key_columns_.empty() || edit_mode_ == adEditAdd) {
    return OriginalValue(column);
  }
  if (!HasCurrent()) throw AdoError(adErrNoCurrentRecord, u"ADODB.Field");
  // What the source holds now, read again by the record's key.
  String where;
  std::vector<Variant> params = KeyParams(Current(), where);
  const String sql = u"SELECT " + QuotedName(SourceName(column)) + u" FROM " + QuotedName(table_) +
                     u" WHERE " + where;
  data::StatementResult result = connection_->Run(sql, params);
  std::vector<Variant> row;
  if (result.rows && result.rows->Fetch(row) && !row.empty()) return row[0];
  return Variant::Null();
}

void RecordsetObject::SetValue(size_t column, const Variant& value) {
  if (!open_) throw AdoError(adErrObjectClosed, u"ADODB.Field");
  RequireUpdatable();
  if (edit_mode_ == adEditNone) BeginEdit();
  const ColumnInfo& info = columns_[column];
  Variant converted;
  try {
    // Columns of a database keep exact numbers exact; a table in memory rounds to its scale.
    converted = connection_ || !table_.empty() ? ConvertToColumn(value, info)
                                               : ConvertToType(value, info.type);
  } catch (const Error&) {
    throw AdoError(kErrMultipleStep, u"ADODB.Field");
  }
  if (!connection_) {
    // A table in memory keeps to its column definitions as a database would.
    if ((info.type == adNumeric || info.type == adDecimal) && converted.type() == VarType::Double &&
        info.numeric_scale <= 28) {
      const double scale = std::pow(10.0, info.numeric_scale);
      converted = Variant(RoundHalfEven(converted.as_double() * scale) / scale);
    }
    const bool nullable = (info.attributes & (adFldIsNullable | adFldMayBeNull)) != 0;
    if (converted.is_null() && !nullable) throw AdoError(kErrMultipleStep, u"ADODB.Field");
    if (converted.is_string() && info.defined_size > 0 &&
        converted.as_string().size() > static_cast<size_t>(info.defined_size)) {
      throw AdoError(kErrMultipleStep, u"ADODB.Field");
    }
  }
  edit_values_[column] = std::move(converted);
  edit_changed_[column] = true;
}

// Changes

void RecordsetObject::RequireUpdatable() {
  RequireOpen();
  const bool updatable =
      lock_type_ != adLockReadOnly && !Streaming() && (!connection_ || !table_.empty());
  if (!updatable) throw AdoError(adErrFeatureNotAvailable, kSource);
}

void RecordsetObject::BeginEdit() {
  RequireCurrent();
  edit_values_ = Current().values;
  edit_changed_.assign(columns_.size(), false);
  edit_mode_ = adEditInProgress;
}

void RecordsetObject::FinishEdit() {
  if (edit_mode_ != adEditNone) Update({});
}

void RecordsetObject::AddNew(Args args) {
  CheckArgCount(args, 0, 2);
  RequireUpdatable();
  FinishEdit();
  DropDeletedAtCursor();
  Record record;
  record.values.assign(columns_.size(), Variant::Null());
  records().push_back(std::move(record));
  view_.push_back(static_cast<uint32_t>(records().size() - 1));
  pos_ = static_cast<int64_t>(view_.size()) - 1;
  edit_values_ = records().back().values;
  edit_changed_.assign(columns_.size(), false);
  edit_mode_ = adEditAdd;
  if (HasArg(args, 0)) Update(args);
}

void RecordsetObject::Update(Args args) {
  CheckArgCount(args, 0, 2);
  RequireOpen();
  if (HasArg(args, 0)) {
    if (!HasArg(args, 1)) throw AdoError(adErrInvalidArgument, kSource);
    if (args[0].is_array() != args[1].is_array()) throw AdoError(adErrInvalidArgument, kSource);
    auto set_one = [&](const Variant& name, const Variant& value) {
      SetValue(Fields()->ColumnOf(name), value);
    };
    if (args[0].is_array()) {
      const auto names = args[0].as_array()->elements();
      const auto values = args[1].as_array()->elements();
      if (names.size() != values.size()) throw AdoError(adErrInvalidArgument, kSource);
      for (size_t i = 0; i < names.size(); ++i)
        set_one(names[i], values[i]);
    } else {
      set_one(args[0], args[1]);
    }
  }
  if (edit_mode_ == adEditNone) return;
  Record& record = Current();
  if (Batched()) {
    // Marked only; the first change of a record keeps what the source holds, to find it by.
    if (edit_mode_ == adEditAdd) {
      record.pending = Pending::kNew;
    } else if (record.pending == Pending::kNone) {
      record.pending = Pending::kModified;
      record.original = record.values;
    }
    record.changed.resize(columns_.size(), false);
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (edit_changed_[i]) record.changed[i] = true;
    }
    record.values = std::move(edit_values_);
  } else {
    if (connection_) {
      if (edit_mode_ == adEditAdd) {
        WriteInsert(edit_values_, edit_changed_);
      } else {
        WriteUpdate(record, edit_values_, edit_changed_);
      }
    }
    record.values = std::move(edit_values_);
    record.original.clear();
  }
  edit_values_.clear();
  edit_changed_.clear();
  edit_mode_ = adEditNone;
}

void RecordsetObject::CancelUpdate() {
  RequireOpen();
  if (edit_mode_ == adEditAdd) {
    view_.erase(view_.begin() + pos_);
    records().pop_back();
    pos_ = view_.empty() ? 0 : static_cast<int64_t>(view_.size()) - 1;
  }
  edit_mode_ = adEditNone;
  edit_values_.clear();
  edit_changed_.clear();
}

void RecordsetObject::Delete(int32_t affect) {
  RequireUpdatable();
  if (affect != 1) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  if (edit_mode_ == adEditAdd) {
    CancelUpdate();
    return;
  }
  edit_mode_ = adEditNone;
  RequireCurrent();
  Record& record = Current();
  if (Batched()) {
    // A record added in this batch never reaches the source.
    record.pending = record.pending == Pending::kNew ? Pending::kNone : Pending::kDeleted;
  } else if (connection_) {
    WriteDelete(record);
  }
  record.deleted = true;
}

bool RecordsetObject::Batched() const {
  return lock_type_ == adLockBatchOptimistic && !table_.empty();
}

void RecordsetObject::WritePending(Record& record) {
  switch (record.pending) {
    case Pending::kNone:
      return;
    case Pending::kNew:
      WriteInsert(record.values, record.changed);
      break;
    case Pending::kModified:
      WriteUpdate(record, record.values, record.changed);
      break;
    case Pending::kDeleted:
      WriteDelete(record);
      break;
  }
  record.pending = Pending::kNone;
  record.original.clear();
  record.changed.clear();
}

void RecordsetObject::UpdateBatch() {
  RequireOpen();
  FinishEdit();
  if (!Batched()) return;
  if (!connection_) throw AdoError(adErrInvalidConnection, kSource);
  // Every record is tried; one that fails stays marked, and the first failure is raised once
  // the others are written.
  std::exception_ptr first_failure;
  for (Record& record : records()) {
    try {
      WritePending(record);
    } catch (...) {
      if (!first_failure) first_failure = std::current_exception();
    }
  }
  if (first_failure) std::rethrow_exception(first_failure);
}

void RecordsetObject::CancelBatch() {
  RequireOpen();
  CancelUpdate();
  for (Record& record : records()) {
    switch (record.pending) {
      case Pending::kNone:
        continue;
      case Pending::kNew:
        record.deleted = true;
        break;
      case Pending::kModified:
        record.values = std::move(record.original);
        break;
      case Pending::kDeleted:
        record.deleted = false;
        if (!record.original.empty()) record.values = std::move(record.original);
        break;
    }
    record.pending = Pending::kNone;
    record.original.clear();
    record.changed.clear();
  }
  RebuildView();
  pos_ = 0;
}

int32_t RecordsetObject::Status() {
  RequireOpen();
  constexpr int32_t adRecNew = 1, adRecModified = 2, adRecDeleted = 4, adRecUnmodified = 8;
  if (Streaming() || pos_ < 0 || pos_ >= static_cast<int64_t>(view_.size())) return adRecUnmodified;
  const Record& record = records()[view_[static_cast<size_t>(pos_)]];
  if (record.deleted) return adRecDeleted;
  switch (record.pending) {
    case Pending::kNew:
      return adRecNew;
    case Pending::kModified:
      return adRecModified;
    default:
      return adRecUnmodified;
  }
}

void RecordsetObject::Resync(int32_t affect, int32_t resync_values) {
  constexpr int32_t adAffectCurrent = 1, adResyncUnderlyingValues = 1;
  RequireOpen();
  if (Streaming() || !connection_ || table_.empty() || key_columns_.empty())
    throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  if (edit_mode_ != adEditNone) throw AdoError(adErrFeatureNotAvailable, kSource);
  String names;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (!names.empty()) names.Append(u", ");
    names.Append(QuotedName(SourceName(i)));
  }
  std::vector<uint32_t> targets;
  if (affect == adAffectCurrent) {
    RequireCurrent();
    targets.push_back(view_[static_cast<size_t>(pos_)]);
  } else {
    targets = view_;
  }
  for (const uint32_t index : targets) {
    Record& record = records()[index];
    if (record.deleted || record.pending == Pending::kNew) continue;
    String where;
    const std::vector<Variant> params = KeyParams(record, where);
    data::StatementResult result = connection_->Run(
        u"SELECT " + names + u" FROM " + QuotedName(table_) + u" WHERE " + where, params);
    std::vector<Variant> row;
    // A row the source no longer has cannot be read again; ADO reports it as gone.
    if (!result.rows || !result.rows->Fetch(row) || row.size() != columns_.size())
      throw AdoError(kErrRowNotFound, kSource);
    if (resync_values == adResyncUnderlyingValues && record.pending == Pending::kModified) {
      record.original = std::move(row);
    } else {
      record.values = std::move(row);
      if (record.pending == Pending::kModified) {
        record.pending = Pending::kNone;
        record.original.clear();
        record.changed.clear();
      }
    }
  }
}

void RecordsetObject::Seek(const Variant& key_values, int32_t option) {
  constexpr int32_t adSeekFirstEQ = 1, adSeekLastEQ = 2, adSeekAfterEQ = 4, adSeekAfter = 8,
                    adSeekBeforeEQ = 16, adSeekBefore = 32;
  RequireOpen();
  if (Streaming() || key_columns_.empty() || index_.empty())
    throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  FinishEdit();
  std::vector<Variant> wanted;
  if (key_values.is_array()) {
    for (const Variant& v : key_values.as_array()->elements())
      wanted.push_back(v);
  } else {
    wanted.push_back(key_values);
  }
  if (wanted.empty() || wanted.size() > key_columns_.size())
    throw AdoError(adErrInvalidArgument, kSource);
  // The record's key against the values sought, on the columns given.
  const auto compare = [&](uint32_t index) {
    const Record& record = records()[index];
    for (size_t k = 0; k < wanted.size(); ++k) {
      const int c = CompareForSort(record.values[key_columns_[k]], wanted[k]);
      if (c != 0) return c;
    }
    return 0;
  };
  const auto key_less = [&](uint32_t a, uint32_t b) {
    for (const size_t column : key_columns_) {
      const int c = CompareForSort(records()[a].values[column], records()[b].values[column]);
      if (c != 0) return c < 0;
    }
    return false;
  };
  std::optional<size_t> found;  // a position in view_
  for (size_t p = 0; p < view_.size(); ++p) {
    const uint32_t index = view_[p];
    if (records()[index].deleted) continue;
    const int c = compare(index);
    bool fits = false;
    bool prefer_later = false;  // among fitting records, the one latest in key order
    switch (option) {
      case adSeekFirstEQ:
        fits = c == 0;
        break;
      case adSeekLastEQ:
        fits = c == 0;
        prefer_later = true;
        break;
      case adSeekAfterEQ:
        fits = c >= 0;
        break;
      case adSeekAfter:
        fits = c > 0;
        break;
      case adSeekBeforeEQ:
        fits = c <= 0;
        prefer_later = true;
        break;
      case adSeekBefore:
        fits = c < 0;
        prefer_later = true;
        break;
      default:
        throw AdoError(adErrInvalidArgument, kSource);
    }
    if (!fits) continue;
    if (!found) {
      found = p;
    } else if (prefer_later ? key_less(view_[*found], index) : key_less(index, view_[*found])) {
      found = p;
    }
  }
  pos_ = found ? static_cast<int64_t>(*found) : static_cast<int64_t>(view_.size());
}

Ref<RecordsetObject> RecordsetObject::Clone(int32_t lock_type) {
  RequireOpen();
  if (Streaming()) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  FinishEdit();
  auto copy = MakeRef<RecordsetObject>();
  copy->SetColumns(columns_);
  copy->records_ = records_;
  copy->connection_ = connection_;
  copy->source_ = source_;
  copy->cursor_type_ = cursor_type_;
  copy->lock_type_ = lock_type == adLockReadOnly ? adLockReadOnly : lock_type_;
  copy->cursor_location_ = cursor_location_;
  copy->page_size_ = page_size_;
  copy->index_ = index_;
  copy->table_ = table_;
  copy->key_columns_ = key_columns_;
  copy->command_text_ = command_text_;
  copy->command_params_ = command_params_;
  copy->command_options_ = command_options_;
  copy->open_ = true;
  copy->RebuildView();
  return copy;
}

const String& RecordsetObject::SourceName(size_t column) const {
  const ColumnInfo& c = columns_[column];
  return c.base_column.empty() ? c.name : c.base_column;
}

String RecordsetObject::QuotedName(StringView name) const {
  const auto [open, close] = connection_->Require().NameQuotes();
  if (name.find_first_of(u"[\"`.") != StringView::npos) return String(name);
  String quoted(open);
  for (const Char c : name) {
    quoted.Append(c);
    if (!close.empty() && c == close[0]) quoted.Append(c);
  }
  quoted.Append(close);
  return quoted;
}

// The WHERE text that finds a record again, by its key or, without one, by all its values.
std::vector<Variant> RecordsetObject::KeyParams(const Record& record, String& where) const {
  std::vector<Variant> params;
  std::vector<size_t> columns = key_columns_;
  if (columns.empty()) {
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (!(columns_[i].attributes & adFldLong) && !IsBinaryType(columns_[i].type))
        columns.push_back(i);
    }
  }
  const std::vector<Variant>& values = record.original.empty() ? record.values : record.original;
  for (const size_t column : columns) {
    if (!where.empty()) where.Append(u" AND ");
    where.Append(QuotedName(SourceName(column)));
    if (values[column].is_null() || values[column].is_empty()) {
      where.Append(u" IS NULL");
    } else {
      where.Append(u" = ?");
      params.push_back(values[column]);
    }
  }
  return params;
}

void RecordsetObject::WriteInsert(std::vector<Variant>& values, const std::vector<bool>& changed) {
  String names, marks;
  std::vector<Variant> params;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (!changed[i]) continue;
    if (!names.empty()) {
      names.Append(u", ");
      marks.Append(u", ");
    }
    names.Append(QuotedName(SourceName(i)));
    marks.Append(u"?");
    params.push_back(values[i]);
  }
  String sql = u"INSERT INTO " + QuotedName(table_);
  sql.Append(names.empty() ? String(u" DEFAULT VALUES")
                           : u" (" + names + u") VALUES (" + marks + u")");
  connection_->Run(sql, params);
  // The generated key: the auto-increment column, or else a lone integer key left unset.
  std::optional<size_t> generated;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].auto_increment.value_or(false)) generated = i;
  }
  if (!generated && key_columns_.size() == 1) {
    const int32_t type = columns_[key_columns_[0]].type;
    if (type == adInteger || type == adBigInt || type == adSmallInt) generated = key_columns_[0];
  }
  if (generated && !changed[*generated]) {
    const Variant key = connection_->Require().LastInsertKey();
    if (!key.is_empty()) values[*generated] = ConvertToType(key, columns_[*generated].type);
  }
}

void RecordsetObject::WriteUpdate(const Record& record, const std::vector<Variant>& values,
                                  const std::vector<bool>& changed) {
  String sets;
  std::vector<Variant> params;
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (!changed[i]) continue;
    if (!sets.empty()) sets.Append(u", ");
    sets.Append(QuotedName(SourceName(i)) + u" = ?");
    params.push_back(values[i]);
  }
  if (sets.empty()) return;
  String where;
  for (Variant& p : KeyParams(record, where))
    params.push_back(std::move(p));
  const auto result = connection_->Run(
      u"UPDATE " + QuotedName(table_) + u" SET " + sets + u" WHERE " + where, params);
  if (result.rows_affected == 0) throw AdoError(kErrRowNotFound, kSource);
}

void RecordsetObject::WriteDelete(const Record& record) {
  String where;
  const std::vector<Variant> params = KeyParams(record, where);
  const auto result =
      connection_->Run(u"DELETE FROM " + QuotedName(table_) + u" WHERE " + where, params);
  if (result.rows_affected == 0) throw AdoError(kErrRowNotFound, kSource);
}

// Filter, Sort, Find

void RecordsetObject::RebuildView() {
  view_.clear();
  std::optional<Criteria> criteria;
  std::vector<int32_t> types;
  for (const ColumnInfo& c : columns_)
    types.push_back(c.type);
  const ColumnLookup lookup = [this](StringView name) { return FindColumn(name); };
  std::vector<uint32_t> chosen;
  if (filter_.is_string() && !TrimBlanks(filter_.as_string()).empty()) {
    criteria = Criteria::Parse(filter_.as_string(), lookup, types);
  } else if (filter_.is_array()) {
    for (const Variant& bookmark : filter_.as_array()->elements()) {
      const double id = ToDouble(bookmark);
      if (id >= 1 && id <= static_cast<double>(records().size()))
        chosen.push_back(static_cast<uint32_t>(id - 1));
    }
  }
  // adFilterPendingRecords: the records a batch has still to write.
  const bool pending_only = filter_.is_numeric_type() && ToLong(filter_) == 1;
  if (filter_.is_array()) {
    for (const uint32_t index : chosen) {
      if (!records()[index].deleted) view_.push_back(index);
    }
  } else {
    for (uint32_t i = 0; i < records().size(); ++i) {
      if (records()[i].deleted) continue;
      if (pending_only && records()[i].pending == Pending::kNone) continue;
      if (criteria && !criteria->Matches(records()[i].values)) continue;
      view_.push_back(i);
    }
  }
  if (!TrimBlanks(sort_).empty()) {
    const auto keys = ParseSort(sort_, lookup);
    std::stable_sort(view_.begin(), view_.end(), [&](uint32_t a, uint32_t b) {
      for (const SortKey& key : keys) {
        const int c =
            CompareForSort(records()[a].values[key.column], records()[b].values[key.column]);
        if (c != 0) return key.descending ? c > 0 : c < 0;
      }
      return false;
    });
  }
}

void RecordsetObject::SetFilter(const Variant& given) {
  const Variant filter = given.is_object() ? ValueOf(given) : given;
  if (!filter.is_string() && !filter.is_array() && !filter.is_numeric_type() &&
      !filter.is_empty()) {
    throw AdoError(adErrInvalidArgument, kSource);
  }
  if (!open_) {
    filter_ = filter;
    return;
  }
  if (Streaming()) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  FinishEdit();
  const Variant before = filter_;
  filter_ = filter.is_empty() ? Variant(int32_t{0}) : filter;
  try {
    RebuildView();
  } catch (const Error&) {
    filter_ = before;
    RebuildView();
    throw;
  }
  pos_ = 0;
}

void RecordsetObject::SetSort(const String& sort) {
  if (!open_) {
    sort_ = sort;
    return;
  }
  if (Streaming()) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  FinishEdit();
  const String before = sort_;
  sort_ = sort;
  try {
    RebuildView();
  } catch (const Error&) {
    sort_ = before;
    RebuildView();
    throw;
  }
  pos_ = 0;
}

void RecordsetObject::Find(Args args) {
  CheckArgCount(args, 1, 4);
  RequireOpen();
  FinishEdit();
  const int32_t skip = HasArg(args, 1) ? ToLong(args[1]) : 0;
  const int32_t direction = HasArg(args, 2) ? ToLong(args[2]) : 1;
  std::vector<int32_t> types;
  for (const ColumnInfo& c : columns_)
    types.push_back(c.type);
  const Criteria criteria = Criteria::Parse(
      ToString(args[0]), [this](StringView name) { return FindColumn(name); }, types);
  if (Streaming()) {
    if (direction < 0 || skip < 0) throw AdoError(kErrCannotFetchBackward, kSource);
    if (stream_eof_) throw AdoError(adErrNoCurrentRecord, kSource);
    for (int32_t i = 0; i < skip && !stream_eof_; ++i)
      FetchNext();
    while (!stream_eof_ && !criteria.Matches(row_))
      FetchNext();
    return;
  }
  if (HasArg(args, 3)) {
    SetBookmark(args[3]);
  } else if (!HasCurrent()) {
    throw AdoError(adErrNoCurrentRecord, kSource);
  }
  const auto size = static_cast<int64_t>(view_.size());
  int64_t p = pos_ + (direction < 0 ? -skip : skip);
  if (direction < 0) {
    for (; p >= 0; --p) {
      if (p < size && criteria.Matches(records()[view_[static_cast<size_t>(p)]].values)) break;
    }
    pos_ = std::max<int64_t>(p, -1);
  } else {
    for (; p < size; ++p) {
      if (p >= 0 && criteria.Matches(records()[view_[static_cast<size_t>(p)]].values)) break;
    }
    pos_ = std::min(p, size);
  }
}

Variant RecordsetObject::Bookmark() {
  RequireOpen();
  if (Streaming()) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  if (!HasCurrent()) throw AdoError(adErrNoCurrentRecord, kSource);
  return Variant(static_cast<double>(view_[static_cast<size_t>(pos_)]) + 1);
}

void RecordsetObject::SetBookmark(const Variant& bookmark) {
  RequireOpen();
  if (Streaming()) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  const double id = ToDouble(bookmark);
  for (size_t i = 0; i < view_.size(); ++i) {
    if (static_cast<double>(view_[i]) + 1 == id) {
      FinishEdit();
      pos_ = static_cast<int64_t>(i);
      return;
    }
  }
  throw AdoError(adErrInvalidArgument, kSource);
}

// Paging

int32_t RecordsetObject::AbsolutePosition() {
  RequireOpen();
  if (Streaming()) return adPosUnknown;
  if (Bof()) return adPosBOF;
  if (Eof()) return adPosEOF;
  return static_cast<int32_t>(pos_ + 1);
}

void RecordsetObject::SetAbsolutePosition(int32_t position) {
  RequireOpen();
  RequireScrollable();
  if (position < 1 || position > static_cast<int32_t>(view_.size())) {
    throw AdoError(adErrInvalidArgument, kSource);
  }
  FinishEdit();
  DropDeletedAtCursor();
  pos_ = std::min<int64_t>(position - 1, static_cast<int64_t>(view_.size()));
}

int32_t RecordsetObject::PageCount() {
  const int32_t count = RecordCount();
  if (count < 0) return -1;
  return (count + page_size_ - 1) / page_size_;
}

int32_t RecordsetObject::AbsolutePage() {
  RequireOpen();
  if (Streaming()) return adPosUnknown;
  if (Bof()) return adPosBOF;
  if (Eof()) return adPosEOF;
  return static_cast<int32_t>(pos_ / page_size_ + 1);
}

void RecordsetObject::SetAbsolutePage(int32_t page) {
  RequireOpen();
  RequireScrollable();
  if (page < 1 || page > PageCount()) throw AdoError(adErrInvalidArgument, kSource);
  FinishEdit();
  DropDeletedAtCursor();
  pos_ = static_cast<int64_t>(page - 1) * page_size_;
}

// Reading many rows at once

Variant RecordsetObject::GetRows(Args args) {
  CheckArgCount(args, 0, 3);
  RequireOpen();
  FinishEdit();
  const int32_t wanted = HasArg(args, 0) ? ToLong(args[0]) : -1;
  if (HasArg(args, 1)) {
    const Variant start = args[1];
    if (start.is_numeric_type() && ToLong(start) == 1) {
      MoveFirst();
    } else if (start.is_numeric_type() && ToLong(start) == 2) {
      MoveLast();
    } else if (!(start.is_numeric_type() && ToLong(start) == 0)) {
      SetBookmark(start);
    }
  }
  std::vector<size_t> columns;
  if (HasArg(args, 2)) {
    const Variant& chosen = args[2];
    if (chosen.is_array()) {
      for (const Variant& c : chosen.as_array()->elements())
        columns.push_back(Fields()->ColumnOf(c));
    } else {
      columns.push_back(Fields()->ColumnOf(chosen));
    }
  } else {
    for (size_t i = 0; i < columns_.size(); ++i)
      columns.push_back(i);
  }
  if (!HasCurrent()) throw AdoError(adErrNoCurrentRecord, kSource);
  std::vector<std::vector<Variant>> rows;
  while (HasCurrent() && (wanted < 0 || rows.size() < static_cast<size_t>(wanted))) {
    auto& row = rows.emplace_back();
    for (const size_t c : columns)
      row.push_back(Value(c));
    MoveNext();
  }
  const ArrayBound bounds[] = {{0, static_cast<int64_t>(columns.size())},
                               {0, static_cast<int64_t>(rows.size())}};
  auto array = MakeRef<SafeArray>(VarType::Variant, bounds);
  for (size_t r = 0; r < rows.size(); ++r) {
    for (size_t c = 0; c < columns.size(); ++c) {
      const int32_t at[] = {static_cast<int32_t>(c), static_cast<int32_t>(r)};
      array->At(at) = rows[r][c];
    }
  }
  return Variant(array);
}

String RecordsetObject::GetString(Args args) {
  CheckArgCount(args, 0, 5);
  RequireOpen();
  FinishEdit();
  if (HasArg(args, 0) && ToLong(args[0]) != 2) throw AdoError(adErrInvalidArgument, kSource);
  const int32_t wanted = HasArg(args, 1) ? ToLong(args[1]) : -1;
  const String column_delimiter = HasArg(args, 2) ? ToString(args[2]) : String(u"\t");
  const String row_delimiter = HasArg(args, 3) ? ToString(args[3]) : String(u"\r");
  const String null_text = HasArg(args, 4) ? ToString(args[4]) : String();
  if (!HasCurrent()) throw AdoError(adErrNoCurrentRecord, kSource);
  String text;
  for (int32_t n = 0; HasCurrent() && (wanted < 0 || n < wanted); ++n) {
    for (size_t c = 0; c < columns_.size(); ++c) {
      if (c > 0) text.Append(column_delimiter);
      const Variant& v = Value(c);
      text.Append(v.is_null() || v.is_empty() ? null_text : ToString(v));
    }
    text.Append(row_delimiter);
    MoveNext();
  }
  return text;
}

bool RecordsetObject::Supports(int32_t options) {
  constexpr int32_t adHoldRecords = 0x100, adMovePrevious = 0x200, adAddNew = 0x1000400,
                    adDelete = 0x1000800, adUpdate = 0x1008000, adBookmark = 0x2000,
                    adApproxPosition = 0x4000, adUpdateBatch = 0x10000, adFind = 0x80000,
                    adResync = 0x20000, adIndex = 0x100000, adSeek = 0x400000;
  int32_t mask = adFind;
  if (open_ && !Streaming() && !key_columns_.empty()) {
    mask |= adIndex | adSeek;
    if (connection_ && !table_.empty()) mask |= adResync;
  }
  if (open_ && !Streaming() && cursor_type_ != adOpenForwardOnly) {
    mask |= adHoldRecords | adMovePrevious | adBookmark | adApproxPosition;
  }
  if (open_ && lock_type_ != adLockReadOnly && !Streaming() && (!connection_ || !table_.empty())) {
    mask |= adAddNew | adDelete | adUpdate;
    if (lock_type_ == adLockBatchOptimistic) mask |= adUpdateBatch;
  }
  return (mask & options) == options;
}

Variant RecordsetObject::ActiveConnection() const {
  if (connection_) return Variant(connection_);
  if (!open_ && pending_connection_.is_object()) return pending_connection_;
  if (!open_ && pending_connection_.is_string()) return pending_connection_;
  return Variant::Nothing();
}

void RecordsetObject::SetActiveConnection(const Variant& value) {
  if (!open_) {
    pending_connection_ = value;
    return;
  }
  // Letting go of the connection keeps the rows in memory: a disconnected recordset.
  if (value.is_nothing() && !Streaming()) {
    if (connection_) connection_->Detach(this);
    connection_ = nullptr;
    return;
  }
  // A disconnected recordset of a table takes a connection again, to write its batch.
  auto* cn = value.is_object() ? dynamic_cast<ConnectionObject*>(value.as_object()) : nullptr;
  if (cn && !Streaming() && !connection_ && !table_.empty()) {
    if (!cn->IsOpen()) throw AdoError(adErrInvalidConnection, kSource);
    connection_ = Ref<ConnectionObject>(cn);
    return;
  }
  throw AdoError(adErrObjectOpen, kSource);
}

}  // namespace qv::ado

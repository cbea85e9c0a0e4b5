// ADODB.Recordset. Two ways of holding rows: a forward-only, read-only recordset on a server
// cursor streams them from the data layer one at a time (memory stays flat however many rows
// come), every other recordset holds its rows, which gives counting, paging, moving back,
// Filter, Sort, Find and bookmarks. A recordset with a connection writes AddNew, Update and
// Delete back to its single source table as parameterised statements; one without (Fields.Append
// then Open) is a table in memory.
#pragma once

#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "automation/dispatch.h"
#include "platform/data/backend.h"

namespace qv::ado {

class ConnectionObject;
class FieldsObject;
class FieldObject;
class CommandObject;

class RecordsetObject : public DispatchObject<RecordsetObject> {
 public:
  static const DispatchTable<RecordsetObject>& Table();
  RecordsetObject();
  ~RecordsetObject() override;

  // Opens on the result of a statement already run (Connection.Execute, Command.Execute).
  void OpenOnResult(Ref<ConnectionObject> cn, Variant source, data::StatementResult result,
                    int32_t cursor_type, int32_t lock_type);
  // Opens on a schema rowset.
  void OpenOnRowset(Ref<ConnectionObject> cn, data::Rowset rowset);
  // Called by the connection as it closes.
  void ConnectionClosing();

  // What Fields and Field read and write.
  bool IsOpen() const { return open_; }
  size_t ColumnCount() const { return columns_.size(); }
  const data::ColumnInfo& Column(size_t i) const { return columns_[i]; }
  std::optional<size_t> FindColumn(StringView name) const;
  const Variant& Value(size_t column);
  void SetValue(size_t column, const Variant& value);
  Variant OriginalValue(size_t column);
  Variant UnderlyingValue(size_t column);
  void AppendColumn(data::ColumnInfo column);
  // A column's definition, for changing its Precision or NumericScale before Open (3219 after).
  data::ColumnInfo& DefineColumn(size_t column);
  void DeleteColumn(size_t column);
  Ref<FieldObject> FieldAt(size_t column);
  // Changes whenever the columns do, which makes fields made before stale.
  uint32_t Generation() const { return generation_; }
  Ref<FieldsObject> Fields();

  // Members scripts call; public for the dispatch table.
  void Open(Args args);
  void Close();
  void Requery();
  void MoveNext();
  void MovePrevious();
  void MoveFirst();
  void MoveLast();
  void Move(int32_t count, const Variant& start);
  bool Eof();
  bool Bof();
  int32_t RecordCount();
  void AddNew(Args args);
  void Update(Args args);
  void CancelUpdate();
  void Delete(int32_t affect);
  // Batch updating (adLockBatchOptimistic on a source table): Update and Delete only mark
  // records, UpdateBatch writes what is marked and CancelBatch takes it back.
  void UpdateBatch();
  void CancelBatch();
  // adRecNew, adRecModified, adRecDeleted or adRecUnmodified for the current record.
  int32_t Status();
  // A second recordset over the same records, with its own position, filter and order.
  Ref<RecordsetObject> Clone(int32_t lock_type);
  // Reads the records (adAffectCurrent: the current one) again from the source table by
  // their key; adResyncUnderlyingValues renews only what pending changes started from.
  void Resync(int32_t affect, int32_t resync_values);
  // Moves to the record whose primary key is `key_values` (one value or an array, in key
  // order) as `option` says: adSeekFirstEQ, adSeekLastEQ, adSeekAfterEQ, adSeekAfter,
  // adSeekBeforeEQ, adSeekBefore. No such record leaves EOF.
  void Seek(const Variant& key_values, int32_t option);
  // Writes the records Filter lets through to a new file in ADO's XML form (adPersistXML).
  void Save(const Variant& destination, int32_t format);
  Variant GetRows(Args args);
  String GetString(Args args);
  void Find(Args args);
  bool Supports(int32_t options);
  void SetFilter(const Variant& filter);
  void SetSort(const String& sort);
  Variant Bookmark();
  void SetBookmark(const Variant& bookmark);
  int32_t AbsolutePosition();
  void SetAbsolutePosition(int32_t position);
  int32_t AbsolutePage();
  void SetAbsolutePage(int32_t page);
  int32_t PageCount();
  Variant ActiveConnection() const;
  void SetActiveConnection(const Variant& value);
  void RequireOpen() const;
  void RequireClosed() const;
  int32_t EditMode() const { return edit_mode_; }

  int32_t cursor_type_ = 0;      // adOpenForwardOnly
  int32_t lock_type_ = 1;        // adLockReadOnly
  int32_t cursor_location_ = 2;  // adUseServer
  bool cursor_location_set_ = false;
  int32_t page_size_ = 10;
  int32_t cache_size_ = 1;
  int32_t max_records_ = 0;
  String index_;  // the Index that Seek searches: the primary key is the one it knows
  Variant filter_ = Variant(int32_t{0});
  String sort_;
  Variant source_;

 private:
  // What a batch still has to write of a record.
  enum class Pending : uint8_t { kNone, kNew, kModified, kDeleted };

  struct Record {
    std::vector<Variant> values;
    std::vector<Variant> original;  // the values read from the source, once edited
    bool deleted = false;
    Pending pending = Pending::kNone;
    std::vector<bool> changed;  // the columns a pending change sets
  };
  using Records = std::vector<Record>;

  bool Streaming() const { return cursor_ != nullptr || streamed_; }
  bool HasCurrent() const;
  Record& Current();
  void RequireCurrent();
  void RequireScrollable();
  void RequireUpdatable();
  void FetchNext();
  void ResetState();
  void SetColumns(std::vector<data::ColumnInfo> columns);
  void Materialise(data::Cursor& cursor);
  void RebuildView();
  void DropDeletedAtCursor();
  void FinishEdit();
  void BeginEdit();
  bool Batched() const;
  void WritePending(Record& record);
  void WriteInsert(std::vector<Variant>& values, const std::vector<bool>& changed);
  void WriteUpdate(const Record& record, const std::vector<Variant>& values,
                   const std::vector<bool>& changed);
  void WriteDelete(const Record& record);
  void FindSourceTable();
  String QuotedName(StringView name) const;
  // A column's name in the source table, which AS may have hidden.
  const String& SourceName(size_t column) const;
  std::vector<Variant> KeyParams(const Record& record, String& where) const;
  void OpenSource(const String& text, std::span<const Variant> params, int32_t options);
  // Opens a file that Save wrote: a recordset of its own, without a connection.
  void OpenPersisted(const String& path);

  bool open_ = false;
  Ref<ConnectionObject> connection_;
  Variant pending_connection_;  // ActiveConnection given before Open
  std::vector<data::ColumnInfo> columns_;
  std::unordered_map<String, size_t, NoCaseHash, NoCaseEqual> column_index_;
  uint32_t generation_ = 0;

  // A streamed recordset: the cursor and its one current row.
  std::unique_ptr<data::Cursor> cursor_;
  bool streamed_ = false;
  std::vector<Variant> row_;
  bool stream_eof_ = false;
  int64_t stream_position_ = 0;

  // A held recordset: every record (shared with its clones), the records Filter and Sort let
  // through in their order, and the position in that view (-1 before the first, view_.size()
  // after the last).
  Records& records() { return *records_; }
  const Records& records() const { return *records_; }
  std::shared_ptr<Records> records_ = std::make_shared<Records>();
  std::vector<uint32_t> view_;
  int64_t pos_ = 0;

  // The record being added or edited: its values until Update writes them.
  int32_t edit_mode_ = 0;
  std::vector<Variant> edit_values_;
  std::vector<bool> edit_changed_;

  // Where changes go: the table, and the columns of its key.
  String table_;
  std::vector<size_t> key_columns_;
  String command_text_;
  std::vector<Variant> command_params_;
  int32_t command_options_ = -1;
};

}  // namespace qv::ado

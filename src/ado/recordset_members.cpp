// The members of ADODB.Recordset that scripts see. The default member is Fields, so rs("Name")
// reads and rs("Name") = v writes a value of the current record.
#include "ado/ado_errors.h"
#include "ado/connection.h"
#include "ado/fields.h"
#include "ado/recordset.h"
#include "automation/convert.h"

namespace qv::ado {
namespace {

using Rs = RecordsetObject;

Variant None() {
  return Variant();
}

Variant FieldsGet(Rs& rs, Args args) {
  CheckArgCount(args, 0, 1);
  Ref<FieldsObject> fields = rs.Fields();
  if (args.empty()) return Variant(fields);
  return Variant(rs.FieldAt(fields->ColumnOf(args[0])));
}

void FieldsLet(Rs& rs, Args args, const Variant& value) {
  CheckArgCount(args, 1, 1);
  rs.SetValue(rs.Fields()->ColumnOf(args[0]), value);
}

// Properties that may only change while the recordset is closed.
template <int32_t Rs::*member>
void LetWhileClosed(Rs& rs, Args, const Variant& value) {
  rs.RequireClosed();
  rs.*member = ToLong(value);
}

}  // namespace

const DispatchTable<RecordsetObject>& RecordsetObject::Table() {
  static const auto table =
      DispatchTable<Rs>(u"Recordset")
          .Property(u"Fields", FieldsGet, FieldsLet)
          // Collect(index): a value of the current record without a Field in between.
          .Property(
              u"Collect",
              [](Rs& rs, Args args) {
                CheckArgCount(args, 1, 1);
                return rs.Value(rs.Fields()->ColumnOf(args[0]));
              },
              FieldsLet)
          .Method(u"Open",
                  [](Rs& rs, Args args) {
                    rs.Open(args);
                    return None();
                  })
          .Method(u"Close",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 0);
                    rs.Close();
                    return None();
                  })
          .Method(u"Requery",
                  [](Rs& rs, Args) {
                    rs.Requery();
                    return None();
                  })
          .Method(u"Resync",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 2);
                    rs.Resync(HasArg(args, 0) ? ToLong(args[0]) : 3,
                              HasArg(args, 1) ? ToLong(args[1]) : 2);
                    return None();
                  })
          .Method(u"Save",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 2);
                    rs.Save(HasArg(args, 0) ? args[0] : rs.source_,
                            HasArg(args, 1) ? ToLong(args[1]) : 1);
                    return None();
                  })
          .Method(u"Seek",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 1, 2);
                    rs.Seek(args[0], HasArg(args, 1) ? ToLong(args[1]) : 1);
                    return None();
                  })
          .Property(
              u"Index", [](Rs& rs, Args) { return Variant(rs.index_); },
              [](Rs& rs, Args, const Variant& v) { rs.index_ = ToString(v); })
          .Method(u"MoveNext",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 0);
                    rs.MoveNext();
                    return None();
                  })
          .Method(u"MovePrevious",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 0);
                    rs.MovePrevious();
                    return None();
                  })
          .Method(u"MoveFirst",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 0);
                    rs.MoveFirst();
                    return None();
                  })
          .Method(u"MoveLast",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 0);
                    rs.MoveLast();
                    return None();
                  })
          .Method(u"Move",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 1, 2);
                    rs.Move(ToLong(args[0]), HasArg(args, 1) ? args[1] : Variant());
                    return None();
                  })
          .Property(u"EOF", [](Rs& rs, Args) { return Variant(rs.Eof()); })
          .Property(u"BOF", [](Rs& rs, Args) { return Variant(rs.Bof()); })
          .Property(u"RecordCount", [](Rs& rs, Args) { return Variant(rs.RecordCount()); })
          .Property(u"State", [](Rs& rs, Args) { return Variant(int32_t{rs.IsOpen() ? 1 : 0}); })
          .Method(u"AddNew",
                  [](Rs& rs, Args args) {
                    rs.AddNew(args);
                    return None();
                  })
          .Method(u"Update",
                  [](Rs& rs, Args args) {
                    rs.Update(args);
                    return None();
                  })
          // One result per statement here: after it there is none, which ADO tells with Nothing.
          .Method(u"NextRecordset",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 1);
                    rs.RequireOpen();
                    rs.Close();
                    return Variant::Nothing();
                  })
          .Method(u"UpdateBatch",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 1);
                    rs.UpdateBatch();
                    return None();
                  })
          .Method(u"CancelUpdate",
                  [](Rs& rs, Args) {
                    rs.CancelUpdate();
                    return None();
                  })
          .Method(u"CancelBatch",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 1);
                    rs.CancelBatch();
                    return None();
                  })
          .Method(u"Clone",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 1);
                    return Variant(rs.Clone(HasArg(args, 0) ? ToLong(args[0]) : -1));
                  })
          .Method(u"Delete",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 0, 1);
                    rs.Delete(HasArg(args, 0) ? ToLong(args[0]) : 1);
                    return None();
                  })
          .Property(u"EditMode",
                    [](Rs& rs, Args) {
                      rs.RequireOpen();
                      return Variant(rs.EditMode());
                    })
          .Method(u"GetRows", [](Rs& rs, Args args) { return rs.GetRows(args); })
          .Method(u"GetString", [](Rs& rs, Args args) { return Variant(rs.GetString(args)); })
          .Method(u"Find",
                  [](Rs& rs, Args args) {
                    rs.Find(args);
                    return None();
                  })
          .Method(u"Supports",
                  [](Rs& rs, Args args) {
                    CheckArgCount(args, 1, 1);
                    return Variant(rs.Supports(ToLong(args[0])));
                  })
          .Property(
              u"Filter", [](Rs& rs, Args) { return rs.filter_; },
              [](Rs& rs, Args, const Variant& v) { rs.SetFilter(v); })
          .Property(
              u"Sort", [](Rs& rs, Args) { return Variant(rs.sort_); },
              [](Rs& rs, Args, const Variant& v) { rs.SetSort(ToString(v)); })
          .Property(
              u"Bookmark", [](Rs& rs, Args) { return rs.Bookmark(); },
              [](Rs& rs, Args, const Variant& v) { rs.SetBookmark(v); })
          .Property(
              u"AbsolutePosition", [](Rs& rs, Args) { return Variant(rs.AbsolutePosition()); },
              [](Rs& rs, Args, const Variant& v) { rs.SetAbsolutePosition(ToLong(v)); })
          .Property(
              u"AbsolutePage", [](Rs& rs, Args) { return Variant(rs.AbsolutePage()); },
              [](Rs& rs, Args, const Variant& v) { rs.SetAbsolutePage(ToLong(v)); })
          .Property(u"PageCount",
                    [](Rs& rs, Args) {
                      rs.RequireOpen();
                      return Variant(rs.PageCount());
                    })
          .Property(
              u"PageSize", [](Rs& rs, Args) { return Variant(rs.page_size_); },
              [](Rs& rs, Args, const Variant& v) {
                const int32_t size = ToLong(v);
                if (size < 1) throw AdoError(adErrInvalidArgument, u"ADODB.Recordset");
                rs.page_size_ = size;
              })
          .Property(
              u"CacheSize", [](Rs& rs, Args) { return Variant(rs.cache_size_); },
              [](Rs& rs, Args, const Variant& v) {
                const int32_t size = ToLong(v);
                if (size < 1) throw AdoError(adErrInvalidArgument, u"ADODB.Recordset");
                rs.cache_size_ = size;
              })
          .Property(
              u"MaxRecords", [](Rs& rs, Args) { return Variant(rs.max_records_); },
              [](Rs& rs, Args, const Variant& v) {
                rs.RequireClosed();
                const int32_t count = ToLong(v);
                if (count < 0) throw AdoError(adErrInvalidArgument, u"ADODB.Recordset");
                rs.max_records_ = count;
              })
          .Property(
              u"CursorType", [](Rs& rs, Args) { return Variant(rs.cursor_type_); },
              LetWhileClosed<&Rs::cursor_type_>)
          .Property(
              u"LockType", [](Rs& rs, Args) { return Variant(rs.lock_type_); },
              LetWhileClosed<&Rs::lock_type_>)
          .Property(
              u"CursorLocation", [](Rs& rs, Args) { return Variant(rs.cursor_location_); },
              [](Rs& rs, Args, const Variant& v) {
                rs.RequireClosed();
                const int32_t location = ToLong(v);
                if (location != 2 && location != 3)
                  throw AdoError(adErrInvalidArgument, u"ADODB.Recordset");
                rs.cursor_location_ = location;
                rs.cursor_location_set_ = true;
              })
          .Property(
              u"Source",
              [](Rs& rs, Args) { return rs.source_.is_empty() ? Variant(String()) : rs.source_; },
              [](Rs& rs, Args, const Variant& v) {
                rs.RequireClosed();
                rs.source_ = v;
              },
              [](Rs& rs, Args, const Variant& v) {
                rs.RequireClosed();
                rs.source_ = v;
              })
          .Property(
              u"ActiveConnection", [](Rs& rs, Args) { return rs.ActiveConnection(); },
              [](Rs& rs, Args, const Variant& v) { rs.SetActiveConnection(v); },
              [](Rs& rs, Args, const Variant& v) { rs.SetActiveConnection(v); })
          .Property(u"Status", [](Rs& rs, Args) { return Variant(rs.Status()); })
          .Property(u"MarshalOptions", [](Rs&, Args) { return Variant(int32_t{0}); })
          .Parameterless({u"ActiveConnection"})
          .Default(u"Fields");
  return table;
}

}  // namespace qv::ado

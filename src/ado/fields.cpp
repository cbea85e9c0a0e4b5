// Fields and Field.
#include "ado/fields.h"

#include "ado/ado_errors.h"
#include "ado/properties.h"
#include "ado/recordset.h"
#include "ado/values.h"
#include "automation/convert.h"
#include "automation/safe_array.h"
#include "platform/data/data_types.h"

namespace qv::ado {

using namespace qv::data;

RecordsetObject& FieldObject::Owner() const {
  if (owner_->Generation() != generation_) throw AdoError(adErrObjectClosed, u"ADODB.Field");
  return *owner_;
}

namespace {

int32_t ActualSize(const Variant& value, int32_t type) {
  if (value.is_null() || value.is_empty()) return 0;
  if (value.is_string()) {
    const auto chars = static_cast<int32_t>(value.as_string().size());
    return IsWideTextType(type) || type == adBSTR ? chars * 2 : chars;
  }
  if (value.is_array()) return static_cast<int32_t>(value.as_array()->size());
  return FixedSize(type);
}

Variant FieldValue(FieldObject& f, Args args) {
  CheckArgCount(args, 0, 0);
  return f.Owner().Value(f.column());
}

void LetFieldValue(FieldObject& f, Args, const Variant& value) {
  f.Owner().SetValue(f.column(), value);
}

const ColumnInfo& Info(FieldObject& f) {
  return f.Owner().Column(f.column());
}

int32_t Precision(const ColumnInfo& c) {
  return c.precision;
}

// Appending text or bytes to a long value, piece by piece.
Variant AppendChunk(FieldObject& f, Args args) {
  CheckArgCount(args, 1, 1);
  RecordsetObject& rs = f.Owner();
  const Variant current = rs.Value(f.column());
  const int32_t type = rs.Column(f.column()).type;
  if (IsBinaryType(type)) {
    const Variant piece = ConvertToType(args[0], type);
    std::vector<Variant> bytes;
    if (current.is_array()) {
      for (const Variant& b : current.as_array()->elements())
        bytes.push_back(b);
    }
    if (piece.is_array()) {
      for (const Variant& b : piece.as_array()->elements())
        bytes.push_back(b);
    }
    rs.SetValue(f.column(), Variant(SafeArray::FromValues(std::move(bytes), VarType::Byte)));
  } else {
    String text = current.is_null() || current.is_empty() ? String() : ToString(current);
    text.Append(ToString(args[0]));
    rs.SetValue(f.column(), Variant(text));
  }
  return Variant();
}

Variant GetChunk(FieldObject& f, Args args) {
  CheckArgCount(args, 1, 1);
  const Variant value = f.Owner().Value(f.column());
  const int32_t length = ToLong(args[0]);
  if (length < 0) throw AdoError(adErrInvalidArgument, u"ADODB.Field");
  // Each call returns the start of the value; scripts ask for the whole of it in practice.
  if (value.is_string())
    return Variant(String(value.as_string().view().substr(0, static_cast<size_t>(length))));
  if (value.is_array()) {
    std::vector<Variant> bytes;
    for (const Variant& b : value.as_array()->elements()) {
      if (bytes.size() >= static_cast<size_t>(length)) break;
      bytes.push_back(b);
    }
    return Variant(SafeArray::FromValues(std::move(bytes), VarType::Byte));
  }
  return value;
}

}  // namespace

const DispatchTable<FieldObject>& FieldObject::Table() {
  static const auto table =
      DispatchTable<FieldObject>(u"Field")
          .Property(u"Value", FieldValue, LetFieldValue)
          .Property(u"Name", [](FieldObject& f, Args) { return Variant(Info(f).name); })
          .Property(u"Type", [](FieldObject& f, Args) { return Variant(Info(f).type); })
          .Property(u"DefinedSize",
                    [](FieldObject& f, Args) {
                      const ColumnInfo& c = Info(f);
                      return Variant(c.defined_size ? c.defined_size : FixedSize(c.type));
                    })
          .Property(u"ActualSize",
                    [](FieldObject& f, Args) {
                      return Variant(ActualSize(f.Owner().Value(f.column()), Info(f).type));
                    })
          .Property(
              u"Precision",
              [](FieldObject& f, Args) {
                return Variant(static_cast<uint8_t>(Precision(Info(f))));
              },
              [](FieldObject& f, Args, const Variant& v) {
                f.Owner().DefineColumn(f.column()).precision = ToByte(v);
              })
          .Property(
              u"NumericScale", [](FieldObject& f, Args) { return Variant(Info(f).numeric_scale); },
              [](FieldObject& f, Args, const Variant& v) {
                f.Owner().DefineColumn(f.column()).numeric_scale = ToByte(v);
              })
          .Property(u"Attributes", [](FieldObject& f, Args) { return Variant(Info(f).attributes); })
          .Property(u"OriginalValue",
                    [](FieldObject& f, Args) { return f.Owner().OriginalValue(f.column()); })
          .Property(u"UnderlyingValue",
                    [](FieldObject& f, Args) { return f.Owner().UnderlyingValue(f.column()); })
          .Property(u"Status", [](FieldObject&, Args) { return Variant(int32_t{0}); })
          .Property(u"Properties",
                    [](FieldObject& f, Args) {
                      const ColumnInfo& c = Info(f);
                      std::vector<std::pair<String, Variant>> entries;
                      if (c.auto_increment)
                        entries.emplace_back(u"ISAUTOINCREMENT", *c.auto_increment);
                      entries.emplace_back(u"BASECOLUMNNAME", c.name);
                      entries.emplace_back(u"BASETABLENAME", c.base_table);
                      entries.emplace_back(u"KEYCOLUMN", (c.attributes & adFldKeyColumn) != 0);
                      entries.emplace_back(u"OPTIMIZE", false);
                      return Variant(MakeRef<PropertiesObject>(std::move(entries)));
                    })
          .Method(u"AppendChunk", AppendChunk)
          .Method(u"GetChunk", GetChunk)
          .Parameterless({u"Properties"})
          .Default(u"Value");
  return table;
}

size_t FieldsObject::ColumnOf(const Variant& given) const {
  RecordsetObject& rs = Owner();
  const Variant index = given.is_object() ? ValueOf(given) : given;
  if (index.is_string()) {
    if (auto column = rs.FindColumn(index.as_string())) return *column;
    throw AdoError(adErrItemNotFound, u"ADODB.Fields");
  }
  if (!index.is_numeric_type()) throw AdoError(adErrItemNotFound, u"ADODB.Fields");
  const int32_t ordinal = ToLong(index);
  if (ordinal < 0 || static_cast<size_t>(ordinal) >= rs.ColumnCount()) {
    throw AdoError(adErrItemNotFound, u"ADODB.Fields");
  }
  return static_cast<size_t>(ordinal);
}

Ref<Enumerator> FieldsObject::NewEnum() {
  RecordsetObject& rs = Owner();
  std::vector<Variant> items;
  for (size_t i = 0; i < rs.ColumnCount(); ++i)
    items.emplace_back(rs.FieldAt(i));
  return MakeRef<ListEnumerator>(std::move(items));
}

// Append(Name, Type, DefinedSize, Attrib, FieldValue): a column of a recordset in memory, or
// of a closed recordset about to be opened on no source.
void FieldsObject::Append(Args args) {
  CheckArgCount(args, 2, 5);
  RecordsetObject& rs = Owner();
  ColumnInfo column;
  column.name = ToString(args[0]);
  column.type = ToLong(args[1]);
  if (column.name.empty()) throw AdoError(adErrInvalidArgument, u"ADODB.Fields");
  if (rs.FindColumn(column.name)) throw AdoError(adErrObjectInCollection, u"ADODB.Fields");
  int32_t size = HasArg(args, 2) ? ToLong(args[2]) : 0;
  if (size < -1) throw AdoError(adErrInvalidArgument, u"ADODB.Fields");
  if (size == -1) size = kLongFieldSize;  // "as long as it needs", for the long types
  if ((IsTextType(column.type) || IsBinaryType(column.type)) && size == 0 &&
      column.type != adLongVarChar && column.type != adLongVarWChar &&
      column.type != adLongVarBinary && column.type != adBSTR) {
    throw AdoError(adErrInvalidArgument, u"ADODB.Fields");
  }
  column.defined_size = FixedSize(column.type) ? FixedSize(column.type) : size;
  column.attributes = HasArg(args, 3) ? ToLong(args[3]) : 0;
  if (column.attributes == -1) column.attributes = 0;
  if (column.type == adLongVarChar || column.type == adLongVarWChar ||
      column.type == adLongVarBinary) {
    column.attributes |= adFldLong;
    if (column.defined_size == 0) column.defined_size = kLongFieldSize;
  }
  if (FixedSize(column.type)) column.attributes |= adFldFixed;
  if (column.type == adNumeric || column.type == adDecimal) {
    column.precision = 18;
    column.numeric_scale = 0;
  }
  column.attributes |= adFldUpdatable;
  rs.AppendColumn(std::move(column));
  if (HasArg(args, 4)) rs.SetValue(rs.ColumnCount() - 1, args[4]);
}

const DispatchTable<FieldsObject>& FieldsObject::Table() {
  static const auto table =
      DispatchTable<FieldsObject>(u"Fields")
          .Property(
              u"Item",
              [](FieldsObject& f, Args args) {
                CheckArgCount(args, 1, 1);
                return Variant(f.Owner().FieldAt(f.ColumnOf(args[0])));
              },
              [](FieldsObject& f, Args args, const Variant& value) {
                CheckArgCount(args, 1, 1);
                f.Owner().SetValue(f.ColumnOf(args[0]), value);
              })
          .Property(u"Count",
                    [](FieldsObject& f, Args) {
                      return Variant(static_cast<int32_t>(f.Owner().ColumnCount()));
                    })
          .Method(u"Append",
                  [](FieldsObject& f, Args args) {
                    f.Append(args);
                    return Variant();
                  })
          .Method(u"Delete",
                  [](FieldsObject& f, Args args) {
                    CheckArgCount(args, 1, 1);
                    f.Owner().DeleteColumn(f.ColumnOf(args[0]));
                    return Variant();
                  })
          .Method(u"Refresh", [](FieldsObject&, Args) { return Variant(); })
          .Method(u"Update",
                  [](FieldsObject& f, Args) {
                    f.Owner().Update({});
                    return Variant();
                  })
          .Method(u"CancelUpdate",
                  [](FieldsObject& f, Args) {
                    f.Owner().CancelUpdate();
                    return Variant();
                  })
          .Default(u"Item");
  return table;
}

}  // namespace qv::ado

// Recordset.Save and Open of a saved recordset, in the XML form ADO persists recordsets in (the
// rowset schema, then one z:row per record with a column's value as an attribute and Null as
// no attribute), so that files travel between this engine and Windows pages. A saved table
// keeps its base table and key columns: opened again, given a connection, its batch writes back.
#include <cstdio>
#include <filesystem>

#include "ado/ado_errors.h"
#include "ado/connection.h"
#include "ado/recordset.h"
#include "ado/values.h"
#include "automation/convert.h"
#include "automation/date_time.h"
#include "platform/atomic_file.h"
#include "platform/data/data_types.h"
#include "platform/data/type_mapping.h"
#include "platform/xml.h"

namespace qv::ado {

using namespace qv::data;

namespace {

constexpr StringView kSource = u"ADODB.Recordset";
constexpr int32_t adOpenStatic = 3;
constexpr int32_t adLockReadOnly = 1;
constexpr int32_t adLockBatchOptimistic = 4;
constexpr int32_t adUseClient = 3;

// How a column type is written: the XML data type and, where that is not enough, ADO's own.
struct PersistType {
  int32_t type;
  StringView dt;
  StringView dbtype;  // "" when dt alone says it
};

constexpr PersistType kPersistTypes[] = {
    {adSmallInt, u"i2", u""},
    {adInteger, u"int", u""},
    {adBigInt, u"i8", u""},
    {adTinyInt, u"i1", u""},
    {adUnsignedTinyInt, u"ui1", u""},
    {adSingle, u"r4", u""},
    {adDouble, u"float", u""},
    {adCurrency, u"number", u"currency"},
    {adNumeric, u"number", u"numeric"},
    {adDecimal, u"number", u"decimal"},
    {adDate, u"dateTime", u"variantdate"},
    {adDBTimeStamp, u"dateTime", u"timestamp"},
    {adDBDate, u"date", u""},
    {adDBTime, u"time", u""},
    {adBoolean, u"boolean", u""},
    {adGUID, u"uuid", u""},
    {adVarWChar, u"string", u""},
    {adWChar, u"string", u"wchar"},
    {adLongVarWChar, u"string", u"longwchar"},
    {adVarChar, u"string", u"str"},
    {adChar, u"string", u"char"},
    {adLongVarChar, u"string", u"longstr"},
    {adVarBinary, u"bin.hex", u""},
    {adBinary, u"bin.hex", u"binary"},
    {adLongVarBinary, u"bin.hex", u"longbinary"},
};

const PersistType& PersistTypeOf(int32_t type) {
  for (const PersistType& t : kPersistTypes) {
    if (t.type == type) return t;
  }
  return kPersistTypes[16];  // adVarWChar: a value of any other type is written as its text
}

int32_t TypeFromPersisted(StringView dt, StringView dbtype) {
  for (const PersistType& t : kPersistTypes) {
    if (t.dt == dt && t.dbtype == dbtype) return t.type;
  }
  for (const PersistType& t : kPersistTypes) {
    if (t.dt == dt) return t.type;
  }
  return adVarWChar;
}

// Column names that are no XML names are written as c0, c1, ... with the name in rs:name.
bool IsXmlName(StringView name) {
  if (name.empty()) return false;
  for (size_t i = 0; i < name.size(); ++i) {
    const Char c = name[i];
    const bool letter = (c >= u'A' && c <= u'Z') || (c >= u'a' && c <= u'z') || c == u'_';
    const bool more = (c >= u'0' && c <= u'9') || c == u'-' || c == u'.';
    if (!letter && (i == 0 || !more)) return false;
  }
  return !EqualsNoCase(name.substr(0, std::min<size_t>(3, name.size())), u"xml");
}

String TwoDigits(int n) {
  char text[8];
  std::snprintf(text, sizeof text, "%02d", n);
  return String::FromUtf8(text);
}

String ValueText(const Variant& value, int32_t type) {
  if (IsDateType(type) && value.type() == VarType::Date) {
    const auto parts = SplitDate(value.as_date());
    if (!parts) return ToString(value);
    char day[16];
    std::snprintf(day, sizeof day, "%04d-%02d-%02d", parts->year, parts->month, parts->day);
    const String time =
        TwoDigits(parts->hour) + u":" + TwoDigits(parts->minute) + u":" + TwoDigits(parts->second);
    if (type == adDBDate) return String::FromUtf8(day);
    if (type == adDBTime) return time;
    return String::FromUtf8(day) + u"T" + time;
  }
  if (auto bytes = BytesOf(value)) {
    static const char kHex[] = "0123456789abcdef";
    std::string hex;
    for (const uint8_t b : *bytes) {
      hex.push_back(kHex[b >> 4]);
      hex.push_back(kHex[b & 15]);
    }
    return String::FromUtf8(hex);
  }
  return ToString(value);
}

Variant ValueFromText(const String& text, int32_t type) {
  if (IsBinaryType(type)) {
    const auto digit = [](Char c) -> int {
      if (c >= u'0' && c <= u'9') return c - u'0';
      if (c >= u'a' && c <= u'f') return c - u'a' + 10;
      if (c >= u'A' && c <= u'F') return c - u'A' + 10;
      return -1;
    };
    std::vector<uint8_t> bytes;
    for (size_t i = 0; i + 1 < text.size(); i += 2) {
      const int high = digit(text[i]), low = digit(text[i + 1]);
      if (high < 0 || low < 0) throw AdoError(adErrDataConversion, kSource);
      bytes.push_back(static_cast<uint8_t>(high * 16 + low));
    }
    return ByteArray(bytes);
  }
  if (IsDateType(type)) {
    if (auto date = ParseIsoDateTime(text)) return Variant::Date(*date);
  }
  if (type == adBoolean)
    return Variant(EqualsNoCase(text, u"true") || text == u"1" || EqualsNoCase(text, u"-1"));
  try {
    return ConvertToType(Variant(text), type);
  } catch (const Error&) {
    throw AdoError(adErrDataConversion, kSource);
  }
}

}  // namespace

void RecordsetObject::Save(const Variant& destination, int32_t format) {
  RequireOpen();
  if (Streaming()) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  if (format != 1) throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);
  if (!destination.is_string() || destination.as_string().empty())
    throw AdoError(adErrInvalidArgument, kSource);
  const String path = destination.as_string();
  if (std::filesystem::exists(std::filesystem::path(path.ToUtf8())))
    throw Error(static_cast<int32_t>(0x80030050), u"File already exists.", String(kSource));
  FinishEdit();

  XmlWriter w(u"\t", u"\n");
  w.Start(u"xml");
  w.Attribute(u"xmlns:s", u"uuid:BDC6E3F0-6DA3-11d1-A2A3-00AA00C14882");
  w.Attribute(u"xmlns:dt", u"uuid:C2F41010-65B3-11d1-A29F-00AA00C14882");
  w.Attribute(u"xmlns:rs", u"urn:schemas-microsoft-com:rowset");
  w.Attribute(u"xmlns:z", u"#RowsetSchema");
  w.Start(u"s:Schema");
  w.Attribute(u"id", u"RowsetSchema");
  w.Start(u"s:ElementType");
  w.Attribute(u"name", u"row");
  w.Attribute(u"content", u"eltOnly");
  if (!table_.empty()) w.Attribute(u"rs:updatable", u"true");
  std::vector<String> names;
  for (size_t i = 0; i < columns_.size(); ++i) {
    const ColumnInfo& c = columns_[i];
    names.push_back(IsXmlName(c.name) ? c.name : u"c" + NumberText(static_cast<int32_t>(i)));
    w.Start(u"s:AttributeType");
    w.Attribute(u"name", names.back());
    if (names.back() != c.name) w.Attribute(u"rs:name", c.name);
    w.Attribute(u"rs:number", NumberText(static_cast<int32_t>(i + 1)));
    if (!table_.empty()) {
      w.Attribute(u"rs:basetable", table_);
      w.Attribute(u"rs:basecolumn", SourceName(i));
    }
    if (c.attributes & adFldKeyColumn) w.Attribute(u"rs:keycolumn", u"true");
    if (c.auto_increment.value_or(false)) w.Attribute(u"rs:autoincrement", u"true");
    const PersistType& t = PersistTypeOf(c.type);
    w.Start(u"s:datatype");
    w.Attribute(u"dt:type", t.dt);
    if (!t.dbtype.empty()) w.Attribute(u"rs:dbtype", t.dbtype);
    const int32_t size = c.defined_size > 0 ? c.defined_size : FixedSize(c.type);
    if (size > 0) w.Attribute(u"dt:maxLength", NumberText(size));
    if (c.precision != 255) w.Attribute(u"rs:precision", NumberText(c.precision));
    if (c.numeric_scale != 255 && (c.type == adNumeric || c.type == adDecimal))
      w.Attribute(u"rs:scale", NumberText(c.numeric_scale));
    if (c.attributes & adFldLong) w.Attribute(u"rs:long", u"true");
    if (c.attributes & (adFldIsNullable | adFldMayBeNull)) w.Attribute(u"rs:maybenull", u"true");
    w.End();
    w.End();
  }
  w.Start(u"s:extends");
  w.Attribute(u"type", u"rs:rowbase");
  w.End();
  w.End();
  w.End();
  w.Start(u"rs:data");
  for (const uint32_t index : view_) {
    const Record& record = records()[index];
    if (record.deleted) continue;
    w.Start(u"z:row");
    for (size_t i = 0; i < columns_.size(); ++i) {
      const Variant& v = record.values[i];
      if (v.is_null() || v.is_empty()) continue;  // Null is an attribute left out
      w.Attribute(names[i], ValueText(v, columns_[i].type));
    }
    w.End();
  }
  w.End();
  fs::WriteFileAtomically(path, w.Finish().ToUtf8());
}

void RecordsetObject::OpenPersisted(const String& path) {
  XmlDocument doc;
  if (!doc.Load(path)) {
    throw Error(kErrFileNotFound,
                u"The file " + path +
                    u" could not be opened as a saved "
                    u"recordset: " +
                    doc.error(),
                String(kSource));
  }
  std::vector<ColumnInfo> columns;
  std::vector<String> names;  // the attribute of each column in z:row
  String base_table;
  std::vector<size_t> keys;
  std::vector<XmlNode> rows;
  const auto walk = [&](const XmlNode& node, const auto& self) -> void {
    for (const XmlNode& child : node.childNodes()) {
      if (!child.IsElement()) continue;
      const String name = child.baseName();
      if (name == u"AttributeType") {
        ColumnInfo c;
        const String attribute = child.getAttribute(u"name").value_or(String());
        c.name = child.getAttribute(u"rs:name").value_or(attribute);
        base_table = child.getAttribute(u"rs:basetable").value_or(base_table);
        c.base_column = child.getAttribute(u"rs:basecolumn").value_or(String());
        if (child.getAttribute(u"rs:keycolumn").value_or(String()) == u"true")
          keys.push_back(columns.size());
        if (child.getAttribute(u"rs:autoincrement").value_or(String()) == u"true")
          c.auto_increment = true;
        for (const XmlNode& type : child.childNodes()) {
          if (!type.IsElement() || type.baseName() != u"datatype") continue;
          c.type = TypeFromPersisted(type.getAttribute(u"dt:type").value_or(String(u"string")),
                                     type.getAttribute(u"rs:dbtype").value_or(String()));
          if (auto size = type.getAttribute(u"dt:maxLength"))
            c.defined_size = ToLong(Variant(*size));
          if (auto precision = type.getAttribute(u"rs:precision"))
            c.precision = ToByte(Variant(*precision));
          if (auto scale = type.getAttribute(u"rs:scale"))
            c.numeric_scale = ToByte(Variant(*scale));
          if (type.getAttribute(u"rs:long").value_or(String()) == u"true")
            c.attributes |= adFldLong;
          if (type.getAttribute(u"rs:maybenull").value_or(String()) == u"true")
            c.attributes |= adFldIsNullable | adFldMayBeNull;
        }
        if (c.type == 0) c.type = adVarWChar;
        c.attributes |= adFldUpdatable;
        columns.push_back(std::move(c));
        names.push_back(attribute);
        continue;
      }
      if (name == u"row" && child.nodeName() == u"z:row") {
        rows.push_back(child);
        continue;
      }
      self(child, self);
    }
  };
  walk(doc.documentElement(), walk);
  if (columns.empty()) {
    throw Error(kErrFileNotFound, u"The file " + path + u" holds no saved recordset.",
                String(kSource));
  }
  for (const size_t key : keys)
    columns[key].attributes |= adFldKeyColumn;
  ResetState();
  SetColumns(std::move(columns));
  for (const XmlNode& row : rows) {
    Record& record = records().emplace_back();
    record.values.assign(columns_.size(), Variant::Null());
    for (size_t i = 0; i < columns_.size(); ++i) {
      if (auto text = row.getAttribute(names[i]))
        record.values[i] = ValueFromText(*text, columns_[i].type);
    }
  }
  cursor_type_ = adOpenStatic;
  if (lock_type_ == adLockReadOnly || lock_type_ < 0) lock_type_ = adLockBatchOptimistic;
  cursor_location_ = adUseClient;
  connection_ = nullptr;
  table_ = base_table;
  key_columns_ = keys;
  source_ = Variant(path);
  open_ = true;
  RebuildView();
  pos_ = 0;
}

}  // namespace qv::ado

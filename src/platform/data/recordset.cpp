// Recordset, its fields and their values over a materialised Rowset.
#include "platform/data/recordset.h"

#include "automation/convert.h"
#include "automation/error.h"
#include "platform/data/connection.h"
#include "platform/data/data_types.h"
#include "platform/data/provider_error.h"

namespace qv::data {

const ColumnInfo& Field::Info() const {
  return owner_->Data().columns[column_];
}

const String& Field::Name() const {
  return Info().name;
}

int32_t Field::Type() const {
  return Info().type;
}

int32_t Field::DefinedSize() const {
  return Info().defined_size;
}

int32_t Field::Attributes() const {
  return Info().attributes;
}

const Variant& Field::Value() const {
  if (owner_->Eof()) {
    throw Error(kErrBofOrEof,
                u"Either BOF or EOF is True, or the current record has been deleted. Requested "
                u"operation requires a current record.",
                u"ADODB.Field");
  }
  return owner_->Data().rows[owner_->Position()][column_];
}

Variant Field::Properties(StringView name) const {
  if (EqualsNoCase(name, u"ISAUTOINCREMENT") && Info().auto_increment) {
    return Variant(*Info().auto_increment);
  }
  throw ItemNotFound(name);
}

const Field& FieldCollection::Item(int32_t index) const {
  if (index < 0 || index >= Count()) throw ItemNotFound(u"#" + ToString(Variant(index)));
  return fields_[static_cast<size_t>(index)];
}

const Field& FieldCollection::Item(StringView name) const {
  for (const Field& field : fields_) {
    if (EqualsNoCase(field.Name(), name)) return field;
  }
  throw ItemNotFound(name);
}

void Recordset::Assign(Rowset rowset) {
  rowset_ = std::move(rowset);
  fields_.fields_.clear();
  for (size_t i = 0; i < rowset_.columns.size(); ++i)
    fields_.fields_.emplace_back(*this, i);
  position_ = 0;
  open_ = true;
}

void Recordset::Open(StringView source, Connection& connection) {
  // A failed open leaves the recordset closed, not holding the rows of an earlier source.
  Close();
  auto opened = connection.OpenSource(source);
  Assign(std::move(opened->rowset_));
}

void Recordset::Close() noexcept {
  rowset_ = Rowset();
  fields_.fields_.clear();
  position_ = 0;
  open_ = false;
}

int32_t Recordset::State() const noexcept {
  return open_ ? adStateOpen : adStateClosed;
}

const FieldCollection& Recordset::Fields() const {
  if (!open_) {
    throw Error(kErrObjectClosed, u"Operation is not allowed when the object is closed.",
                u"ADODB.Recordset");
  }
  return fields_;
}

void Recordset::MoveFirst() {
  position_ = 0;
}

void Recordset::MoveNext() {
  if (Eof()) {
    throw Error(kErrBofOrEof,
                u"Either BOF or EOF is True, or the current record has been deleted. Requested "
                u"operation requires a current record.",
                u"ADODB.Recordset");
  }
  ++position_;
}

}  // namespace qv::data

// ADO's Recordset, Fields and Field over a materialised Rowset: forward reading, rewinding,
// columns by position (from 0) or by name without regard to case, and each field's type,
// size, attributes, value and "ISAUTOINCREMENT" property.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/string.h"
#include "automation/variant.h"
#include "platform/data/rowset.h"

namespace qv::data {

class Connection;
class Recordset;

class Field {
 public:
  Field(const Recordset& owner, size_t column) : owner_(&owner), column_(column) {}
  const String& Name() const;
  int32_t Type() const;  // AdoType
  int32_t DefinedSize() const;
  int32_t Attributes() const;
  // The value in the current row; raises kErrBofOrEof when there is none.
  const Variant& Value() const;
  // Properties("ISAUTOINCREMENT"): Boolean. Raises kErrItemNotFound for other names, and for
  // this one when the provider cannot tell.
  Variant Properties(StringView name) const;

 private:
  const ColumnInfo& Info() const;
  const Recordset* owner_;
  size_t column_;
};

// ADO's Fields collection of a Recordset.
class FieldCollection {
 public:
  int32_t Count() const noexcept { return static_cast<int32_t>(fields_.size()); }
  // By position from 0; raises kErrItemNotFound outside the range.
  const Field& Item(int32_t index) const;
  // By name without regard to case; raises kErrItemNotFound for an unknown name.
  const Field& Item(StringView name) const;
  const Field& operator()(int32_t index) const { return Item(index); }
  const Field& operator()(StringView name) const { return Item(name); }
  auto begin() const { return fields_.begin(); }
  auto end() const { return fields_.end(); }

 private:
  friend class Recordset;
  std::vector<Field> fields_;
};

class Recordset {
 public:
  Recordset() = default;
  explicit Recordset(Rowset rowset) { Assign(std::move(rowset)); }
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  // Open(source, connection): a statement, or the name of a table or view.
  void Open(StringView source, Connection& connection);
  void Close() noexcept;
  int32_t State() const noexcept;

  // ADO's EOF (the C library owns that name as a macro).
  bool Eof() const noexcept { return position_ >= rowset_.rows.size(); }
  void MoveFirst();
  // Raises kErrBofOrEof when already past the last row.
  void MoveNext();
  int32_t RecordCount() const noexcept { return static_cast<int32_t>(rowset_.rows.size()); }

  const FieldCollection& Fields() const;
  const Field& Fields(int32_t index) const { return Fields().Item(index); }
  const Field& Fields(StringView name) const { return Fields().Item(name); }

  const Rowset& Data() const noexcept { return rowset_; }
  size_t Position() const noexcept { return position_; }

 private:
  void Assign(Rowset rowset);

  Rowset rowset_;
  FieldCollection fields_;
  size_t position_ = 0;
  bool open_ = false;
};

}  // namespace qv::data

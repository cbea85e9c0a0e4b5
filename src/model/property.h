// TyProperty: one entry of a property bag. The value is the default member; name, type and
// the flags RegSave, RegFormat, FileSave and Sync decide whether the value goes to the saved
// defaults, to the project file and through synchronisation.
#pragma once

#include <vector>

#include "automation/dispatch.h"
#include "model/property_descriptor.h"

namespace qv {

class TyProperty : public DispatchObject<TyProperty> {
 public:
  explicit TyProperty(Ref<PropertyDescriptor> descriptor) : descriptor_(std::move(descriptor)) {}
  static const DispatchTable<TyProperty>& Table();

  // The entries of one registration, made in one piece of memory: a project of thousands of
  // fields registers millions of entries, and one allocation per bag instead of one per entry
  // saves both time and the allocator's overhead. The piece is freed with its last entry.
  static std::vector<Variant> MakeBlock(const std::vector<Ref<PropertyDescriptor>>& descriptors);

  const String& Key() const { return descriptor_->Key; }
  void SetKey(String key) { Own().Key = std::move(key); }
  const String& Name() const { return descriptor_->Name; }
  void SetName(String name) { Own().Name = std::move(name); }
  const String& DataType() const { return descriptor_->DataType; }
  void SetDataType(String data_type);
  PropType Type() const { return descriptor_->Type; }
  bool RegSave() const { return descriptor_->RegSave; }
  void SetRegSave(bool v) { Own().RegSave = v; }
  int32_t RegFormat() const { return descriptor_->RegFormat; }
  void SetRegFormat(int32_t v) { Own().RegFormat = v; }
  bool FileSave() const { return descriptor_->FileSave; }
  void SetFileSave(bool v) { Own().FileSave = v; }
  bool Sync() const { return descriptor_->Sync; }
  void SetSync(bool v) { Own().Sync = v; }

  // The stored value, as it was assigned; Empty until then.
  const Variant& Value() const { return value_; }
  void SetValue(Variant value) { value_ = std::move(value); }
  // The value converted to the property's type (Empty reads as "", 0 or False).
  Variant TypedValue() const { return ConvertToPropType(value_, Type()); }
  // Stores the value converted to the property's type.
  void SetTypedValue(const Variant& value) { value_ = ConvertToPropType(value, Type()); }

 protected:
  void Destroy() noexcept override;

 private:
  static constexpr uint32_t kStandalone = 0xFFFFFFFFu;
  struct BlockHeader {
    uint32_t live;
    uint32_t count;
  };

  PropertyDescriptor& Own();

  // The place in its block, or kStandalone for an entry made on its own.
  uint32_t block_index_ = kStandalone;
  Ref<PropertyDescriptor> descriptor_;
  Variant value_;
};

}  // namespace qv

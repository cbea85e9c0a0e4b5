// PropertyLayout: the registration list of one class of definition object, built once. A bag
// registered from a layout takes over a prototype's keys and slot numbers instead of searching
// and inserting a hundred keys one by one, and while it keeps exactly that layout its entries
// are reached by slot number, without a key search.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

#include "model/property_descriptor.h"
#include "model/super_collection.h"

namespace qv {

// One registration line: the arguments of TyProperties.Add.
struct PropertyEntry {
  const char16_t* name;
  const char16_t* data_type;
  bool reg_save;
  int32_t reg_format;
  bool file_save;
  bool sync;
};

class PropertyLayout {
 public:
  explicit PropertyLayout(std::initializer_list<PropertyEntry> entries);

  int32_t size() const { return static_cast<int32_t>(descriptors_.size()); }
  const Ref<PropertyDescriptor>& at(int32_t index) const { return descriptors_[index]; }
  const std::vector<Ref<PropertyDescriptor>>& descriptors() const { return descriptors_; }
  // A collection holding one empty item per property, under its name, in registration order.
  const CSuperCollection& prototype() const { return *prototype_; }

 private:
  std::vector<Ref<PropertyDescriptor>> descriptors_;
  Ref<CSuperCollection> prototype_;
};

}  // namespace qv

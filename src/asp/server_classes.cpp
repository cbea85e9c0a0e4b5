// The ADODB objects and constants come from the ado library.
#include "asp/server_classes.h"

#include "ado/classes.h"
#include "ado/constants.h"

namespace qv::asp {

void RegisterServerClasses(vbs::ClassRegistry& registry) {
  ado::RegisterAdoClasses(registry);
}

namespace {

// Members by index into the constant list. Each engine gets an object of its own, since an
// object's count is no atomic.
class AdoConstantMembers : public Object {
 public:
  String TypeName() const override { return u"AdoConstants"; }
  DispId GetIdOfName(StringView name) override {
    const auto all = ado::AdoConstants();
    for (size_t i = 0; i < all.size(); ++i) {
      if (EqualsNoCase(all[i].name, name)) return static_cast<DispId>(i + 1);
    }
    return kDispIdUnknown;
  }
  Variant Invoke(DispId id, uint16_t flags, Args args) override {
    const auto all = ado::AdoConstants();
    if (id < 1 || static_cast<size_t>(id) > all.size() || !args.empty() ||
        (flags & (kInvokeLet | kInvokeSet)))
      throw Error(kErrNotSupported);
    return Variant(all[static_cast<size_t>(id - 1)].value);
  }
};

}  // namespace

Ref<Object> AdoConstantsObject() {
  return MakeRef<AdoConstantMembers>();
}

}  // namespace qv::asp

// Loading the control file and the list operations that extension packages use.
#include "templates/controls.h"

#include <limits>

#include "automation/convert.h"
#include "platform/xml.h"
#include "support/common.h"
#include "support/tyx_vars.h"
#include "templates/list_enumerator.h"

namespace qv {
namespace {

// The value of a root attribute, found without regard to case; a missing one is Null, which
// a text property refuses.
String RootAttribute(const std::vector<XmlAttribute>& attributes, StringView name) {
  for (const XmlAttribute& attribute : attributes) {
    if (ToLower(attribute.nodeName) == name) return attribute.nodeValue;
  }
  throw Error(kErrInvalidUseOfNull);
}

}  // namespace

const DispatchTable<TyxControls>& TyxControls::Table() {
  using C = TyxControls;
  static const auto table = DispatchTable<C>(u"TyxControls")
                                .Property<&C::Item>(u"Item")
                                .Default(u"Item")
                                .Property<&C::Count>(u"Count")
                                .Property<&C::curIndex>(u"curIndex")
                                .Property<[](C& c) { return c.ProdDate; }>(u"ProdDate")
                                .Property<[](C& c) { return c.ProdVersion; }>(u"ProdVersion")
                                .Property<[](C& c) { return c.ProdDesc; }>(u"ProdDesc")
                                .Property<[](C& c) { return c.ProdAuthor; }>(u"ProdAuthor")
                                .Method<&C::LoadControls>(u"LoadControls")
                                .Method<&C::AddControl>(u"AddControl")
                                .Method<&C::DeleteControl>(u"DeleteControl")
                                .Method<&C::ControlExist>(u"ControlExist");
  return table;
}

Ref<Enumerator> TyxControls::NewEnum() {
  return templates::EnumerateSlots(items_);
}

void TyxControls::Append(Ref<TyxControl> control) {
  if (count_ == std::numeric_limits<int16_t>::max()) throw Error(kErrOverflow);
  ++count_;
  items_.push_back(std::move(control));
}

bool TyxControls::LoadControls(StringView path) {
  TyxVars& vars = Vars();
  XmlDocument document;
  if (!document.Load(path)) {
    vars.ProjErr =
        vars.ProductName +
        u": Load control file failed! Please check if the correct template file is in use!";
    return false;
  }
  count_ = 0;
  items_.resize(1);
  const XmlNode root = document.documentElement();
  const String product = ToUpper(CleanName(vars.ProductName));
  const String base = ToUpper(root.baseName());
  if (base.view().substr(0, vars.ProductName.size()) != product.view()) {
    vars.ProjErr =
        vars.ProductName +
        u": Control file is invalid! Please check if the correct template file is in use!";
    return false;
  }
  const std::vector<XmlAttribute> attributes = root.attributes();
  ProdDate = RootAttribute(attributes, u"date");
  ProdVersion = RootAttribute(attributes, u"version");
  ProdDesc = RootAttribute(attributes, u"desc");
  ProdAuthor = RootAttribute(attributes, u"author");
  for (const XmlNode& child : root.childNodes()) {
    if (ToLower(child.nodeName()) != u"control") continue;
    auto control = MakeRef<TyxControl>();
    Append(control);
    control->Load(child);
  }
  return true;
}

bool TyxControls::AddControl(TyxControl& control) {
  if (ControlExist(control.CtrlID)) return false;
  auto copy = MakeRef<TyxControl>();
  copy->CtrlID = control.CtrlID;
  copy->CtrlType = control.CtrlType;
  copy->CtrlIFiles = control.CtrlIFiles;
  copy->CtrlIFolder = control.CtrlIFolder;
  copy->CtrlOFile = control.CtrlOFile;
  copy->CtrlOExt = control.CtrlOExt;
  copy->CtrlOFolder = control.CtrlOFolder;
  copy->CtrlCond = control.CtrlCond;
  copy->CtrlTagExt = control.CtrlTagExt;
  copy->CtrlParm = control.CtrlParm;
  copy->CtrlSpace = control.CtrlSpace;
  copy->CtrlExt = control.CtrlExt;
  copy->CtrlAction = control.CtrlAction;
  copy->CtrlOverwrite = control.CtrlOverwrite;
  Append(copy);
  TyxSessions& given = control.Sessions();
  for (int32_t i = 1; i <= given.Count(); ++i) {
    const Ref<TyxSession> session = given.Item(i);
    session->SessExt = control.CtrlExt;
    copy->Sessions().AddSession(*session, u"", u"");
  }
  return true;
}

int32_t TyxControls::Find(StringView id) const {
  for (int32_t i = 1; i <= count_; ++i) {
    if (items_[i]->CtrlID == id) return i;
  }
  return 0;
}

bool TyxControls::ControlExist(StringView id) const {
  return Find(id) != 0;
}

bool TyxControls::DeleteControl(StringView id) {
  const int32_t index = Find(id);
  if (index == 0) return false;
  items_.erase(items_.begin() + index);
  --count_;
  return true;
}

Ref<TyxControl> TyxControls::Item(int32_t index) {
  if (index < 1 || index > count_) return nullptr;
  cur_index_ = static_cast<int16_t>(index);
  return items_[index];
}

}  // namespace qv

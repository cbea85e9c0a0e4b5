// The placement of an added session keeps the list's historical behaviour exactly: extension
// packages were written against it.
#include "templates/sessions.h"

#include <limits>

#include "automation/convert.h"
#include "templates/list_enumerator.h"

namespace qv {
const DispatchTable<TyxSessions>& TyxSessions::Table() {
  using S = TyxSessions;
  static const auto table = DispatchTable<S>(u"TyxSessions")
                                .Property<&S::Item>(u"Item")
                                .Default(u"Item")
                                .Property<&S::Count>(u"Count")
                                .Method<&S::AddSession>(u"AddSession")
                                .Method<&S::ChangeSession>(u"ChangeSession")
                                .Method<&S::DeleteSession>(u"DeleteSession")
                                .Method<&S::SessionExist>(u"SessionExist");
  return table;
}

Ref<Enumerator> TyxSessions::NewEnum() {
  return templates::EnumerateSlots(items_);
}

void TyxSessions::Grow() {
  if (count_ == std::numeric_limits<int16_t>::max()) throw Error(kErrOverflow);
  ++count_;
  items_.resize(count_ + 1);
}

void TyxSessions::Load(const XmlNode& xml_control) {
  for (const XmlNode& child : xml_control.childNodes()) {
    if (ToLower(child.nodeName()) != u"session") continue;
    auto session = MakeRef<TyxSession>();
    session->Load(child);
    Grow();
    items_[count_] = std::move(session);
  }
}

int32_t TyxSessions::Find(StringView value) const {
  for (int32_t i = 1; i <= count_; ++i) {
    if (items_[i]->SessValue == value) return i;
  }
  return 0;
}

bool TyxSessions::SessionExist(StringView value) const {
  return Find(value) != 0;
}

bool TyxSessions::AddSession(const TyxSession& session, StringView loc, StringView loctype) {
  if (SessionExist(session.SessValue)) return false;
  int32_t position = Find(loc);
  if (position == 0) position = count_ + 1;
  if (loctype == u"after" && position < count_) ++position;
  if (position == count_) ++position;  // before the last item is the same as behind it
  // Take the values before moving anything: `session` may be an item of this very list.
  const String type = session.SessType, value = session.SessValue, ifile = session.SessIFile,
               cond = session.SessCond, ext = session.SessExt, action = session.SessAction;
  Grow();
  for (int32_t i = count_ - 1; i >= position; --i)
    items_[i + 1] = items_[i];
  items_[position] = MakeRef<TyxSession>();
  TyxSession& last = *items_[count_];
  last.SessType = type;
  last.SessValue = value;
  last.SessIFile = ifile;
  last.SessCond = cond;
  last.SessExt = ext;
  last.SessAction = action;
  return true;
}

bool TyxSessions::ChangeSession(StringView value, const TyxSession& session) {
  const int32_t index = Find(value);
  if (index == 0) return false;
  TyxSession& target = *items_[index];
  if (!session.SessIFile.empty()) target.SessIFile = session.SessIFile;
  if (!session.SessCond.empty()) target.SessCond = session.SessCond;
  target.SessExt = session.SessExt;
  target.SessAction = session.SessAction;
  return true;
}

bool TyxSessions::DeleteSession(StringView value) {
  const int32_t index = Find(value);
  if (index == 0) return false;
  items_.erase(items_.begin() + index);
  --count_;
  return true;
}

Ref<TyxSession> TyxSessions::Item(int32_t index) const {
  if (index < 1 || index > count_) return nullptr;
  return items_[index];
}

}  // namespace qv

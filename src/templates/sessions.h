// TyxSessions: the ordered sessions of one control. Extensions add, change and delete
// sessions by their SessValue; keys are compared exactly, with case.
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"
#include "platform/xml.h"
#include "templates/session.h"

namespace qv {

class TyxSessions : public DispatchObject<TyxSessions> {
 public:
  TyxSessions() : items_(1) {}
  static const DispatchTable<TyxSessions>& Table();
  Ref<Enumerator> NewEnum() override;

  // Appends a session for each "session" child of the control element.
  void Load(const XmlNode& xml_control);
  // Places a new session beside the one whose SessValue is `loc`: before it, or behind it
  // when `loctype` is "after". The values are copied into the last slot, not the new one;
  // an insertion in the middle therefore leaves an empty session there and overwrites the
  // last session. False when the SessValue exists already.
  bool AddSession(const TyxSession& session, StringView loc, StringView loctype);
  // Takes SessIFile and SessCond unless empty, SessExt and SessAction always.
  bool ChangeSession(StringView value, const TyxSession& session);
  bool DeleteSession(StringView value);
  bool SessionExist(StringView value) const;
  int32_t Count() const { return count_; }
  // Items run from 1 to Count; outside that, nothing.
  Ref<TyxSession> Item(int32_t index) const;

 private:
  int32_t Find(StringView value) const;  // 0 when absent
  void Grow();

  int16_t count_ = 0;
  std::vector<Ref<TyxSession>> items_;  // slot 0 stays empty
};

}  // namespace qv

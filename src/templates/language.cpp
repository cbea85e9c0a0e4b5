// Phrases are kept in order of first appearance with a case-blind index beside them, so that
// Phrase stays a hash look-up for the thousands of calls a run makes.
#include "templates/language.h"

#include <limits>

#include "automation/convert.h"
#include "templates/lookup_file.h"

namespace qv {

const DispatchTable<TyxLanguage>& TyxLanguage::Table() {
  using L = TyxLanguage;
  static const auto table = DispatchTable<L>(u"TyxLanguage")
                                .Method<&L::Phrase>(u"Phrase")
                                .Property<&L::Count>(u"Count")
                                .Property<&L::curIndex>(u"curIndex")
                                .Method<&L::Load>(u"Load");
  return table;
}

bool TyxLanguage::Load(StringView path) {
  const auto take = [this](const String& id, const String& text) {
    const auto found = index_.find(id.view());
    if (found != index_.end()) {
      phrases_[found->second].text = text;
      return;
    }
    // The count is 16 bits wide.
    if (phrases_.size() >= static_cast<size_t>(std::numeric_limits<int16_t>::max())) {
      throw Error(kErrOverflow);
    }
    phrases_.push_back(Pair{id, text});
    index_.emplace(id, phrases_.size() - 1);
  };
  switch (templates::ReadLookupFile(path, u".language", u"phrase", u"id", u"value", take)) {
    case templates::LookupLoad::kNotXml:
      error_ = String(u"Load language file failed!");
      return false;
    case templates::LookupLoad::kWrongRoot:
      error_ = String(u"Language file is invalid!");
      return false;
    case templates::LookupLoad::kLoaded:
      break;
  }
  return true;
}

String TyxLanguage::Phrase(StringView id) const {
  const auto found = index_.find(id);
  return found == index_.end() ? String() : phrases_[found->second].text;
}

}  // namespace qv

// Keyword pairs are indexed by their lower-case language and word, so a later file's
// spelling replaces an earlier one's without a second entry.
#include "templates/keyword.h"

#include <limits>

#include "automation/convert.h"
#include "templates/lookup_file.h"

namespace qv {

const DispatchTable<TyxKeyword>& TyxKeyword::Table() {
  using K = TyxKeyword;
  static const auto table = DispatchTable<K>(u"TyxKeyword")
                                .Method<&K::IsKeyword>(u"IsKeyword")
                                .Property<&K::Count>(u"Count")
                                .Property<&K::curIndex>(u"curIndex")
                                .Method<&K::Load>(u"Load");
  return table;
}

String TyxKeyword::KeyOf(StringView language, StringView word) {
  String key = ToLower(language);
  key.Append(u'\0');
  key.Append(ToLower(word).view());
  return key;
}

bool TyxKeyword::Load(StringView path) {
  const auto take = [this](const String& language, const String& word) {
    String key = KeyOf(language, word);
    const auto found = index_.find(key);
    if (found != index_.end()) {
      words_[found->second] = Pair{language, word};
      return;
    }
    if (words_.size() >= static_cast<size_t>(std::numeric_limits<int16_t>::max())) {
      throw Error(kErrOverflow);
    }
    words_.push_back(Pair{language, word});
    index_.emplace(std::move(key), words_.size() - 1);
  };
  switch (templates::ReadLookupFile(path, u".keyword", u"keyword", u"lang", u"value", take)) {
    case templates::LookupLoad::kNotXml:
      error_ = String(u"Load keyword file failed!");
      return false;
    case templates::LookupLoad::kWrongRoot:
      error_ = String(u"Keyword file is invalid!");
      return false;
    case templates::LookupLoad::kLoaded:
      break;
  }
  return true;
}

bool TyxKeyword::IsKeyword(StringView language, StringView word) const {
  return index_.find(KeyOf(language, word)) != index_.end();
}

}  // namespace qv

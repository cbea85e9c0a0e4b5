// VBScript.RegExp over PCRE2's 16-bit library. Patterns are first rewritten into PCRE2's
// language (regexp_pattern); a back reference to a group that took no part matches the empty
// text, as in VBScript (MATCH_UNSET_BACKREF).
#define PCRE2_CODE_UNIT_WIDTH 16
#include "vbscript/regexp.h"

#include <pcre2.h>

#include "automation/convert.h"
#include "automation/list_enumerator.h"
#include "automation/safe_array.h"
#include "vbscript/regexp_pattern.h"
#include "vbscript/runtime_lib.h"

namespace qv::vbs {

struct RegExp::Compiled {
  pcre2_code* code = nullptr;
  pcre2_match_data* match = nullptr;
  uint32_t groups = 0;
  ~Compiled() {
    pcre2_match_data_free(match);
    pcre2_code_free(code);
  }
};

RegExp::~RegExp() = default;

void RegExp::set_pattern(String pattern) {
  pattern_ = std::move(pattern);
  compiled_.reset();
}

namespace {

// Text arguments are converted the way COM converts a Variant to a BSTR: booleans become
// "-1" and "0", and Null is a type mismatch.
String Text(const Variant& arg) {
  const Variant v = ValueOf(arg);
  if (v.is_null()) throw Error(kErrTypeMismatch);
  if (v.type() == VarType::Boolean) return String(v.as_bool() ? u"-1" : u"0");
  return ToString(v);
}

// The script's error for a pattern PCRE2 refuses: the faults scripts name get their own
// numbers, anything else is the general syntax error.
int32_t PatternErrorNumber(int pcre_error) {
  switch (pcre_error) {
    case PCRE2_ERROR_QUANTIFIER_INVALID:
      return 5018;
    case PCRE2_ERROR_MISSING_SQUARE_BRACKET:
      return 5019;
    case PCRE2_ERROR_MISSING_CLOSING_PARENTHESIS:
      return 5020;
    case PCRE2_ERROR_CLASS_RANGE_ORDER:
    case PCRE2_ERROR_CLASS_INVALID_RANGE:
      return 5021;
    default:
      return kErrRegExpSyntax;
  }
}

}  // namespace

const RegExp::Compiled& RegExp::Compile() {
  // The translation spells out anchors, "." and case variants itself; PCRE2 folds ASCII case.
  const uint32_t options = PCRE2_MATCH_UNSET_BACKREF | PCRE2_NEVER_UTF | PCRE2_NEVER_UCP |
                           (ignore_case ? PCRE2_CASELESS : 0);
  const uint32_t key = options | (multiline ? 1u << 31 : 0);
  if (compiled_ && compiled_options_ == key) return *compiled_;
  compiled_.reset();
  const PatternTranslation pattern = TranslatePattern(pattern_, ignore_case, multiline);
  if (pattern.error) throw Error(pattern.error);
  int error_code = 0;
  PCRE2_SIZE error_offset = 0;
  auto c = std::make_unique<Compiled>();
  c->code = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.pcre.data()), pattern.pcre.size(),
                          options, &error_code, &error_offset, nullptr);
  if (!c->code) throw Error(PatternErrorNumber(error_code));
  c->match = pcre2_match_data_create_from_pattern(c->code, nullptr);
  if (!c->match) throw Error(kErrOutOfMemory);
  pcre2_pattern_info(c->code, PCRE2_INFO_CAPTURECOUNT, &c->groups);
  compiled_ = std::move(c);
  compiled_options_ = key;
  return *compiled_;
}

namespace {

// Runs one match from `start`; the number of pairs set, or 0 for no match.
int MatchAt(pcre2_code* code, pcre2_match_data* data, StringView text, size_t start) {
  const int rc = pcre2_match(code, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), start, 0,
                             data, nullptr);
  if (rc == PCRE2_ERROR_NOMATCH) return 0;
  // Limits (backtracking, depth) end the search quietly instead of failing the script.
  if (rc < 0) return 0;
  return rc;
}

// Walks the matches as JavaScript does: after an empty match the search moves on one unit.
template <class OnMatch>
void ForEachMatch(pcre2_code* code, pcre2_match_data* data, StringView text, bool all,
                  OnMatch on_match) {
  size_t start = 0;
  while (start <= text.size()) {
    if (!MatchAt(code, data, text, start)) return;
    const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(data);
    on_match(ov);
    if (!all) return;
    start = ov[1] > ov[0] ? ov[1] : ov[1] + 1;
  }
}

}  // namespace

bool RegExp::Test(StringView text) {
  const Compiled& c = Compile();
  return MatchAt(c.code, c.match, text, 0) > 0;
}

std::vector<MatchData> RegExp::Matches(StringView text) {
  const Compiled& c = Compile();
  std::vector<MatchData> out;
  ForEachMatch(c.code, c.match, text, global, [&](const PCRE2_SIZE* ov) {
    MatchData m;
    m.first_index = static_cast<int32_t>(ov[0]);
    m.value = String(text.substr(ov[0], ov[1] - ov[0]));
    for (uint32_t g = 1; g <= c.groups; ++g) {
      if (ov[2 * g] == PCRE2_UNSET) {
        m.groups.emplace_back();
      } else {
        m.groups.emplace_back(String(text.substr(ov[2 * g], ov[2 * g + 1] - ov[2 * g])));
      }
    }
    out.push_back(std::move(m));
  });
  return out;
}

namespace {

// Appends the replacement with $1..$99, $&, $`, $' and $$ filled in from one match.
void Expand(String& out, StringView replacement, StringView text, const PCRE2_SIZE* ov,
            uint32_t groups) {
  auto group_text = [&](uint32_t g) {
    if (ov[2 * g] == PCRE2_UNSET) return StringView();
    return text.substr(ov[2 * g], ov[2 * g + 1] - ov[2 * g]);
  };
  for (size_t i = 0; i < replacement.size(); ++i) {
    const Char c = replacement[i];
    if (c != u'$' || i + 1 >= replacement.size()) {
      out.Append(c);
      continue;
    }
    const Char n = replacement[i + 1];
    if (n == u'$') {
      out.Append(u'$');
      ++i;
    } else if (n == u'&') {
      out.Append(group_text(0));
      ++i;
    } else if (n == u'`') {
      out.Append(text.substr(0, ov[0]));
      ++i;
    } else if (n == u'\'') {
      out.Append(text.substr(ov[1]));
      ++i;
    } else if (n >= u'0' && n <= u'9') {
      // Two digits when they name a group, else one; a group that does not exist is text.
      const uint32_t one = n - u'0';
      const bool has_two =
          i + 2 < replacement.size() && replacement[i + 2] >= u'0' && replacement[i + 2] <= u'9';
      const uint32_t two = has_two ? one * 10 + (replacement[i + 2] - u'0') : 0;
      if (has_two && two >= 1 && two <= groups) {
        out.Append(group_text(two));
        i += 2;
      } else if (one >= 1 && one <= groups) {
        out.Append(group_text(one));
        ++i;
      } else {
        out.Append(c);
      }
    } else {
      out.Append(c);
    }
  }
}

}  // namespace

String RegExp::Replace(StringView text, StringView replacement) {
  const Compiled& c = Compile();
  String out;
  size_t copied = 0;
  ForEachMatch(c.code, c.match, text, global, [&](const PCRE2_SIZE* ov) {
    out.Append(text.substr(copied, ov[0] - copied));
    Expand(out, replacement, text, ov, c.groups);
    copied = ov[1];
  });
  if (copied == 0 && out.empty()) return String(text);
  out.Append(text.substr(copied));
  return out;
}

String RegExp::Replace(StringView text, Object& replacer) {
  // All matches are found before the first call: the replacer may use this RegExp itself.
  const std::vector<MatchData> matches = Matches(text);
  const String source(text);
  String out;
  size_t copied = 0;
  std::vector<Variant> args;
  for (const MatchData& m : matches) {
    const auto at = static_cast<size_t>(m.first_index);
    out.Append(text.substr(copied, at - copied));
    args.clear();
    args.emplace_back(m.value);
    args.insert(args.end(), m.groups.begin(), m.groups.end());
    args.emplace_back(m.first_index);
    args.emplace_back(source);
    out.Append(Text(replacer.Invoke(kDispIdValue, kInvokeMethod | kInvokeGet, args)));
    copied = at + m.value.size();
  }
  out.Append(text.substr(copied));
  return out;
}

namespace {

class SubMatches : public DispatchObject<SubMatches> {
 public:
  explicit SubMatches(std::vector<Variant> groups) : groups_(std::move(groups)) {}
  static const DispatchTable<SubMatches>& Table() {
    static const auto table =
        DispatchTable<SubMatches>(u"ISubMatches")
            .Property<[](SubMatches& s, int32_t i) {
              if (i < 0 || static_cast<size_t>(i) >= s.groups_.size()) throw Error(kErrInvalidCall);
              return s.groups_[i];
            }>(u"Item")
            .Default(u"Item")
            .Property<[](SubMatches& s) { return static_cast<int32_t>(s.groups_.size()); }>(
                u"Count");
    return table;
  }
  Ref<Enumerator> NewEnum() override;

 private:
  std::vector<Variant> groups_;
};

Ref<Enumerator> SubMatches::NewEnum() {
  return MakeRef<ListEnumerator>(groups_);
}

class Match : public DispatchObject<Match> {
 public:
  explicit Match(MatchData data) : data_(std::move(data)) {}
  static const DispatchTable<Match>& Table() {
    static const auto table =
        DispatchTable<Match>(u"IMatch2")
            .Property(u"Value", [](Match& m, Args) { return Variant(m.data_.value); })
            .Default(u"Value")
            .Property(u"FirstIndex", [](Match& m, Args) { return Variant(m.data_.first_index); })
            .Property(
                u"Length",
                [](Match& m, Args) { return Variant(static_cast<int32_t>(m.data_.value.size())); })
            .Property(u"SubMatches", [](Match& m, Args a) {
              return ApplyArgs(Variant(MakeRef<SubMatches>(m.data_.groups)), a);
            });
    return table;
  }

 private:
  MatchData data_;
};

class MatchCollection : public DispatchObject<MatchCollection> {
 public:
  explicit MatchCollection(std::vector<MatchData> matches) {
    for (MatchData& m : matches)
      items_.emplace_back(MakeRef<Match>(std::move(m)));
  }
  static const DispatchTable<MatchCollection>& Table() {
    static const auto table =
        DispatchTable<MatchCollection>(u"IMatchCollection2")
            .Property<[](MatchCollection& c, int32_t i) {
              if (i < 0 || static_cast<size_t>(i) >= c.items_.size()) throw Error(kErrInvalidCall);
              return c.items_[i];
            }>(u"Item")
            .Default(u"Item")
            .Property<[](MatchCollection& c) { return static_cast<int32_t>(c.items_.size()); }>(
                u"Count");
    return table;
  }
  Ref<Enumerator> NewEnum() override { return MakeRef<ListEnumerator>(items_); }

 private:
  std::vector<Variant> items_;
};

// A text argument, converted as Text() does.
struct TextArg {
  String text;
  static TextArg FromScript(const Variant& arg) { return {Text(arg)}; }
};

bool BoolArg(const Variant& v) {
  return ToBool(v);
}

}  // namespace

const DispatchTable<RegExp>& RegExp::Table() {
  static const auto table =
      DispatchTable<RegExp>(u"IRegExp2")
          .Property(
              u"Pattern", [](RegExp& r, Args) { return Variant(r.pattern_); },
              [](RegExp& r, Args, const Variant& v) { r.set_pattern(Text(v)); })
          .Property(
              u"Global", [](RegExp& r, Args) { return Variant(r.global); },
              [](RegExp& r, Args, const Variant& v) { r.global = BoolArg(v); })
          .Property(
              u"IgnoreCase", [](RegExp& r, Args) { return Variant(r.ignore_case); },
              [](RegExp& r, Args, const Variant& v) { r.ignore_case = BoolArg(v); })
          .Property(
              u"Multiline", [](RegExp& r, Args) { return Variant(r.multiline); },
              [](RegExp& r, Args, const Variant& v) { r.multiline = BoolArg(v); })
          .Method<[](RegExp& r, TextArg source) { return r.Test(source.text); }>(u"Test")
          .Method<[](RegExp& r, TextArg source) {
            return MakeRef<MatchCollection>(r.Matches(source.text));
          }>(u"Execute")
          .Method<[](RegExp& r, TextArg source, const Variant& with) {
            if (with.is_object() && with.as_object()) {
              const Ref<Object> replacer(with.as_object());
              return r.Replace(source.text, *replacer);
            }
            return r.Replace(source.text, Text(with));
          }>(u"Replace");
  return table;
}

Ref<Object> NewRegExp() {
  return MakeRef<RegExp>();
}

}  // namespace qv::vbs

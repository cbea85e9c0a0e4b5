// VBScript.RegExp and its results: the RegExp object (Pattern, Global, IgnoreCase, Multiline,
// Test, Execute, Replace), the Matches collection, Match and SubMatches. Patterns follow
// JavaScript's rules, which PCRE2's 16-bit library gives with the right options.
#pragma once

#include <memory>
#include <vector>

#include "automation/dispatch.h"

namespace qv::vbs {

// One match: where it starts (0-based, as FirstIndex counts), its text and its groups
// (Empty for a group that took no part).
struct MatchData {
  int32_t first_index = 0;
  String value;
  std::vector<Variant> groups;
};

class RegExp : public DispatchObject<RegExp> {
 public:
  static const DispatchTable<RegExp>& Table();
  ~RegExp() override;

  void set_pattern(String pattern);
  const String& pattern() const { return pattern_; }
  bool global = false;
  bool ignore_case = false;
  bool multiline = false;

  bool Test(StringView text);
  // Every match (all with Global, else the first), in order.
  std::vector<MatchData> Matches(StringView text);
  String Replace(StringView text, StringView replacement);
  // Replace with an object in place of the text: its default member is called for each match
  // with the match, each sub-match, the match's position and the whole text, and what it
  // returns goes in unchanged (the way a GetRef function or a class's default method is used).
  String Replace(StringView text, Object& replacer);

 private:
  struct Compiled;
  // The compiled pattern for the present options; raises 5017-5021 for an invalid pattern.
  const Compiled& Compile();

  String pattern_;
  std::unique_ptr<Compiled> compiled_;
  uint32_t compiled_options_ = 0;
};

}  // namespace qv::vbs

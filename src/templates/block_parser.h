// TyParser: cuts a template text into an ordered list of blocks (literal content and the tags
// between "<!--##" and "##-->") and hands them out by a cursor. Blocks are kept as positions
// into the parsed text, so a megabyte of template costs one copy of the text and a small record
// per block. It also cuts named sessions out of template files (GetSession).
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"
#include "automation/string.h"
#include "templates/block_type.h"

namespace qv {

class TyParser : public DispatchObject<TyParser> {
 public:
  static const DispatchTable<TyParser>& Table();

  // Replaces the text and the block list. A broken tag writes ProjErr ("***Incomplete
  // Block ..." or "***Nested Blocks ...") and keeps the blocks found before it. Raises 6 when
  // a "~" tag follows a content block longer than 32,767 characters, and 5 for the tag
  // "<!--##-->", whose closing delimiter overlaps its opening one.
  void Parse(String source);

  // The reads below raise 9 before the first Parse.
  int32_t Count() const;
  int32_t BlockID() const;
  // Ignored unless 1 <= id <= Count.
  void SetBlockID(int32_t id);
  int32_t BlockType() const;
  String BlockName() const;
  String BlockValue() const;
  String BlockIndent() const;
  // BlockValue without a copy; valid until the next Parse.
  StringView BlockValueView() const;

  // The body of session `id` in `source`, include tags expanded from the include folder.
  String GetSession(StringView source, StringView id) const;

  // Where include tags look for their files; unset, the run's TemplateFolder.
  void set_include_folder(String folder) { include_folder_ = std::move(folder); }

 private:
  // A block is positions into source_ (0-based); its name and indent are pieces of the same
  // text, so nothing is copied per block.
  struct Piece {
    int32_t start = 0;
    int32_t length = 0;
  };
  struct TyBlock {
    int32_t type = 0;
    Piece text;
    Piece name;
    Piece indent;
  };

  const TyBlock& Current() const;
  StringView Cut(Piece piece) const;
  void AddContent(size_t start, size_t end);
  void AddTag(size_t tag, size_t close);
  Piece EnclosingFunction(size_t start, size_t length) const;
  // The name between "Function" and "(" of the occurrence at `found` in `work`, which starts
  // at `work_start` in the text.
  Piece NameBefore(StringView work, size_t found, size_t work_start) const;
  Piece TrailingWhiteSpace(Piece content) const;
  void ReportAt(StringView what, size_t position) const;

  String source_;
  int32_t current_ = 0;
  std::vector<TyBlock> blocks_;  // slot 0 stays empty; empty before the first Parse
  String include_folder_;
};

}  // namespace qv

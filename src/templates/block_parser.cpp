// One forward scan: find an opening delimiter, its closing delimiter, and the next opening
// delimiter, which must not come first. The quirks the consumers rely on are kept: the closing
// search starts at the tag itself, only CR LF ends a line in error positions, and the enclosing
// function test cuts the whole text, not the block, when it skips an occurrence.
#include "templates/block_parser.h"

#include <limits>

#include "automation/convert.h"
#include "automation/error.h"
#include "support/tyx_vars.h"
#include "templates/session_reader.h"
#include "templates/text_search.h"

namespace qv {
namespace {

using templates::FindLastCrLf;
using templates::FindLastNoCase;
using templates::kNotFound;

constexpr StringView kOpen = u"<!--##";
constexpr StringView kClose = u"##-->";
const templates::TextFinder kOpenFinder(kOpen);
const templates::TextFinder kCloseFinder(kClose);
constexpr StringView kSigns = u"=~@$";
constexpr StringView kFunction = u"Function ";
constexpr size_t kFunctionWord = 8;  // "Function" without its blank

int32_t ToPos(size_t value) {
  return static_cast<int32_t>(value);
}

}  // namespace

const DispatchTable<TyParser>& TyParser::Table() {
  using P = TyParser;
  static const auto table = DispatchTable<P>(u"TyParser")
                                .Method<&P::Parse>(u"Parse")
                                .Property<&P::Count>(u"Count")
                                .Property<&P::BlockID, &P::SetBlockID>(u"BlockID")
                                .Property<&P::BlockType>(u"BlockType")
                                .Property<&P::BlockName>(u"BlockName")
                                .Property<&P::BlockValue>(u"BlockValue")
                                .Property<&P::BlockIndent>(u"BlockIndent")
                                .Method<&P::GetSession>(u"GetSession");
  return table;
}

void TyParser::Parse(String source) {
  source_ = std::move(source);
  current_ = 0;
  blocks_.assign(1, TyBlock{});
  const StringView text = source_.view();
  size_t content = 0;
  size_t tag = kOpenFinder.Find(text, 0);
  struct CursorToLast {
    TyParser& p;
    ~CursorToLast() { p.current_ = ToPos(p.blocks_.size() - 1); }
  } cursor_to_last{*this};

  while (tag != kNotFound) {
    if (tag > content) AddContent(content, tag);
    const size_t close = kCloseFinder.Find(text, tag);
    if (close == kNotFound) return ReportAt(u"***Incomplete Block", tag);
    const size_t next = kOpenFinder.Find(text, tag + kOpen.size());
    if (next != kNotFound && next < close) return ReportAt(u"***Nested Blocks found", next);
    AddTag(tag, close);
    content = close + kClose.size();
    tag = next;
  }
  if (content < text.size()) AddContent(content, text.size());
}

void TyParser::AddContent(size_t start, size_t end) {
  TyBlock block;
  block.type = tyc_Block_Content;
  block.text = Piece{ToPos(start), ToPos(end - start)};
  blocks_.push_back(block);
}

void TyParser::AddTag(size_t tag, size_t close) {
  const StringView text = source_.view();
  const size_t sign_at = tag + kOpen.size();
  const size_t sign = sign_at < text.size() ? kSigns.find(text[sign_at]) : kNotFound;
  TyBlock block;
  if (sign == kNotFound) {
    // "<!--##-->" closes four characters in: the block would have a negative length, which
    // cutting text refuses.
    if (close < sign_at) throw Error(kErrInvalidCall);
    block.type = tyc_Block_Script;
    block.text = Piece{ToPos(sign_at), ToPos(close - sign_at)};
    block.name = EnclosingFunction(sign_at, close - sign_at);
  } else {
    const size_t start = sign_at + 1;
    block.type = static_cast<int32_t>(tyc_Block_Function + sign);
    block.text = Piece{ToPos(start), ToPos(close - start)};
    const StringView value = text.substr(start, close - start);
    const StringView name = TrimBlanks(value);
    block.name = Piece{ToPos(start + (name.data() - value.data())), ToPos(name.size())};
    if (block.type == tyc_Block_FunctionIndent && blocks_.back().type == tyc_Block_Content) {
      block.indent = TrailingWhiteSpace(blocks_.back().text);
    }
  }
  blocks_.push_back(block);
}

TyParser::Piece TyParser::TrailingWhiteSpace(Piece content) const {
  // The walk counts in 16 bits: a longer text overflows before a character is looked at.
  if (content.length > std::numeric_limits<int16_t>::max()) throw Error(kErrOverflow);
  const StringView text = Cut(content);
  size_t begin = text.size();
  while (begin > 0 && (text[begin - 1] == u'\t' || text[begin - 1] == u' '))
    --begin;
  return Piece{ToPos(content.start + begin), ToPos(text.size() - begin)};
}

TyParser::Piece TyParser::EnclosingFunction(size_t start, size_t length) const {
  const StringView source = source_.view();
  StringView work = source.substr(start, length);
  bool first_round = true;
  // From the second round on the working text is a start of the whole text that only gets
  // shorter, so the line end found before one occurrence serves the next ones on that line,
  // and so does the run of blanks that opens the line: a line full of skipped occurrences
  // costs one pass, not one per occurrence.
  bool crlf_known = false;
  size_t crlf_cached = kNotFound;
  size_t blanks_from = kNotFound;
  size_t blanks_to = kNotFound;
  for (;;) {
    const size_t found = FindLastNoCase(work, kFunction);
    if (found == kNotFound) return Piece{};
    size_t crlf = kNotFound;
    if (first_round) {
      crlf = FindLastCrLf(work.substr(0, found));
    } else if (crlf_known && (crlf_cached == kNotFound || crlf_cached + 1 < found)) {
      crlf = crlf_cached;
    } else {
      crlf = crlf_cached = FindLastCrLf(work.substr(0, found));
      crlf_known = true;
    }
    // Without a line end the prefix ends in the occurrence's own letter, which never passes
    // as a blank: the occurrence is skipped.
    bool skip = crlf == kNotFound;
    if (!skip) {
      const size_t line = crlf + 2;
      size_t text = line;
      if (!first_round && line == blanks_from) {
        text = blanks_to;
      } else {
        while (work[text] == u' ')
          ++text;  // stops at the occurrence's letter at the latest
        if (!first_round) {
          blanks_from = line;
          blanks_to = text;
        }
      }
      if (text >= found) return NameBefore(work, found, first_round ? start : 0);
      // In a comment, the tail of a longer word, or behind a tab: skipped. Anything else,
      // such as "End Function" or "Public Function x(", ends the search.
      skip = work[text] == u'\'' || work[found - 1] != u' ';
      if (!skip) return Piece{};
    }
    // The next round looks at the start of the whole text, as long as the occurrence's
    // 1-based position in the working text.
    work = source.substr(0, found + 1);
    first_round = false;
  }
}

TyParser::Piece TyParser::NameBefore(StringView work, size_t found, size_t work_start) const {
  const size_t paren = work.find(u'(', found);
  if (paren == kNotFound) return Piece{};
  const StringView between = work.substr(found + kFunctionWord, paren - found - kFunctionWord);
  const StringView name = TrimBlanks(between);
  return Piece{ToPos(work_start + (name.data() - work.data())), ToPos(name.size())};
}

void TyParser::ReportAt(StringView what, size_t position) const {
  const StringView piece = source_.view().substr(0, position + 1);
  int32_t line = 1;
  size_t line_start = 0;
  for (size_t at = piece.find(u"\r\n"); at != kNotFound; at = piece.find(u"\r\n", at + 2)) {
    ++line;
    line_start = at + 2;
  }
  String words(what);
  words.Append(u" at line ");
  words.Append(NumberText(line).view());
  words.Append(u" column ");
  words.Append(NumberText(static_cast<int64_t>(piece.size() - line_start)).view());
  words.Append(u"! Generation failed!");
  Vars().ProjErr = std::move(words);
}

int32_t TyParser::Count() const {
  if (blocks_.empty()) throw Error(kErrSubscript);
  return ToPos(blocks_.size() - 1);
}

int32_t TyParser::BlockID() const {
  return current_;
}

void TyParser::SetBlockID(int32_t id) {
  if (id >= 1 && id <= ToPos(blocks_.size()) - 1) current_ = id;
}

const TyParser::TyBlock& TyParser::Current() const {
  static const TyBlock kNone;
  if (blocks_.empty()) throw Error(kErrSubscript);
  if (current_ < 0 || static_cast<size_t>(current_) >= blocks_.size()) return kNone;
  return blocks_[current_];
}

StringView TyParser::Cut(Piece piece) const {
  return source_.view().substr(piece.start, piece.length);
}

int32_t TyParser::BlockType() const {
  return Current().type;
}

String TyParser::BlockName() const {
  return String(Cut(Current().name));
}

String TyParser::BlockValue() const {
  return String(BlockValueView());
}

StringView TyParser::BlockValueView() const {
  return Cut(Current().text);
}

String TyParser::BlockIndent() const {
  return String(Cut(Current().indent));
}

String TyParser::GetSession(StringView source, StringView id) const {
  templates::SessionReader reader(include_folder_.empty() ? Vars().TemplateFolder
                                                          : include_folder_);
  return reader.GetSession(source, id);
}

}  // namespace qv

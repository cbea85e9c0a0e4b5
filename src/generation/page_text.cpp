// Cleaning of page text and the short path of the overwrite question.
#include "generation/page_text.h"

#include <vector>

#include "support/tyx_vars.h"

namespace qv {

namespace {

// The next "</head>" at or after `from`, in any case. The tag is ASCII and no other letter
// folds to its letters, so comparing ASCII case alone finds what lowering the page would,
// without a lowered copy of every page.
size_t FindHeadEnd(StringView text, size_t from) {
  static constexpr StringView kHead = u"</head>";
  for (size_t at = text.find(u"</", from); at != StringView::npos; at = text.find(u"</", at + 1)) {
    if (text.size() - at < kHead.size()) return StringView::npos;
    size_t i = 2;
    while (i < kHead.size() && (text[at + i] | 0x20) == kHead[i])
      ++i;
    if (i == kHead.size()) return at;
  }
  return StringView::npos;
}

// Each "</head>" (any case) becomes the tag and "</head>" in lower case.
String InsertGeneratorTag(String text) {
  static constexpr StringView kHead = u"</head>";
  const StringView view = text.view();
  size_t at = FindHeadEnd(view, 0);
  if (at == StringView::npos) return text;
  const String tag = GeneratorTag();
  String out;
  out.Reserve(view.size() + tag.size() + 16);
  size_t from = 0;
  while (at != StringView::npos) {
    out.Append(view.substr(from, at - from));
    out.Append(tag);
    out.Append(kHead);
    from = at + kHead.size();
    at = FindHeadEnd(view, from);
  }
  out.Append(view.substr(from));
  return out;
}

// Appends a line without its carriage returns, wherever they stand in it.
void AppendWithoutCr(String& out, StringView line) {
  for (size_t cr = line.find(u'\r'); cr != StringView::npos; cr = line.find(u'\r')) {
    out.Append(line.substr(0, cr));
    line.remove_prefix(cr + 1);
  }
  out.Append(line);
}

}  // namespace

String GeneratorTag() {
  return u"<meta name=\"generator\" content=\"" + Vars().ProductName + u" v" + Vars().LibVersion +
         u"\" />\r\n";
}

String StripBlankLines(StringView text) {
  String out;
  out.Reserve(text.size() + 64);
  // A run of comment lines (a first non-blank "'") keeps a blank line before it, and a
  // run of more than one keeps a blank line after it too; other blank lines go.
  int comments = 0;
  size_t from = 0;
  while (from < text.size()) {
    size_t end = text.find(u'\n', from);
    const bool last = end == StringView::npos;
    if (last) end = text.size();
    const StringView line = text.substr(from, end - from);
    from = end + 1;
    const size_t first = line.find_first_not_of(u" \t\r");
    if (first == StringView::npos) continue;
    const bool is_comment = line[first] == u'\'';
    if (is_comment) {
      ++comments;
      if (comments == 1 && !last) out.Append(u"\r\n");
    } else {
      if (comments > 1 && !last) out.Append(u"\r\n");
      if (!last) comments = 0;
    }
    AppendWithoutCr(out, line);
    out.Append(u"\r\n");
  }
  return InsertGeneratorTag(std::move(out));
}

String TrimLeadingLines(StringView text) {
  size_t start = 0;
  for (size_t i = 0; i < text.size(); ++i) {
    const Char c = text[i];
    if (c == u'\n' || c == u'\r') {
      start = i + 1;
    } else if (c != u'\t' && c != u' ') {
      break;
    }
  }
  return String(text.substr(start));
}

String ShortPath(StringView path, size_t limit) {
  if (path.size() <= limit) return String(path);
  std::vector<StringView> parts;
  size_t from = 0;
  for (size_t at = path.find(u'/'); at != StringView::npos; at = path.find(u'/', from)) {
    parts.push_back(path.substr(from, at - from));
    from = at + 1;
  }
  parts.push_back(path.substr(from));
  // Walk from the second part, summing what is left out, until the rest fits with "...".
  size_t dropped = 0;
  size_t stop = 1;
  for (; stop < parts.size(); ++stop) {
    dropped += parts[stop].size() + (stop > 1 ? 1 : 0);
    if (path.size() - dropped + 3 <= limit) break;
  }
  String out = String(parts[0]) + u"/...";
  for (size_t i = stop + 1; i < parts.size(); ++i)
    out = out + u"/" + parts[i];
  return out;
}

}  // namespace qv

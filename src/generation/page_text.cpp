// Cleaning of page text and the short path of the overwrite question.
#include "generation/page_text.h"

#include <vector>

#include "support/tyx_vars.h"

namespace qv {

namespace {

// Each "</head>" (any case) becomes the tag and "</head>" in lower case.
String InsertGeneratorTag(const String& text) {
  static constexpr StringView kHead = u"</head>";
  const String lower = ToLower(text);
  size_t at = lower.view().find(kHead);
  if (at == StringView::npos) return text;
  const String tag = GeneratorTag();
  String out;
  out.Reserve(text.size() + tag.size() + 16);
  size_t from = 0;
  while (at != StringView::npos) {
    out.Append(text.view().substr(from, at - from));
    out.Append(tag);
    out.Append(kHead);
    from = at + kHead.size();
    at = lower.view().find(kHead, from);
  }
  out.Append(text.view().substr(from));
  return out;
}

}  // namespace

String GeneratorTag() {
  return u"<meta name=\"generator\" content=\"" + Vars().ProductName + u" v" + Vars().LibVersion +
         u"\" />\r\n";
}

String StripBlankLines(StringView text) {
  String out;
  out.Reserve(text.size());
  String line;
  bool has_text = false;
  bool has_comment = false;
  int comments = 0;
  for (const Char c : text) {
    if (c == u'\n') {
      if (has_comment) {
        if (comments == 1) out.Append(u"\r\n");
        out.Append(line);
        out.Append(u"\r\n");
      } else if (has_text) {
        if (comments > 1) out.Append(u"\r\n");
        out.Append(line);
        out.Append(u"\r\n");
        comments = 0;
      }
      line.Clear();
      has_text = false;
      has_comment = false;
      continue;
    }
    if (c == u'\r') continue;
    line.Append(c);
    if (c == u' ' || c == u'\t') continue;
    if (c == u'\'' && !has_text) {
      has_comment = true;
      ++comments;
    }
    has_text = true;
  }
  if (has_text) {
    out.Append(line);
    out.Append(u"\r\n");
  }
  return InsertGeneratorTag(out);
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

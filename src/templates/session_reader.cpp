// Sessions are found by a plain forward scan; the first matching identifier wins, and session
// tags are neither counted nor paired, so a stray closing tag is simply passed over.
#include "templates/session_reader.h"

#include <algorithm>

#include "automation/error.h"
#include "platform/fs.h"
#include "platform/text_file.h"
#include "templates/text_search.h"

namespace qv::templates {
namespace {

constexpr StringView kOpen = u"<!--##";
constexpr StringView kClose = u"##-->";
const TextFinder kOpenFinder(kOpen);
const TextFinder kCloseFinder(kClose);
constexpr StringView kSession = u"session";
constexpr StringView kInclude = u"include";
constexpr StringView kEndSession = u"/session##-->";
// Far beyond any real package; it only stops chains that never come back to the same file.
constexpr size_t kMaxIncludeDepth = 200;

}  // namespace

String SessionReader::GetSession(StringView source, StringView id) {
  const String wanted = ToLower(id);
  const size_t word_end = kOpen.size() + kSession.size();
  for (size_t open = FindTagWord(source, kOpenFinder, kSession, 0); open != kNotFound;) {
    const size_t close = kCloseFinder.Find(source, open + word_end);
    if (close == kNotFound) return String();
    const StringView name = TrimBlanks(source.substr(open + word_end, close - open - word_end));
    const size_t body = close + kClose.size();
    if (ToLower(name) == wanted) {
      const size_t end = FindTagWord(source, kOpenFinder, kEndSession, body);
      if (end == kNotFound) return String();
      return ExpandIncludes(source.substr(body, end - body));
    }
    open = FindTagWord(source, kOpenFinder, kSession, body);
  }
  return String();
}

String SessionReader::ExpandIncludes(StringView body) {
  const size_t word_end = kOpen.size() + kInclude.size();
  size_t tag = FindTagWord(body, kOpenFinder, kInclude, 0);
  if (tag == kNotFound) return String(body);
  String out;
  size_t copy = 0;
  while (tag != kNotFound) {
    out.Append(body.substr(copy, tag - copy));
    const size_t close = kCloseFinder.Find(body, tag + word_end);
    if (close == kNotFound) {
      out.Append(body.substr(tag));
      return out;
    }
    out.Append(IncludedText(body.substr(tag + word_end, close - tag - word_end)).view());
    copy = close + kClose.size();
    tag = FindTagWord(body, kOpenFinder, kInclude, copy);
  }
  out.Append(body.substr(copy));
  return out;
}

String SessionReader::IncludedText(StringView inner) {
  const StringView target = TrimBlanks(inner);
  if (std::count(target.begin(), target.end(), u'/') != 1) return String();
  const size_t slash = target.find(u'/');
  const StringView file = TrimBlanks(target.substr(0, slash));
  const StringView id = TrimBlanks(target.substr(slash + 1));
  const String path = fs::JoinPath(folder_, file);
  if (!fs::FileExists(path)) return String();

  String link = path;
  link.Append(u'/');
  link.Append(ToLower(id).view());
  const bool loops = std::find(chain_.begin(), chain_.end(), link) != chain_.end();
  if (loops || chain_.size() >= kMaxIncludeDepth) {
    String words = u"Out of stack space: the include of \"";
    words.Append(file);
    words.Append(u'/');
    words.Append(id);
    words.Append(loops ? StringView(u"\" includes itself") : StringView(u"\" nests too deeply"));
    throw Error(kErrOutOfStack, std::move(words));
  }
  const String text = ReadSourceFile(path);
  chain_.push_back(link);
  String result;
  try {
    result = GetSession(text, id);
  } catch (...) {
    chain_.pop_back();
    throw;
  }
  chain_.pop_back();
  return result;
}

}  // namespace qv::templates

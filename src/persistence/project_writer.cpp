// Save: the project as XML, one element per line with CR LF, objects in the user's order (by
// sequence number, never by list order) and each bag's FileSave entries in registration order.
// The file is opened first, so a bad path fails before anything else happens; on a failure
// part-way the text written so far stays in the file, as a streamed write would leave it.
#include <cerrno>
#include <cstdio>
#include <string>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"
#include "model/tyx.h"
#include "persistence/project_file.h"
#include "persistence/project_values.h"
#include "platform/fs.h"
#include "platform/text_file.h"
#include "support/common.h"
#include "support/registry.h"
#include "support/tyx_vars.h"

namespace qv {
namespace {

constexpr std::u16string_view kEncodingValue = u"XMLEncodeCharSet";
constexpr size_t kFlushSize = 1 << 20;

// The output file, written in large blocks.
class ProjectSink {
 public:
  explicit ProjectSink(const String& path) : file_(std::fopen(fs::ToNative(path).c_str(), "wb")) {
    if (file_) return;
    throw Error(errno == ENOENT || errno == ENOTDIR ? kErrPathNotFound : kErrPermissionDenied);
  }
  // After a failure, keeps what was written so far, as a streamed write would.
  ~ProjectSink() {
    if (!file_) return;
    std::fwrite(buffer_.data(), 1, buffer_.size(), file_);
    std::fclose(file_);
  }
  ProjectSink(const ProjectSink&) = delete;
  ProjectSink& operator=(const ProjectSink&) = delete;

  // Appends one line of UTF-8 text and its CR LF.
  void Line(std::string_view text) {
    buffer_ += text;
    buffer_ += "\r\n";
    if (buffer_.size() >= kFlushSize) Flush();
  }
  void Line(StringView text) { Line(std::string_view(String::ToUtf8(text))); }
  void Close() {
    Flush();
    const int failed = std::fclose(file_);
    file_ = nullptr;
    if (failed != 0) throw Error(kErrDeviceIo);
  }

 private:
  void Flush() {
    if (buffer_.empty()) return;
    const size_t written = std::fwrite(buffer_.data(), 1, buffer_.size(), file_);
    const bool short_write = written != buffer_.size();
    buffer_.clear();
    if (short_write) throw Error(kErrDeviceIo);
  }

  std::FILE* file_;
  std::string buffer_;
};

// The declaration's encoding name: the system's, unless the user's settings name another.
String EncodingName() {
  TyxVars& vars = Vars();
  LoadSystemCharset();
  const Variant stored = ReadRegValue(u"HKCU", vars.SettingsKey, kEncodingValue);
  if (!stored.is_empty()) {
    String name = ToString(stored);
    if (!name.empty()) return name;
  }
  return vars.SystemCharset;
}

String Declaration(const String& encoding) {
  if (encoding.empty()) return String(u"<?xml version=\"1.0\" standalone=\"yes\"?>");
  return u"<?xml version=\"1.0\" encoding=\"" + encoding + u"\" standalone=\"yes\"?>";
}

// Appends `name="value" ` for each FileSave entry of the bag.
void AppendAttributes(std::string& line, const TyProperties& bag) {
  bag.ForEach([&](const TyProperty& p) {
    if (p.FileSave()) AppendAttribute(line, p.Name(), p.DataType(), p.Value());
  });
}

// One element's line: "<Tag ", the attributes, then ">" or "/>". The buffer is reused from
// line to line.
std::string_view ElementLine(std::string& line, std::string_view tag, const TyProperties& bag,
                             std::string_view close) {
  line.clear();
  line += '<';
  line += tag;
  line += ' ';
  AppendAttributes(line, bag);
  line += close;
  return line;
}

// The entries of a list in the user's order: entry i - 1 is the one whose sequence number is
// i, found as the list's Seq(i) finds it (the first in list order). A number that no entry
// holds leaves a gap, which the writer reports as the missing object it is.
template <class T>
std::vector<T*> BySequence(const NamedList<T>& list) {
  const int32_t count = list.Count();
  std::vector<T*> ordered(static_cast<size_t>(count), nullptr);
  list.ForEach([&](T& item) {
    int16_t seq = 0;
    try {
      seq = NamedList<T>::SeqOf(item);
    } catch (const Error&) {
      return;  // Seq runs with failures ignored: an unreadable number matches nothing
    }
    if (seq < 1 || seq > count) return;
    T*& slot = ordered[static_cast<size_t>(seq - 1)];
    if (!slot) slot = &item;
  });
  return ordered;
}

template <class T>
T& Required(T* item) {
  if (!item) throw Error(kErrObjectRequired);
  return *item;
}

void WriteDatabase(ProjectSink& sink, std::string& line, const TyxDatabase& db) {
  sink.Line(ElementLine(line, "Database", db.Properties(), ">"));
  for (TyxTable* table : BySequence(db.Tables().list())) {
    sink.Line(ElementLine(line, "Table", Required(table).Properties(), ">"));
    for (TyxField* field : BySequence(table->Fields().list())) {
      sink.Line(ElementLine(line, "Field", Required(field).Properties(), "/>"));
    }
    sink.Line(std::string_view("</Table>"));
  }
  sink.Line(std::string_view("</Database>"));
}

}  // namespace

void SaveProjectFile(Tyx& tyx, const String& project_file) {
  ProjectSink sink(project_file);
  const String encoding = EncodingName();
  sink.Line(Declaration(encoding));
  WriteRegValue(u"HKCU", Vars().SettingsKey, kEncodingValue, kRegSz, Variant(encoding));

  std::string line = "<Project Version=\"" + tyx.EngineVersion().ToUtf8() + "\" ";
  AppendAttributes(line, tyx.Properties());
  line += '>';
  sink.Line(std::string_view(line));

  for (TyxExtension* extension : BySequence(tyx.Extensions().list())) {
    sink.Line(ElementLine(line, "Extension", Required(extension).Properties(), "/>"));
  }
  if (tyx.Databases().Count() >= 1) WriteDatabase(sink, line, *tyx.db());
  sink.Line(std::string_view("</Project>"));
  sink.Close();
}

}  // namespace qv

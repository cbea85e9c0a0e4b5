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

  // Appends one line and its CR LF.
  void Line(StringView text) {
    buffer_ += EncodeText(text);
    buffer_ += "\r\n";
    if (buffer_.size() >= kFlushSize) Flush();
  }
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
void AppendAttributes(String& line, const TyProperties& bag) {
  bag.ForEach([&](const TyProperty& p) {
    if (!p.FileSave()) return;
    const String name = XmlEscape(p.Name());
    line.Append(name.view());
    line.Append(u"=\"");
    line.Append(AttributeText(name, p.DataType(), p.Value()).view());
    line.Append(u"\" ");
  });
}

String ElementLine(StringView tag, const TyProperties& bag, StringView close) {
  String line;
  line.Reserve(4096);
  line.Append(u'<');
  line.Append(tag);
  line.Append(u' ');
  AppendAttributes(line, bag);
  line.Append(close);
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

void WriteFields(ProjectSink& sink, const TyxTable& table) {
  for (TyxField* field : BySequence(table.Fields().list())) {
    sink.Line(ElementLine(u"Field", Required(field).Properties(), u"/>"));
  }
}

void WriteDatabase(ProjectSink& sink, const TyxDatabase& db) {
  sink.Line(ElementLine(u"Database", db.Properties(), u">"));
  for (TyxTable* table : BySequence(db.Tables().list())) {
    sink.Line(ElementLine(u"Table", Required(table).Properties(), u">"));
    WriteFields(sink, *table);
    sink.Line(u"</Table>");
  }
  sink.Line(u"</Database>");
}

}  // namespace

void SaveProjectFile(Tyx& tyx, const String& project_file) {
  ProjectSink sink(project_file);
  const String encoding = EncodingName();
  sink.Line(Declaration(encoding));
  WriteRegValue(u"HKCU", Vars().SettingsKey, kEncodingValue, kRegSz, Variant(encoding));

  String project = u"<Project Version=\"" + tyx.EngineVersion() + u"\" ";
  AppendAttributes(project, tyx.Properties());
  project.Append(u">");
  sink.Line(project);

  for (TyxExtension* extension : BySequence(tyx.Extensions().list())) {
    sink.Line(ElementLine(u"Extension", Required(extension).Properties(), u"/>"));
  }
  if (tyx.Databases().Count() >= 1) WriteDatabase(sink, *tyx.db());
  sink.Line(u"</Project>");
  sink.Close();
}

}  // namespace qv

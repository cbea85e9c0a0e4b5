// Output naming and paths of the generation run.
#include "generation/output_paths.h"

#include <filesystem>

#include "model/tyx.h"
#include "platform/fs.h"
#include "support/tyx_vars.h"

namespace qv {

String MakeOutputName(const Tyx& tyx, StringView base_name, StringView field_var,
                      StringView page_name, StringView ext) {
  String name(base_name);
  if (!field_var.empty())
    name = name + u"_" + field_var.substr(field_var.size() < 2 ? field_var.size() : 2);
  const String type = ToLower(tyx.OutputNameType());
  const String text = tyx.OutputNameExt();
  if (type == u"prefix") {
    name = text + name + page_name;
  } else if (type == u"infix") {
    name = name.empty() ? String(page_name) : name + text + page_name;
  } else if (type == u"suffix") {
    name = name + page_name + text;
  } else {
    name = name + page_name;
  }
  name = name + u"." + ext;
  return tyx.OutputNameLCase() ? ToLower(name) : name;
}

String ResolveExt(StringView ext) {
  return ext == u"*" ? Vars().DefaultExt : String(ext);
}

String WithTrailingSlash(StringView path) {
  const StringView trimmed = TrimBlanks(path);
  if (trimmed.empty()) return String();
  const Char last = trimmed.back();
  if (last == u'/' || last == u'\\') return String(trimmed);
  return String(trimmed) + u"/";
}

String AppRootOf(const Tyx& tyx) {
  const String app_root = tyx.AppRootFolder();
  return TrimBlanks(app_root).empty() ? tyx.Destination() : app_root;
}

bool PathIsInside(StringView root, StringView path) {
  namespace stdfs = std::filesystem;
  std::error_code ec;
  const stdfs::path base = stdfs::absolute(fs::ToNative(fs::NormalizeSeparators(root)), ec);
  if (ec) return false;
  const stdfs::path full = stdfs::absolute(fs::ToNative(fs::NormalizeSeparators(path)), ec);
  if (ec) return false;
  const stdfs::path rel = full.lexically_normal().lexically_relative(base.lexically_normal());
  if (rel.empty()) return false;
  const auto first = *rel.begin();
  return first != ".." && !rel.is_absolute();
}

String ResolveOutputPath(const Tyx& tyx, StringView folder_spec, StringView file_name,
                         bool check_only) {
  String root;
  StringView sub;
  if (folder_spec.starts_with(u"~\\") || folder_spec.starts_with(u"~/")) {
    root = WithTrailingSlash(AppRootOf(tyx));
    sub = folder_spec.substr(2);
  } else {
    root = WithTrailingSlash(tyx.Destination());
    sub = folder_spec;
  }
  String folder = root;
  if (!sub.empty()) folder = root + WithTrailingSlash(fs::NormalizeSeparators(sub));
  const String path = folder + fs::NormalizeSeparators(file_name);
  // Control files, table names and copy lists all feed this path; none of them may reach
  // outside the folders the user gave us.
  if (!PathIsInside(root.empty() ? String(u".") : root, path)) {
    Vars().ProjErr = Vars().ProductTitle + u": Output path \"" + path +
                     u"\" lies outside the folder \"" + root + u"\"! Generation aborted!";
    return String();
  }
  if (!sub.empty() && !check_only) CreateFolders(folder);
  return path;
}

void CreateFolders(StringView path) {
  if (TrimBlanks(path).empty()) return;
  try {
    fs::CreateFolders(fs::NormalizeSeparators(path));
  } catch (const Error&) {
    // Ignored on purpose: the file that is written next reports what went wrong.
  }
}

}  // namespace qv

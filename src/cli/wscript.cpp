// The runner's WScript object and its helpers.
#include "cli/wscript.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>
#include <thread>

#include "automation/convert.h"

namespace qv::cli {
namespace {

String EchoText(const Variant& v) {
  if (v.is_null()) return u"Null";
  if (v.is_empty()) return {};
  return ToString(v.is_object() ? ValueOf(v) : v);
}

class ListEnumerator : public Enumerator {
 public:
  explicit ListEnumerator(std::vector<String> items) : items_(std::move(items)) {}
  bool Next(Variant& item) override {
    if (next_ >= items_.size()) return false;
    item = Variant(items_[next_++]);
    return true;
  }
  void Reset() override { next_ = 0; }

 private:
  std::vector<String> items_;
  size_t next_ = 0;
};

// A value as Echo and the console streams print it.
struct EchoArg {
  String text;
  static EchoArg FromScript(const Variant& v) { return {EchoText(v)}; }
};

bool IsSwitch(StringView arg) {
  return arg.size() > 1 && arg[0] == '/';
}

Variant ArgumentAt(ScriptArguments& a, Args args) {
  CheckArgCount(args, 1, 1);
  const int32_t i = ToLong(args[0]);
  if (i < 0 || static_cast<size_t>(i) >= a.items().size()) throw Error(kErrSubscript);
  return Variant(a.items()[i]);
}

}  // namespace

void ConsoleStream::Write(StringView text) {
  const std::string utf8 = String::ToUtf8(text);
  std::fwrite(utf8.data(), 1, utf8.size(), file_);
  std::fflush(file_);
}

const DispatchTable<ConsoleStream>& ConsoleStream::Table() {
  using S = ConsoleStream;
  static const auto table = DispatchTable<S>(u"TextStream")
                                .Method<[](S& s, EchoArg text) { s.Write(text.text); }>(u"Write")
                                .Method<[](S& s, std::optional<EchoArg> text) {
                                  String line = text ? text->text : String();
                                  line.Append(u'\n');
                                  s.Write(line);
                                }>(u"WriteLine")
                                .Method<[](S& s, int32_t count) {
                                  for (int32_t i = 0; i < count; ++i)
                                    s.Write(u"\n");
                                }>(u"WriteBlankLines");
  return table;
}

const DispatchTable<ScriptArguments>& ScriptArguments::Table() {
  static const auto table =
      DispatchTable<ScriptArguments>(u"Arguments")
          .Method(u"Item", ArgumentAt)
          .Property(u"Named",
                    [](ScriptArguments& a, Args args) {
                      auto named = MakeRef<NamedArguments>(a.items());
                      if (args.empty()) return Variant(named);
                      return named->Invoke(kDispIdValue, kInvokeGet, args);
                    })
          .Property(u"Unnamed",
                    [](ScriptArguments& a, Args args) {
                      std::vector<String> rest;
                      for (const auto& item : a.items()) {
                        if (!IsSwitch(item.view())) rest.push_back(item);
                      }
                      auto unnamed = MakeRef<ScriptArguments>(std::move(rest));
                      if (args.empty()) return Variant(unnamed);
                      return ArgumentAt(*unnamed, args);
                    })
          .Property(u"Count", [](ScriptArguments& a,
                                 Args) { return Variant(static_cast<int32_t>(a.items().size())); })
          .Property(u"Length", [](ScriptArguments& a,
                                  Args) { return Variant(static_cast<int32_t>(a.items().size())); })
          .Default(u"Item");
  return table;
}

Ref<Enumerator> ScriptArguments::NewEnum() {
  return MakeRef<ListEnumerator>(items_);
}

NamedArguments::NamedArguments(const std::vector<String>& all) {
  for (const auto& arg : all) {
    const StringView v = arg.view();
    if (!IsSwitch(v)) continue;
    const size_t colon = v.find(u':');
    if (colon == StringView::npos) {
      items_.emplace_back(String(v.substr(1)), Variant());
    } else {
      items_.emplace_back(String(v.substr(1, colon - 1)), Variant(String(v.substr(colon + 1))));
    }
  }
}

const Variant* NamedArguments::Find(StringView name) const {
  for (const auto& [n, value] : items_) {
    if (EqualsNoCase(n, name)) return &value;
  }
  return nullptr;
}

Ref<Enumerator> NamedArguments::NewEnum() {
  std::vector<String> names;
  for (const auto& item : items_)
    names.push_back(item.first);
  return MakeRef<ListEnumerator>(std::move(names));
}

const DispatchTable<NamedArguments>& NamedArguments::Table() {
  using N = NamedArguments;
  static const auto table =
      DispatchTable<N>(u"WshNamed")
          .Method<[](N& n, String name) {
            const Variant* v = n.Find(name);
            return v ? *v : Variant();
          }>(u"Item")
          .Method<[](N& n, String name) { return n.Find(name) != nullptr; }>(u"Exists")
          .Property(u"Count",
                    [](N& n, Args) { return Variant(static_cast<int32_t>(n.items().size())); })
          .Property(u"Length",
                    [](N& n, Args) { return Variant(static_cast<int32_t>(n.items().size())); })
          .Default(u"Item");
  return table;
}

int ConsoleInput::Get() {
  if (peeked_ != -2) {
    const int c = peeked_;
    peeked_ = -2;
    return c;
  }
  return std::getchar();
}

bool ConsoleInput::AtEnd() {
  if (peeked_ == -2) peeked_ = std::getchar();
  return peeked_ == EOF;
}

String ConsoleInput::ReadLine() {
  if (AtEnd()) throw Error(kErrInputPastEnd);
  std::string bytes;
  for (int c = Get(); c != EOF && c != '\n'; c = Get())
    bytes.push_back(static_cast<char>(c));
  if (!bytes.empty() && bytes.back() == '\r') bytes.pop_back();
  return String::FromUtf8(bytes);
}

String ConsoleInput::ReadAll() {
  std::string bytes;
  while (!AtEnd())
    bytes.push_back(static_cast<char>(Get()));
  return String::FromUtf8(bytes);
}

String ConsoleInput::Read(int32_t count) {
  if (AtEnd()) throw Error(kErrInputPastEnd);
  std::string bytes;
  for (int32_t i = 0; i < count && !AtEnd(); ++i)
    bytes.push_back(static_cast<char>(Get()));
  return String::FromUtf8(bytes);
}

const DispatchTable<ConsoleInput>& ConsoleInput::Table() {
  using I = ConsoleInput;
  static const auto table = DispatchTable<I>(u"TextStream")
                                .Method<&I::ReadLine>(u"ReadLine")
                                .Method<&I::Read>(u"Read")
                                .Method<&I::ReadAll>(u"ReadAll")
                                .Method<[](I& in) { in.ReadLine(); }>(u"SkipLine")
                                .Property<&I::AtEnd>(u"AtEndOfStream");
  return table;
}

WScriptObject::WScriptObject(vbs::Engine& engine, String full_name, std::vector<String> arguments)
    : engine_(engine),
      full_name_(std::move(full_name)),
      arguments_(MakeRef<ScriptArguments>(std::move(arguments))),
      out_(MakeRef<ConsoleStream>(stdout)),
      err_(MakeRef<ConsoleStream>(stderr)),
      in_(MakeRef<ConsoleInput>()) {}

const DispatchTable<WScriptObject>& WScriptObject::Table() {
  using W = WScriptObject;
  static const auto table =
      DispatchTable<WScriptObject>(u"Object")
          .Method(u"Echo",
                  [](WScriptObject& w, Args args) {
                    String line;
                    for (size_t i = 0; i < args.size(); ++i) {
                      if (i) line.Append(u' ');
                      line.Append(EchoText(args[i]).view());
                    }
                    line.Append(u'\n');
                    w.out_->Write(line);
                    return Variant();
                  })
          // WScript.Arguments(0) hands the index on to the list's Item, as WSH does.
          .Property(u"Arguments",
                    [](WScriptObject& w, Args args) {
                      return args.empty() ? Variant(w.arguments_) : ArgumentAt(*w.arguments_, args);
                    })
          .Method<[](W&, std::optional<int32_t> code) {
            std::fflush(stdout);
            throw ScriptQuit{code.value_or(0)};
          }>(u"Quit")
          .Property(u"StdOut", [](WScriptObject& w, Args) { return Variant(w.out_); })
          .Property(u"StdErr", [](WScriptObject& w, Args) { return Variant(w.err_); })
          .Property(u"StdIn", [](WScriptObject& w, Args) { return Variant(w.in_); })
          .Property(u"ScriptFullName", [](WScriptObject& w, Args) { return Variant(w.full_name_); })
          .Property(u"ScriptName",
                    [](WScriptObject& w, Args) {
                      const StringView full = w.full_name_.view();
                      const size_t slash = full.find_last_of(u"/\\");
                      return Variant(slash == StringView::npos ? full : full.substr(slash + 1));
                    })
          .Property(u"Name", [](WScriptObject&, Args) { return Variant(u"Windows Script Host"); })
          .Property(u"Version", [](WScriptObject&, Args) { return Variant(u"5.8"); })
          .Property(u"Interactive", [](WScriptObject&, Args) { return Variant(false); })
          .Method<[](W&, int32_t ms) {
            if (0 < ms) std::this_thread::sleep_for(std::chrono::milliseconds(ms));
          }>(u"Sleep")
          .Method<[](W& w, String id, std::optional<Variant> /*prefix*/) {
            Ref<Object> object = w.engine_.Registry().Create(id);
            if (!object) {
              throw Error(kErrCannotCreateObject,
                          StandardErrorText(kErrCannotCreateObject) + u": '" + id + u"'");
            }
            return object;
          }>(u"CreateObject");
  return table;
}

const DispatchTable<CounterObject>& CounterObject::Table() {
  static const auto table =
      DispatchTable<CounterObject>(u"Counter")
          .Property(
              u"Value", [](CounterObject& c, Args) { return Variant(c.value); },
              [](CounterObject& c, Args, const Variant& v) { c.value = ToLong(v); })
          .Method(u"Increment",
                  [](CounterObject& c, Args) {
                    ++c.value;
                    return Variant(c.value);
                  })
          .Default(u"Value");
  return table;
}

bool ReadScriptFile(const std::string& path, String& text) {
  // A folder opens as a stream on Linux and only fails (with an exception) on the first read;
  // cscript calls it a script it can't find.
  std::error_code ec;
  if (std::filesystem::is_directory(path, ec)) return false;
  std::ifstream in(path, std::ios::binary);
  if (!in) return false;
  const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  String raw;
  if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFF &&
      static_cast<unsigned char>(bytes[1]) == 0xFE) {
    for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
      raw.Append(static_cast<Char>(static_cast<unsigned char>(bytes[i]) |
                                   (static_cast<unsigned char>(bytes[i + 1]) << 8)));
    }
  } else if (bytes.size() >= 2 && static_cast<unsigned char>(bytes[0]) == 0xFE &&
             static_cast<unsigned char>(bytes[1]) == 0xFF) {
    for (size_t i = 2; i + 1 < bytes.size(); i += 2) {
      raw.Append(static_cast<Char>((static_cast<unsigned char>(bytes[i]) << 8) |
                                   static_cast<unsigned char>(bytes[i + 1])));
    }
  } else {
    std::string_view body(bytes);
    if (body.size() >= 3 && body.substr(0, 3) == "\xEF\xBB\xBF") body.remove_prefix(3);
    raw = String::FromUtf8(body);
  }
  String out;
  out.Reserve(raw.size() + raw.size() / 16);
  const StringView v = raw.view();
  for (size_t i = 0; i < v.size(); ++i) {
    if (v[i] == '\n' && (i == 0 || v[i - 1] != '\r')) out.Append(u'\r');
    out.Append(v[i]);
  }
  text = std::move(out);
  return true;
}

std::string ErrorReport(const std::string& path, const vbs::ScriptError& error) {
  std::ostringstream s;
  s << path << "(" << error.Line() << ", " << error.Column() << ") " << error.Source().ToUtf8()
    << ": " << error.Description().ToUtf8();
  return s.str();
}

}  // namespace qv::cli

// The WScript object of the script runner, as cscript offers it: Echo, Arguments, Quit,
// StdIn/StdOut/StdErr, ScriptName/ScriptFullName, Sleep and CreateObject; plus the file reading
// rules for script sources and the cscript form of an error report.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "automation/dispatch.h"
#include "vbscript/engine.h"

namespace qv::cli {

// Thrown by WScript.Quit; it passes through the script's error handling to the runner.
struct ScriptQuit {
  int code;
};

// A text stream on a C stream: Write, WriteLine, WriteBlankLines.
class ConsoleStream : public DispatchObject<ConsoleStream> {
 public:
  explicit ConsoleStream(std::FILE* file) : file_(file) {}
  static const DispatchTable<ConsoleStream>& Table();
  void Write(StringView text);

 private:
  std::FILE* file_;
};

// WScript.Arguments: Count, Length, Item (default) and For Each; Named and Unnamed split them
// into /name:value switches and the rest.
class ScriptArguments : public DispatchObject<ScriptArguments> {
 public:
  explicit ScriptArguments(std::vector<String> items) : items_(std::move(items)) {}
  static const DispatchTable<ScriptArguments>& Table();
  Ref<Enumerator> NewEnum() override;
  const std::vector<String>& items() const { return items_; }

 private:
  std::vector<String> items_;
};

// WScript.Arguments.Named: Item(name) (default), Exists, Count, Length and For Each over the
// names.
class NamedArguments : public DispatchObject<NamedArguments> {
 public:
  explicit NamedArguments(const std::vector<String>& all);
  static const DispatchTable<NamedArguments>& Table();
  Ref<Enumerator> NewEnum() override;
  // The value of a switch; Empty for /name without a value, nullptr when it was not given.
  const Variant* Find(StringView name) const;
  const std::vector<std::pair<String, Variant>>& items() const { return items_; }

 private:
  std::vector<std::pair<String, Variant>> items_;
};

// WScript.StdIn: ReadLine, ReadAll, Read, SkipLine, AtEndOfStream.
class ConsoleInput : public DispatchObject<ConsoleInput> {
 public:
  static const DispatchTable<ConsoleInput>& Table();
  bool AtEnd();
  String ReadLine();
  String ReadAll();
  String Read(int32_t count);

 private:
  int Get();
  int peeked_ = -2;  // -2: nothing looked at yet
};

class WScriptObject : public DispatchObject<WScriptObject> {
 public:
  WScriptObject(vbs::Engine& engine, String full_name, std::vector<String> arguments);
  static const DispatchTable<WScriptObject>& Table();

 private:
  vbs::Engine& engine_;
  String full_name_;
  Ref<ScriptArguments> arguments_;
  Ref<ConsoleStream> out_;
  Ref<ConsoleStream> err_;
  Ref<ConsoleInput> in_;
};

// A small object for measuring member access: Value (read/write) and Increment.
class CounterObject : public DispatchObject<CounterObject> {
 public:
  static const DispatchTable<CounterObject>& Table();
  int32_t value = 0;
};

// Reads a script file: UTF-8 (BOM optional) or UTF-16 with BOM; lone LF becomes CR LF.
// Returns false when the file can't be read.
bool ReadScriptFile(const std::string& path, String& text);

// "<path>(<line>, <column>) <source>: <description>", as cscript reports an error.
std::string ErrorReport(const std::string& path, const vbs::ScriptError& error);

}  // namespace qv::cli

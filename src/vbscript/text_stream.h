// Scripting.TextStream: a text file opened for reading, writing or appending. Reading decodes
// the whole file once (UTF-8, or UTF-16 when asked for or when a BOM says so); writing encodes
// as it goes, UTF-8 without BOM or UTF-16 little-endian with its BOM.
#pragma once

#include <cstdio>
#include <string>

#include "automation/dispatch.h"

namespace qv::vbs {

enum class IoMode { Reading = 1, Writing = 2, Appending = 8 };
// The text formats of OpenTextFile: TristateUseDefault (-2), TristateTrue (-1, Unicode),
// TristateFalse (0, the system code page: UTF-8 here).
enum class TextFormat { Default = -2, Unicode = -1, Ascii = 0 };

class TextStream : public DispatchObject<TextStream> {
 public:
  static const DispatchTable<TextStream>& Table();
  ~TextStream() override;

  // Opens `path`; raises 53 for a missing file to read, 76 for a missing folder, 70 when the
  // system refuses.
  static Ref<TextStream> Open(const std::string& path, IoMode mode, bool create, TextFormat format);
  // The process's standard input (0), output (1) or error (2), which Close leaves open.
  static Ref<TextStream> Standard(int32_t which);

  String Read(int32_t count);
  String ReadLine();
  String ReadAll();
  void Skip(int32_t count);
  void SkipLine();
  void Write(StringView text);
  void WriteLine(StringView text);
  void WriteBlankLines(int32_t count);
  void Close();
  bool AtEndOfStream();
  bool AtEndOfLine();
  int32_t line() const { return line_; }
  int32_t column() const { return column_; }

 private:
  void RequireReading();
  void LoadStandardInput();
  void RequireWriting() const;
  void Advance(size_t count);

  IoMode mode_ = IoMode::Reading;
  bool unicode_ = false;
  std::FILE* file_ = nullptr;   // open while writing
  bool borrowed_ = false;       // a standard stream, not ours to close
  bool stdin_pending_ = false;  // standard input, read at the first call that needs it
  std::u16string text_;         // the decoded file while reading
  size_t at_ = 0;
  int32_t line_ = 1;
  int32_t column_ = 1;
};

}  // namespace qv::vbs

// ADODB.Stream: a buffer of bytes or text in memory that pages fill from and save to files,
// which is what downloads and uploads need. Text is held encoded in the stream's Charset
// ("Unicode" by default, with the byte-order mark ADO writes first).
#pragma once

#include <cstdint>
#include <vector>

#include "automation/dispatch.h"

namespace qv::ado {

class StreamObject : public DispatchObject<StreamObject> {
 public:
  static const DispatchTable<StreamObject>& Table();

  void RequireOpen() const;
  void Open(Args args);
  void Close();
  void Write(const Variant& data);
  void WriteText(const String& text, int32_t options);
  Variant Read(int32_t count);
  String ReadText(int32_t count);
  void SkipLine();
  void LoadFromFile(const String& path);
  void SaveToFile(const String& path, int32_t options);
  void CopyTo(StreamObject& target, int32_t count);
  void SetType(int32_t type);
  void SetCharset(const String& charset);
  void SetPosition(int64_t position);
  void SetEOS();

  bool open_ = false;
  int32_t type_ = 2;  // adTypeText
  String charset_ = u"Unicode";
  int32_t line_separator_ = -1;  // adCRLF
  int32_t mode_ = 0;
  std::vector<uint8_t> bytes_;
  size_t position_ = 0;

 private:
  void Put(const uint8_t* data, size_t size);
  String LineSeparatorText() const;
};

}  // namespace qv::ado

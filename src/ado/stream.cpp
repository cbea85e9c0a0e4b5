// Stream: the byte buffer, text in a chosen charset (through iconv for the single-byte ones),
// and files.
#include "ado/stream.h"

#include <iconv.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "ado/ado_errors.h"
#include "automation/convert.h"
#include "automation/safe_array.h"
#include "platform/data/type_mapping.h"

namespace qv::ado {
namespace {

constexpr StringView kSource = u"ADODB.Stream";
constexpr int32_t adTypeBinary = 1;
constexpr int32_t adTypeText = 2;
constexpr int32_t adReadAll = -1;
constexpr int32_t adReadLine = -2;
constexpr int32_t adWriteLine = 1;
constexpr int32_t adSaveCreateOverWrite = 2;
constexpr int32_t kErrOpeningFile = 3002;
constexpr int32_t kErrWriteFile = 3004;

enum class Encoding { Utf16, Utf8, Other };

Encoding EncodingOf(const String& charset) {
  const String lower = ToLower(charset);
  if (lower == u"unicode" || lower == u"utf-16" || lower == u"utf-16le") return Encoding::Utf16;
  if (lower == u"utf-8" || lower == u"utf8") return Encoding::Utf8;
  return Encoding::Other;
}

std::vector<uint8_t> Bom(Encoding encoding) {
  if (encoding == Encoding::Utf16) return {0xFF, 0xFE};
  if (encoding == Encoding::Utf8) return {0xEF, 0xBB, 0xBF};
  return {};
}

// Converts between a single-byte charset and UTF-16LE through iconv. A character the target
// lacks becomes "?", as Windows writes it; `unit` is the width of one input character.
std::vector<uint8_t> Iconv(const std::vector<uint8_t>& input, const std::string& to,
                           const std::string& from, size_t unit) {
  iconv_t cd = iconv_open(to.c_str(), from.c_str());
  if (cd == reinterpret_cast<iconv_t>(-1)) {
    throw AdoError(adErrInvalidArgument, kSource);
  }
  std::vector<uint8_t> output(input.size() * 4 + 16);
  char* in = const_cast<char*>(reinterpret_cast<const char*>(input.data()));
  size_t in_left = input.size();
  char* out = reinterpret_cast<char*>(output.data());
  size_t out_left = output.size();
  const std::string question = to == "UTF-16LE" ? std::string("?\0", 2) : std::string("?");
  while (in_left > 0) {
    if (iconv(cd, &in, &in_left, &out, &out_left) != static_cast<size_t>(-1)) break;
    if (errno != EILSEQ && errno != EINVAL) break;
    const size_t skip = std::min(unit, in_left);
    in += skip;
    in_left -= skip;
    if (out_left >= question.size()) {
      std::copy(question.begin(), question.end(), out);
      out += question.size();
      out_left -= question.size();
    }
  }
  iconv_close(cd);
  output.resize(output.size() - out_left);
  return output;
}

std::vector<uint8_t> Encode(StringView text, const String& charset) {
  std::vector<uint8_t> utf16;
  utf16.reserve(text.size() * 2);
  for (const Char c : text) {
    utf16.push_back(static_cast<uint8_t>(c & 0xFF));
    utf16.push_back(static_cast<uint8_t>(c >> 8));
  }
  switch (EncodingOf(charset)) {
    case Encoding::Utf16:
      return utf16;
    case Encoding::Utf8: {
      const std::string utf8 = String::ToUtf8(text);
      return std::vector<uint8_t>(utf8.begin(), utf8.end());
    }
    case Encoding::Other:
      return Iconv(utf16, charset.ToUtf8(), "UTF-16LE", 2);
  }
  return utf16;
}

String Decode(const uint8_t* data, size_t size, const String& charset) {
  std::vector<uint8_t> utf16;
  switch (EncodingOf(charset)) {
    case Encoding::Utf16:
      utf16.assign(data, data + (size & ~size_t{1}));
      break;
    case Encoding::Utf8:
      return String::FromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    case Encoding::Other:
      utf16 = Iconv(std::vector<uint8_t>(data, data + size), "UTF-16LE", charset.ToUtf8(), 1);
      break;
  }
  String text;
  text.Reserve(utf16.size() / 2);
  for (size_t i = 0; i + 1 < utf16.size(); i += 2)
    text.Append(static_cast<Char>(utf16[i] | (utf16[i + 1] << 8)));
  return text;
}

Variant None() {
  return Variant();
}

}  // namespace

void StreamObject::RequireOpen() const {
  if (!open_) throw AdoError(adErrObjectClosed, kSource);
}

void StreamObject::Open(Args args) {
  CheckArgCount(args, 0, 5);
  if (open_) throw AdoError(adErrObjectOpen, kSource);
  if (HasArg(args, 0) && !(args[0].is_string() && args[0].as_string().empty())) {
    throw AdoError(adErrFeatureNotAvailable, kSource, kNotCapableText);  // URLs and records
  }
  if (HasArg(args, 1)) mode_ = ToLong(args[1]);
  open_ = true;
  bytes_.clear();
  position_ = 0;
}

void StreamObject::Close() {
  RequireOpen();
  open_ = false;
  bytes_.clear();
  position_ = 0;
}

void StreamObject::Put(const uint8_t* data, size_t size) {
  if (position_ + size > bytes_.size()) bytes_.resize(position_ + size);
  std::copy(data, data + size, bytes_.begin() + static_cast<ptrdiff_t>(position_));
  position_ += size;
}

void StreamObject::Write(const Variant& data) {
  RequireOpen();
  if (type_ != adTypeBinary) throw AdoError(adErrIllegalOperation, kSource);
  const auto bytes = data::BytesOf(data.is_object() ? ValueOf(data) : data);
  if (!bytes) throw AdoError(adErrInvalidArgument, kSource);
  Put(bytes->data(), bytes->size());
}

String StreamObject::LineSeparatorText() const {
  if (line_separator_ == 10) return u"\n";
  if (line_separator_ == 13) return u"\r";
  return u"\r\n";
}

void StreamObject::WriteText(const String& text, int32_t options) {
  RequireOpen();
  if (type_ != adTypeText) throw AdoError(adErrIllegalOperation, kSource);
  if (bytes_.empty()) {
    const auto bom = Bom(EncodingOf(charset_));
    Put(bom.data(), bom.size());
  }
  String all = text;
  if (options == adWriteLine) all.Append(LineSeparatorText());
  const auto bytes = Encode(all, charset_);
  Put(bytes.data(), bytes.size());
}

Variant StreamObject::Read(int32_t count) {
  RequireOpen();
  if (type_ != adTypeBinary) throw AdoError(adErrIllegalOperation, kSource);
  if (count < adReadAll) throw AdoError(adErrInvalidArgument, kSource);
  if (position_ >= bytes_.size()) return Variant::Null();
  const size_t available = bytes_.size() - position_;
  const size_t n =
      count == adReadAll ? available : std::min<size_t>(available, static_cast<size_t>(count));
  const Variant result = data::ByteArray(std::span<const uint8_t>(bytes_.data() + position_, n));
  position_ += n;
  return result;
}

String StreamObject::ReadText(int32_t count) {
  RequireOpen();
  if (type_ != adTypeText) throw AdoError(adErrIllegalOperation, kSource);
  if (count < adReadLine) throw AdoError(adErrInvalidArgument, kSource);
  const Encoding encoding = EncodingOf(charset_);
  if (position_ == 0) {
    const auto bom = Bom(encoding);
    if (!bom.empty() && bytes_.size() >= bom.size() &&
        std::equal(bom.begin(), bom.end(), bytes_.begin())) {
      position_ = bom.size();
    }
  }
  if (position_ >= bytes_.size()) return {};
  const String rest = Decode(bytes_.data() + position_, bytes_.size() - position_, charset_);
  size_t take = rest.size();
  size_t skip = 0;
  if (count == adReadLine) {
    const String separator = LineSeparatorText();
    const size_t at = rest.view().find(separator.view());
    if (at != StringView::npos) {
      take = at;
      skip = separator.size();
    }
  } else if (count >= 0) {
    take = std::min<size_t>(take, static_cast<size_t>(count));
  }
  const String taken(rest.view().substr(0, take));
  position_ += Encode(rest.view().substr(0, take + skip), charset_).size();
  position_ = std::min(position_, bytes_.size());
  return taken;
}

void StreamObject::SkipLine() {
  ReadText(adReadLine);
}

void StreamObject::LoadFromFile(const String& path) {
  RequireOpen();
  std::ifstream in(std::filesystem::path(path.ToUtf8()), std::ios::binary);
  if (!in) throw Error(kErrOpeningFile, u"File could not be opened.", String(kSource));
  bytes_.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
  position_ = 0;
}

void StreamObject::SaveToFile(const String& path, int32_t options) {
  RequireOpen();
  const std::filesystem::path file(path.ToUtf8());
  std::error_code ec;
  if (options != adSaveCreateOverWrite && std::filesystem::exists(file, ec)) {
    throw Error(kErrWriteFile, u"Write to file failed.", String(kSource));
  }
  std::ofstream out(file, std::ios::binary | std::ios::trunc);
  if (!out) throw Error(kErrWriteFile, u"Write to file failed.", String(kSource));
  out.write(reinterpret_cast<const char*>(bytes_.data()),
            static_cast<std::streamsize>(bytes_.size()));
  if (!out) throw Error(kErrWriteFile, u"Write to file failed.", String(kSource));
}

void StreamObject::CopyTo(StreamObject& target, int32_t count) {
  RequireOpen();
  target.RequireOpen();
  const size_t available = position_ < bytes_.size() ? bytes_.size() - position_ : 0;
  const size_t n = count < 0 ? available : std::min<size_t>(available, static_cast<size_t>(count));
  target.Put(bytes_.data() + position_, n);
  position_ += n;
}

void StreamObject::SetType(int32_t type) {
  if (type != adTypeBinary && type != adTypeText) throw AdoError(adErrInvalidArgument, kSource);
  if (open_ && position_ != 0) throw AdoError(adErrIllegalOperation, kSource);
  type_ = type;
}

void StreamObject::SetCharset(const String& charset) {
  if (open_ && position_ != 0) throw AdoError(adErrIllegalOperation, kSource);
  if (EncodingOf(charset) == Encoding::Other) {
    iconv_t cd = iconv_open("UTF-16LE", charset.ToUtf8().c_str());
    if (cd == reinterpret_cast<iconv_t>(-1)) throw AdoError(adErrInvalidArgument, kSource);
    iconv_close(cd);
  }
  charset_ = charset;
}

void StreamObject::SetPosition(int64_t position) {
  RequireOpen();
  if (position < 0 || static_cast<uint64_t>(position) > bytes_.size()) {
    throw AdoError(adErrInvalidArgument, kSource);
  }
  position_ = static_cast<size_t>(position);
}

void StreamObject::SetEOS() {
  RequireOpen();
  bytes_.resize(position_);
}

const DispatchTable<StreamObject>& StreamObject::Table() {
  using S = StreamObject;
  static const auto table =
      DispatchTable<S>(u"Stream")
          .Method(u"Open",
                  [](S& s, Args args) {
                    s.Open(args);
                    return None();
                  })
          .Method(u"Close",
                  [](S& s, Args) {
                    s.Close();
                    return None();
                  })
          .Method(u"Write",
                  [](S& s, Args args) {
                    CheckArgCount(args, 1, 1);
                    s.Write(args[0]);
                    return None();
                  })
          .Method(u"WriteText",
                  [](S& s, Args args) {
                    CheckArgCount(args, 1, 2);
                    s.WriteText(ToString(args[0]), HasArg(args, 1) ? ToLong(args[1]) : 0);
                    return None();
                  })
          .Method(u"Read",
                  [](S& s, Args args) {
                    CheckArgCount(args, 0, 1);
                    return s.Read(HasArg(args, 0) ? ToLong(args[0]) : adReadAll);
                  })
          .Method(u"ReadText",
                  [](S& s, Args args) {
                    CheckArgCount(args, 0, 1);
                    return Variant(s.ReadText(HasArg(args, 0) ? ToLong(args[0]) : adReadAll));
                  })
          .Method(u"SkipLine",
                  [](S& s, Args) {
                    s.SkipLine();
                    return None();
                  })
          .Method(u"LoadFromFile",
                  [](S& s, Args args) {
                    CheckArgCount(args, 1, 1);
                    s.LoadFromFile(ToString(args[0]));
                    return None();
                  })
          .Method(u"SaveToFile",
                  [](S& s, Args args) {
                    CheckArgCount(args, 1, 2);
                    s.SaveToFile(ToString(args[0]), HasArg(args, 1) ? ToLong(args[1]) : 1);
                    return None();
                  })
          .Method(u"CopyTo",
                  [](S& s, Args args) {
                    CheckArgCount(args, 1, 2);
                    auto* target = args[0].is_object()
                                       ? dynamic_cast<StreamObject*>(args[0].as_object())
                                       : nullptr;
                    if (!target) throw AdoError(adErrInvalidArgument, kSource);
                    s.CopyTo(*target, HasArg(args, 1) ? ToLong(args[1]) : -1);
                    return None();
                  })
          .Method(u"Flush",
                  [](S& s, Args) {
                    s.RequireOpen();
                    return None();
                  })
          .Method(u"Cancel", [](S&, Args) { return None(); })
          .Method(u"SetEOS",
                  [](S& s, Args) {
                    s.SetEOS();
                    return None();
                  })
          .Property(
              u"Type", [](S& s, Args) { return Variant(s.type_); },
              [](S& s, Args, const Variant& v) { s.SetType(ToLong(v)); })
          .Property(
              u"Charset", [](S& s, Args) { return Variant(s.charset_); },
              [](S& s, Args, const Variant& v) { s.SetCharset(ToString(v)); })
          .Property(
              u"Position",
              [](S& s, Args) {
                s.RequireOpen();
                return Variant(static_cast<int32_t>(s.position_));
              },
              [](S& s, Args, const Variant& v) { s.SetPosition(ToLong(v)); })
          .Property(u"Size",
                    [](S& s, Args) {
                      s.RequireOpen();
                      return Variant(static_cast<int32_t>(s.bytes_.size()));
                    })
          .Property(u"EOS",
                    [](S& s, Args) {
                      s.RequireOpen();
                      return Variant(s.position_ >= s.bytes_.size());
                    })
          .Property(u"State", [](S& s, Args) { return Variant(int32_t{s.open_ ? 1 : 0}); })
          .Property(
              u"LineSeparator", [](S& s, Args) { return Variant(s.line_separator_); },
              [](S& s, Args, const Variant& v) {
                const int32_t separator = ToLong(v);
                if (separator != -1 && separator != 10 && separator != 13)
                  throw AdoError(adErrInvalidArgument, kSource);
                s.line_separator_ = separator;
              })
          .Property(
              u"Mode", [](S& s, Args) { return Variant(s.mode_); },
              [](S& s, Args, const Variant& v) { s.mode_ = ToLong(v); });
  return table;
}

}  // namespace qv::ado

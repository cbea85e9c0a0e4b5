// The value rules of the project file, shared by the writer and the reader.
#include "persistence/project_values.h"

#include <algorithm>
#include <charconv>
#include <vector>

#include "automation/convert.h"
#include "automation/error.h"

namespace qv {
namespace {

bool IsBooleanType(StringView data_type) {
  return data_type == u"Boolean";
}

// The text of a value as the writer's first step gives it.
String ValueText(const Variant& value) {
  if (value.is_empty() || value.is_null()) return String();
  if (value.is_string()) return value.as_string();
  return ToString(value);
}

std::vector<StringView> SplitDots(StringView text) {
  std::vector<StringView> parts;
  if (text.empty()) return parts;
  size_t start = 0;
  for (;;) {
    const size_t dot = text.find(u'.', start);
    parts.push_back(text.substr(start, dot == StringView::npos ? StringView::npos : dot - start));
    if (dot == StringView::npos) return parts;
    start = dot + 1;
  }
}

// A plain whole number: an optional "-" and one to nine digits. Longer or decorated text goes
// through the full conversion.
std::optional<int32_t> PlainWholeNumber(std::string_view text) {
  const bool negative = !text.empty() && text.front() == '-';
  const std::string_view digits = negative ? text.substr(1) : text;
  if (digits.empty() || digits.size() > 9) return std::nullopt;
  int32_t n = 0;
  const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), n);
  if (ec != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return negative ? -n : n;
}

}  // namespace

String XmlEscape(StringView text) {
  if (text.find_first_of(u"&<>\"") == StringView::npos) return String(text);
  String out;
  out.Reserve(text.size() + 16);
  for (const Char c : text) {
    switch (c) {
      case u'&':
        out.Append(u"&amp;");
        break;
      case u'<':
        out.Append(u"&lt;");
        break;
      case u'>':
        out.Append(u"&gt;");
        break;
      case u'"':
        out.Append(u"&quot;");
        break;
      default:
        out.Append(c);
    }
  }
  return out;
}

void AppendEscaped(std::string& out, StringView text, bool bars) {
  size_t i = 0;
  while (i < text.size()) {
    const Char c = text[i];
    if (c >= 0x80) {
      // A run of other characters goes through the engine's UTF-8 conversion whole, so that
      // surrogate pairs stay together; the ASCII around it is copied byte by byte.
      size_t end = i + 1;
      while (end < text.size() && text[end] >= 0x80)
        ++end;
      out += String::ToUtf8(text.substr(i, end - i));
      i = end;
      continue;
    }
    switch (c) {
      case u'&':
        out += "&amp;";
        break;
      case u'<':
        out += "&lt;";
        break;
      case u'>':
        out += "&gt;";
        break;
      case u'"':
        out += "&quot;";
        break;
      case u'\r':
        if (bars && i + 1 < text.size() && text[i + 1] == u'\n') {
          out += '|';
          ++i;
          break;
        }
        [[fallthrough]];
      default:
        out += static_cast<char>(c);
    }
    ++i;
  }
}

namespace {

// The value part of an attribute, in the rule's steps: text, escape, bars, Booleans.
void AppendValue(std::string& out, bool bars, StringView data_type, const Variant& value) {
  if (!IsBooleanType(data_type)) {
    AppendEscaped(out, value.is_string() ? value.as_string() : ValueText(value), bars);
    return;
  }
  if (value.type() == VarType::Boolean) {
    out += value.as_bool() ? '1' : '0';
    return;
  }
  const String text = XmlEscape(ValueText(value));
  out += text.empty() || !ToBool(Variant(text)) ? '0' : '1';
}

bool IsTagValues(std::string_view escaped_name) {
  return escaped_name.size() == 12 && EqualsNoCase(String::FromUtf8(escaped_name), u"fldtagvalues");
}

}  // namespace

void AppendAttribute(std::string& out, StringView name, StringView data_type,
                     const Variant& value) {
  const size_t name_start = out.size();
  AppendEscaped(out, name);
  const bool bars = IsTagValues(std::string_view(out).substr(name_start));
  out += "=\"";
  AppendValue(out, bars, data_type, value);
  out += "\" ";
}

String AttributeText(StringView escaped_name, StringView data_type, const Variant& value) {
  std::string out;
  AppendValue(out, EqualsNoCase(escaped_name, u"fldtagvalues"), data_type, value);
  return String::FromUtf8(out);
}

bool VersionGreater(StringView a, StringView b) {
  const std::vector<StringView> left = SplitDots(a);
  const std::vector<StringView> right = SplitDots(b);
  const size_t count = std::min<size_t>({left.size(), right.size(), size_t{3}});
  for (size_t i = 0; i < count; ++i) {
    const std::optional<double> x = ParseNumberText(left[i]);
    const std::optional<double> y = ParseNumberText(right[i]);
    if (!x || !y) return false;
    if (*x > *y) return true;
    if (*x < *y) return false;
  }
  return false;
}

Variant ToPropertyValue(const String& text, StringView data_type) {
  try {
    if (data_type == u"Boolean") return Variant(ToBool(Variant(text)));
    if (data_type == u"Integer") return Variant(ToInteger(Variant(text)));
    if (data_type == u"Long") return Variant(ToLong(Variant(text)));
  } catch (const Error&) {
    return Variant();
  }
  return Variant(text);
}

Variant ToPropertyValue(std::string_view utf8, StringView data_type) {
  const bool converts = data_type == u"Boolean" || data_type == u"Integer" || data_type == u"Long";
  // Empty text is no Boolean and no number: Empty, without a conversion that would raise.
  if (utf8.empty()) return converts ? Variant() : Variant(String());
  if (data_type == u"Boolean") {
    if (utf8 == "1") return Variant(true);
    if (utf8 == "0") return Variant(false);
  } else if (data_type == u"Integer") {
    const std::optional<int32_t> n = PlainWholeNumber(utf8);
    if (n && *n >= INT16_MIN && *n <= INT16_MAX) return Variant(static_cast<int16_t>(*n));
  } else if (data_type == u"Long") {
    if (const std::optional<int32_t> n = PlainWholeNumber(utf8)) return Variant(*n);
  }
  return ToPropertyValue(String::FromUtf8(utf8), data_type);
}

}  // namespace qv

// A small recursive-descent reader of Filter and Find criteria, and of Sort key lists.
#include "ado/criteria.h"

#include "ado/ado_errors.h"
#include "ado/values.h"
#include "automation/convert.h"
#include "automation/date_time.h"

namespace qv::ado {

enum class Op { Eq, Ne, Lt, Le, Gt, Ge, Like, IsNull, IsNotNull, And, Or };

struct Criteria::Node {
  Op op;
  size_t column = 0;
  Variant value;
  std::shared_ptr<const Node> left, right;
};

namespace {

using Node = Criteria::Node;

[[noreturn]] void Bad() {
  throw AdoError(adErrInvalidArgument, u"ADODB.Recordset");
}

// LIKE with ADO's wildcards: "*" or "%" for any run of characters, matched case-blind.
bool LikeMatch(StringView text, StringView pattern) {
  size_t t = 0, p = 0, star = StringView::npos, mark = 0;
  while (t < text.size()) {
    if (p < pattern.size() && (pattern[p] == u'*' || pattern[p] == u'%')) {
      star = p++;
      mark = t;
    } else if (p < pattern.size() && (pattern[p] == u'_' || pattern[p] == u'?' ||
                                      ToLowerChar(pattern[p]) == ToLowerChar(text[t]))) {
      ++p;
      ++t;
    } else if (star != StringView::npos) {
      p = star + 1;
      t = ++mark;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && (pattern[p] == u'*' || pattern[p] == u'%'))
    ++p;
  return p == pattern.size();
}

class Reader {
 public:
  Reader(StringView text, const ColumnLookup& lookup, std::span<const int32_t> types)
      : text_(text), lookup_(lookup), types_(types) {}

  std::shared_ptr<const Node> Expression() {
    auto left = Term();
    while (Keyword(u"OR")) {
      auto node = std::make_shared<Node>();
      node->op = Op::Or;
      node->left = left;
      node->right = Term();
      left = node;
    }
    return left;
  }

  bool AtEnd() {
    SkipBlanks();
    return pos_ >= text_.size();
  }

 private:
  std::shared_ptr<const Node> Term() {
    auto left = Factor();
    while (Keyword(u"AND")) {
      auto node = std::make_shared<Node>();
      node->op = Op::And;
      node->left = left;
      node->right = Factor();
      left = node;
    }
    return left;
  }

  std::shared_ptr<const Node> Factor() {
    SkipBlanks();
    if (Peek() == u'(') {
      ++pos_;
      auto inner = Expression();
      SkipBlanks();
      if (Peek() != u')') Bad();
      ++pos_;
      return inner;
    }
    auto node = std::make_shared<Node>();
    const String name = Name();
    const auto column = lookup_(name);
    if (!column) throw AdoError(adErrItemNotFound, u"ADODB.Recordset");
    node->column = *column;
    if (Keyword(u"IS")) {
      const bool negated = Keyword(u"NOT");
      if (!Keyword(u"NULL")) Bad();
      node->op = negated ? Op::IsNotNull : Op::IsNull;
      return node;
    }
    node->op = Operator();
    node->value = Literal(types_[*column]);
    if (node->value.is_null()) {
      if (node->op == Op::Eq)
        node->op = Op::IsNull;
      else if (node->op == Op::Ne)
        node->op = Op::IsNotNull;
      else
        Bad();
    }
    return node;
  }

  String Name() {
    SkipBlanks();
    if (Peek() == u'[') {
      const size_t close = text_.find(u']', pos_);
      if (close == StringView::npos) Bad();
      String name(text_.substr(pos_ + 1, close - pos_ - 1));
      pos_ = close + 1;
      return name;
    }
    const size_t start = pos_;
    while (pos_ < text_.size() && (IsWordChar(text_[pos_])))
      ++pos_;
    if (pos_ == start) Bad();
    return String(text_.substr(start, pos_ - start));
  }

  Op Operator() {
    SkipBlanks();
    if (Keyword(u"LIKE")) return Op::Like;
    const Char c = Peek();
    const Char n = pos_ + 1 < text_.size() ? text_[pos_ + 1] : 0;
    if (c == u'=') {
      ++pos_;
      return Op::Eq;
    }
    if (c == u'<' && n == u'>') {
      pos_ += 2;
      return Op::Ne;
    }
    if (c == u'<' && n == u'=') {
      pos_ += 2;
      return Op::Le;
    }
    if (c == u'>' && n == u'=') {
      pos_ += 2;
      return Op::Ge;
    }
    if (c == u'<') {
      ++pos_;
      return Op::Lt;
    }
    if (c == u'>') {
      ++pos_;
      return Op::Gt;
    }
    Bad();
  }

  Variant Literal(int32_t type) {
    SkipBlanks();
    const Char c = Peek();
    if (c == u'\'' || c == u'"' || c == u'#') {
      String text;
      ++pos_;
      for (;;) {
        if (pos_ >= text_.size()) Bad();
        if (text_[pos_] == c) {
          if (c != u'#' && pos_ + 1 < text_.size() && text_[pos_ + 1] == c) {
            text.Append(c);
            pos_ += 2;
            continue;
          }
          ++pos_;
          break;
        }
        text.Append(text_[pos_++]);
      }
      if (c == u'#' || IsDateType(type)) {
        if (auto date = ParseDateText(text)) return Variant::Date(*date);
        if (c == u'#') Bad();
      }
      return Variant(text);
    }
    const size_t start = pos_;
    while (pos_ < text_.size() && (IsWordChar(text_[pos_]) || text_[pos_] == u'.' ||
                                   text_[pos_] == u'-' || text_[pos_] == u'+')) {
      ++pos_;
    }
    const StringView word = text_.substr(start, pos_ - start);
    if (EqualsNoCase(word, u"NULL")) return Variant::Null();
    const auto number = ParseNumberText(word);
    if (!number) Bad();
    return Variant(*number);
  }

  static bool IsWordChar(Char c) {
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
           c == u'_' || c > 0x7F;
  }

  bool Keyword(StringView word) {
    SkipBlanks();
    if (pos_ + word.size() > text_.size()) return false;
    if (!EqualsNoCase(text_.substr(pos_, word.size()), word)) return false;
    if (pos_ + word.size() < text_.size() && IsWordChar(text_[pos_ + word.size()])) return false;
    pos_ += word.size();
    return true;
  }

  void SkipBlanks() {
    while (pos_ < text_.size() && (text_[pos_] == u' ' || text_[pos_] == u'\t'))
      ++pos_;
  }
  Char Peek() const { return pos_ < text_.size() ? text_[pos_] : Char(0); }

  StringView text_;
  size_t pos_ = 0;
  const ColumnLookup& lookup_;
  std::span<const int32_t> types_;
};

bool Evaluate(const Node& node, std::span<const Variant> values) {
  switch (node.op) {
    case Op::And:
      return Evaluate(*node.left, values) && Evaluate(*node.right, values);
    case Op::Or:
      return Evaluate(*node.left, values) || Evaluate(*node.right, values);
    case Op::IsNull:
      return values[node.column].is_null() || values[node.column].is_empty();
    case Op::IsNotNull:
      return !(values[node.column].is_null() || values[node.column].is_empty());
    default:
      break;
  }
  const Variant& value = values[node.column];
  if (value.is_null() || value.is_empty()) return false;
  if (node.op == Op::Like) return LikeMatch(ToString(value), ToString(node.value));
  Comparison c;
  try {
    c = Compare(value, node.value, true);
  } catch (const Error&) {
    return false;
  }
  switch (node.op) {
    case Op::Eq:
      return c == Comparison::Equal;
    case Op::Ne:
      return c != Comparison::Equal;
    case Op::Lt:
      return c == Comparison::Less;
    case Op::Le:
      return c == Comparison::Less || c == Comparison::Equal;
    case Op::Gt:
      return c == Comparison::Greater;
    case Op::Ge:
      return c == Comparison::Greater || c == Comparison::Equal;
    default:
      return false;
  }
}

}  // namespace

Criteria Criteria::Parse(StringView text, const ColumnLookup& lookup,
                         std::span<const int32_t> column_types) {
  Reader reader(text, lookup, column_types);
  Criteria criteria;
  criteria.root_ = reader.Expression();
  if (!reader.AtEnd()) Bad();
  return criteria;
}

bool Criteria::Matches(std::span<const Variant> values) const {
  return root_ && Evaluate(*root_, values);
}

std::vector<SortKey> ParseSort(StringView text, const ColumnLookup& lookup) {
  std::vector<SortKey> keys;
  size_t start = 0;
  while (start <= text.size()) {
    size_t comma = text.find(u',', start);
    if (comma == StringView::npos) comma = text.size();
    StringView part = TrimBlanks(text.substr(start, comma - start));
    start = comma + 1;
    if (part.empty()) {
      if (comma == text.size() && !keys.empty()) break;
      if (comma == text.size() && keys.empty()) break;
      Bad();
    }
    bool descending = false;
    const size_t blank = part.find_last_of(u' ');
    if (blank != StringView::npos) {
      const StringView order = part.substr(blank + 1);
      if (EqualsNoCase(order, u"DESC"))
        descending = true;
      else if (!EqualsNoCase(order, u"ASC"))
        Bad();
      part = TrimBlanks(part.substr(0, blank));
    }
    if (part.size() >= 2 && part.front() == u'[' && part.back() == u']') {
      part = part.substr(1, part.size() - 2);
    }
    const auto column = lookup(part);
    if (!column) throw AdoError(adErrItemNotFound, u"ADODB.Recordset");
    keys.push_back({*column, descending});
  }
  return keys;
}

int CompareForSort(const Variant& a, const Variant& b) {
  const bool a_null = a.is_null() || a.is_empty();
  const bool b_null = b.is_null() || b.is_empty();
  if (a_null || b_null) return (a_null ? 0 : 1) - (b_null ? 0 : 1);
  try {
    return static_cast<int>(Compare(a, b, true));
  } catch (const Error&) {
    return CompareNoCase(ToString(a), ToString(b));
  }
}

}  // namespace qv::ado

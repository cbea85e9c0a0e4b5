// Reading dates and times from text as CDate, IsDate and date literals do under a locale.
// The text splits into a time (h:m[:s] with ':' or '.', or an hour with AM/PM) and a date of
// one to three numbers with an optional month name; ambiguous numbers are tried in the
// locale's order first, then as month/day/year, year/month/day and day/month/year.
#include <array>
#include <ctime>
#include <vector>

#include "automation/date_time.h"

namespace qv {

namespace {

struct Token {
  enum Kind { Number, Month, Weekday, Meridiem, TimeSep, DateSep } kind;
  int value = 0;   // the number, the month (1..12), or 1 for PM
  int digits = 0;  // how many digits a number was written with
};

// Letters of month and day names, in any script; separators and blanks are no letters.
bool IsLetter(Char c) {
  return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') ||
         (c >= 0x00C0 && c != 0x00D7 && c != 0x00F7 && c != 0x3000);
}

bool IsDigit(Char c) {
  return c >= u'0' && c <= u'9';
}

bool IsBlank(Char c) {
  return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n' || c == 0x00A0 || c == 0x3000;
}

// A name, compared without case and without an abbreviation's closing dot ("janv.").
bool SameName(StringView word, StringView name) {
  if (!name.empty() && name.back() == u'.') name.remove_suffix(1);
  return !name.empty() && EqualsNoCase(word, name);
}

// A month or weekday (1-based) by its full name or its abbreviation.
template <size_t N>
int MatchName(StringView word, const std::array<std::u16string, N>& names,
              const std::array<std::u16string, N>& abbreviations) {
  for (size_t i = 0; i < N; ++i) {
    if (SameName(word, names[i]) || SameName(word, abbreviations[i]))
      return static_cast<int>(i) + 1;
  }
  return 0;
}

// The names of the locale, then the English ones, which every locale also reads.
bool ReadWord(StringView word, const Locale& locale, std::vector<Token>& out) {
  const Locale& english = DefaultLocale();
  if (EqualsNoCase(word, u"am") || EqualsNoCase(word, u"a") || SameName(word, locale.am)) {
    out.push_back({Token::Meridiem, 0});
  } else if (EqualsNoCase(word, u"pm") || EqualsNoCase(word, u"p") || SameName(word, locale.pm)) {
    out.push_back({Token::Meridiem, 1});
  } else if (int m = MatchName(word, locale.months, locale.month_abbreviations)) {
    out.push_back({Token::Month, m});
  } else if ((m = MatchName(word, locale.months_in_dates, locale.month_abbreviations))) {
    out.push_back({Token::Month, m});
  } else if ((m = MatchName(word, english.months, english.month_abbreviations))) {
    out.push_back({Token::Month, m});
  } else if (MatchName(word, locale.days, locale.day_abbreviations) ||
             MatchName(word, english.days, english.day_abbreviations)) {
    out.push_back({Token::Weekday, 0});
  } else {
    return false;
  }
  return true;
}

// Characters a long date picture quotes alone ("yyyy'年'M'月'd'日'") part the numbers of a
// date; the last of them only closes it.
enum class Marker { None, Separator, Closing };

Marker DateMarker(Char c, const Locale& locale) {
  const std::u16string& picture = locale.long_date;
  const size_t last = picture.size() >= 3 ? picture.size() - 3 : StringView::npos;
  for (size_t i = 0; i + 2 < picture.size(); ++i) {
    if (picture[i] == u'\'' && picture[i + 1] == c && picture[i + 2] == u'\'')
      return i == last ? Marker::Closing : Marker::Separator;
  }
  return Marker::None;
}

bool Tokenize(StringView text, const Locale& locale, std::vector<Token>& out) {
  // Where the locale writes dates with dots ("15.03.2026"), a dot parts a date, not a time.
  const bool dotted_dates = locale.date_separator == u'.';
  size_t i = 0;
  while (i < text.size()) {
    const Char c = text[i];
    if (c > 0x7F) {
      const Marker marker = DateMarker(c, locale);
      if (marker != Marker::None) {
        if (marker == Marker::Separator) out.push_back({Token::DateSep});
        ++i;
        continue;
      }
    }
    if (IsDigit(c)) {
      Token t{Token::Number};
      for (; i < text.size() && IsDigit(text[i]); ++i) {
        if (t.value < 100000) t.value = t.value * 10 + (text[i] - u'0');
        ++t.digits;
      }
      out.push_back(t);
      continue;
    }
    if (IsLetter(c)) {
      size_t j = i;
      while (j < text.size() && IsLetter(text[j]))
        ++j;
      if (!ReadWord(text.substr(i, j - i), locale, out)) return false;
      i = j;
      // "Mar." and "Tue." carry an abbreviation's dot, which is no time separator.
      if (i < text.size() && text[i] == u'.' && out.back().kind != Token::Meridiem) ++i;
      continue;
    }
    if (c == u'.' && dotted_dates) {
      out.push_back({Token::DateSep});
    } else if (c == u':' || c == u'.') {
      out.push_back({Token::TimeSep});
    } else if (c == u'/' || c == u'-' || c == locale.date_separator) {
      out.push_back({Token::DateSep});
    } else if (c != u',' && !IsBlank(c)) {
      return false;
    }
    ++i;
  }
  return true;
}

// A date separator stands between two parts of the date, never at an end or doubled.
bool SeparatorsWellPlaced(const std::vector<Token>& tokens) {
  for (size_t i = 0; i < tokens.size(); ++i) {
    if (tokens[i].kind != Token::DateSep) continue;
    auto is_part = [&](size_t k) {
      return tokens[k].kind == Token::Number || tokens[k].kind == Token::Month;
    };
    if (i == 0 || i + 1 == tokens.size() || !is_part(i - 1) || !is_part(i + 1)) return false;
  }
  return true;
}

struct TimeOfDay {
  bool present = false;
  int hour = 0, minute = 0, second = 0;
};

// Takes the time out of `tokens` (at most one, at the start or the end of the date), leaving
// the date's tokens in `date`.
bool SplitTime(const std::vector<Token>& tokens, TimeOfDay& time, std::vector<Token>& date) {
  size_t date_before = 0, date_after = 0;
  int meridiem = -1;
  for (size_t i = 0; i < tokens.size(); ++i) {
    const Token& t = tokens[i];
    const bool next_sep = i + 1 < tokens.size() && tokens[i + 1].kind == Token::TimeSep;
    const bool next_meridiem = i + 1 < tokens.size() && tokens[i + 1].kind == Token::Meridiem;
    if (t.kind == Token::Number && (next_sep || next_meridiem)) {
      if (time.present) return false;
      time.present = true;
      time.hour = t.value;
      size_t j = i + 1;
      int parts = 1;
      while (j + 1 < tokens.size() && tokens[j].kind == Token::TimeSep &&
             tokens[j + 1].kind == Token::Number && parts < 3) {
        (parts == 1 ? time.minute : time.second) = tokens[j + 1].value;
        if (tokens[j + 1].digits > 2) return false;
        ++parts;
        j += 2;
      }
      if (j < tokens.size() && tokens[j].kind == Token::TimeSep) return false;
      if (j < tokens.size() && tokens[j].kind == Token::Meridiem) meridiem = tokens[j++].value;
      i = j - 1;
      continue;
    }
    if (t.kind == Token::TimeSep || t.kind == Token::Meridiem) return false;
    if (t.kind == Token::Weekday) continue;
    (time.present ? date_after : date_before) += 1;
    date.push_back(t);
  }
  if (date_before > 0 && date_after > 0) return false;
  if (!time.present) return true;
  if (time.hour > 23 || time.minute > 59 || time.second > 59) return false;
  // AM and PM only matter for hours up to 12: "13:00 AM" is still one o'clock in the afternoon.
  if (meridiem >= 0 && time.hour <= 12) {
    if (time.hour == 12) time.hour = 0;
    if (meridiem == 1) time.hour += 12;
  }
  return true;
}

int ExpandedYear(const Token& t) {
  if (t.digits > 2) return t.value;
  return t.value < 30 ? 2000 + t.value : 1900 + t.value;
}

int DaysIn(int year, int month) {
  const auto first = DateFromParts(year, month, 1);
  const auto next = DateFromParts(year, month + 1, 1);
  if (!first || !next) return 31;
  return static_cast<int>(*next - *first);
}

bool ValidDate(int year, int month, int day) {
  return year >= 100 && year <= 9999 && month >= 1 && month <= 12 && day >= 1 &&
         day <= DaysIn(year, month);
}

int ThisYear() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return local.tm_year + 1900;
}

struct Ymd {
  int year = 0, month = 0, day = 0;
};

bool Try(int year, int month, int day, Ymd& out) {
  if (!ValidDate(year, month, day)) return false;
  out = {year, month, day};
  return true;
}

bool SmallPart(const Token& t) {
  return t.digits <= 2;
}

// The date from a month name and the numbers around it.
bool DateWithMonthName(int month, const std::vector<Token>& n, Ymd& out) {
  if (n.size() == 1) {
    // A number that can be a day of the month is one ("Jan 2"); otherwise a year ("Jan 35").
    const int year = ThisYear();
    if (SmallPart(n[0]) && Try(year, month, n[0].value, out)) return true;
    return Try(ExpandedYear(n[0]), month, 1, out);
  }
  if (n.size() != 2) return false;
  const bool first_is_year = !SmallPart(n[0]) || n[0].value > 31;
  if (first_is_year) return SmallPart(n[1]) && Try(ExpandedYear(n[0]), month, n[1].value, out);
  return Try(ExpandedYear(n[1]), month, n[0].value, out);
}

bool DateFromNumbers(const std::vector<Token>& n, DateOrder order, Ymd& out) {
  if (n.size() == 2) {
    const Token &a = n[0], &b = n[1];
    const int year = ThisYear();
    if (SmallPart(a) && SmallPart(b)) {
      // Day and month in the locale's order first: "15.03" and "3/15" are both March 15th.
      if (order == DateOrder::DayMonthYear && Try(year, b.value, a.value, out)) return true;
      if (Try(year, a.value, b.value, out) || Try(year, b.value, a.value, out)) return true;
    }
    // Two numbers that are no day and month are a month and a year, in either order.
    if (SmallPart(a) && Try(ExpandedYear(b), a.value, 1, out)) return true;
    return SmallPart(b) && Try(ExpandedYear(a), b.value, 1, out);
  }
  if (n.size() != 3) return false;
  const Token &a = n[0], &b = n[1], &c = n[2];
  if (order == DateOrder::DayMonthYear && SmallPart(a) && SmallPart(b) &&
      Try(ExpandedYear(c), b.value, a.value, out))
    return true;
  if (order == DateOrder::YearMonthDay && SmallPart(b) && SmallPart(c) &&
      Try(ExpandedYear(a), b.value, c.value, out))
    return true;
  if (SmallPart(a) && SmallPart(b) && Try(ExpandedYear(c), a.value, b.value, out)) return true;
  if (SmallPart(b) && SmallPart(c) && Try(ExpandedYear(a), b.value, c.value, out)) return true;
  return SmallPart(a) && SmallPart(b) && Try(ExpandedYear(c), b.value, a.value, out);
}

}  // namespace

std::optional<double> ParseDateText(StringView text, const Locale& locale) {
  std::vector<Token> tokens;
  if (!Tokenize(text, locale, tokens) || tokens.empty() || !SeparatorsWellPlaced(tokens)) {
    return std::nullopt;
  }
  TimeOfDay time;
  std::vector<Token> date;
  if (!SplitTime(tokens, time, date)) return std::nullopt;

  std::vector<Token> numbers;
  int month_name = 0;
  for (const Token& t : date) {
    if (t.kind == Token::Number) {
      numbers.push_back(t);
    } else if (t.kind == Token::Month) {
      if (month_name) return std::nullopt;
      month_name = t.value;
    }
  }
  const double time_part = time.present ? TimeFromParts(time.hour, time.minute, time.second) : 0;
  if (numbers.empty() && !month_name) {
    if (!time.present) return std::nullopt;
    return time_part;
  }
  Ymd ymd;
  const bool ok = month_name ? DateWithMonthName(month_name, numbers, ymd)
                             : DateFromNumbers(numbers, locale.date_order, ymd);
  if (!ok) return std::nullopt;
  const auto day = DateFromParts(ymd.year, ymd.month, ymd.day);
  if (!day) return std::nullopt;
  return CombineDateTime(*day, time_part);
}

}  // namespace qv

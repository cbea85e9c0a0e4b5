// Locale 1033 text order as three keys per string: base weights, accent weights, and the
// positions of the word-sort characters ("-", "'"), compared in that order. ASCII text without
// those characters, the common case, is compared in one pass with no keys built.
#include "automation/collation.h"

#include <array>
#include <cstdint>
#include <vector>

namespace qv {

namespace {

// Weight bands: the lower band sorts first. Symbols come before digits, digits before Latin
// letters, Latin letters before the letters of other scripts.
constexpr uint32_t kSpaceBand = 1;             // tab, line ends, space
constexpr uint32_t kPunctBand = 10;            // ASCII punctuation
constexpr uint32_t kSymbolBand = 100;          // other symbols, by code
constexpr uint32_t kMathBand = 70000;          // + < = >, which Windows puts after the others
constexpr uint32_t kDigitBand = 80000;         // 0..9
constexpr uint32_t kLatinBand = 90000;         // a..z, 4 apart, then thorn
constexpr uint32_t kOtherLetterBand = 100000;  // other scripts, by lower-case code

// Accent weights, the second key. 0 is the bare letter.
enum Accent : uint8_t {
  kBare = 0,
  kAcute = 1,
  kGrave,
  kBreve,
  kCircumflex,
  kCaron,
  kRing,
  kDiaeresis,
  kDoubleAcute,
  kTilde,
  kDot,
  kStroke,
  kCedilla,
  kOgonek,
  kMacron,
  kOtherMark,
  kRaised,
};

// Word-sort characters carry no base weight, only a tie-breaking one.
constexpr uint8_t kApostropheWeight = 1;
constexpr uint8_t kHyphenWeight = 2;

constexpr char kPunctuation[] = "!\"#$%&()*,./:;?@[\\]^_`{|}~";
constexpr char kMath[] = "+<=>";

uint32_t LatinWeight(char letter) {
  return kLatinBand + static_cast<uint32_t>(letter - 'a') * 4;
}
constexpr uint32_t kThornWeight = kLatinBand + 26 * 4;

// The ASCII weights; 0 marks characters the fast path leaves to the full comparison
// (control characters, "-" and "'").
struct AsciiTable {
  std::array<uint32_t, 128> weight{};
  AsciiTable() {
    for (int c = 9; c <= 13; ++c)
      weight[c] = kSpaceBand + static_cast<uint32_t>(c - 9);
    weight[' '] = kSpaceBand + 5;
    for (uint32_t i = 0; kPunctuation[i]; ++i)
      weight[static_cast<uint8_t>(kPunctuation[i])] = kPunctBand + i;
    for (uint32_t i = 0; kMath[i]; ++i)
      weight[static_cast<uint8_t>(kMath[i])] = kMathBand + i;
    for (int c = '0'; c <= '9'; ++c)
      weight[c] = kDigitBand + static_cast<uint32_t>(c - '0');
    for (int c = 'a'; c <= 'z'; ++c) {
      weight[c] = LatinWeight(static_cast<char>(c));
      weight[c - 32] = weight[c];
    }
  }
};

const AsciiTable& Ascii() {
  static const AsciiTable table;
  return table;
}

struct Element {
  uint32_t primary;
  uint8_t accent;
};

// Latin-1 letters from U+00C0: base letter ('*' for the ones handled apart) and accent.
constexpr char kLatin1Base[] = "aaaaaa*ceeeeiiiidnooooo*ouuuuy**aaaaaa*ceeeeiiiidnooooo*ouuuuy*y";
static_assert(sizeof kLatin1Base == 65, "one base letter per code from U+00C0");
constexpr uint8_t kLatin1Accent[64] = {
    kGrave,  kAcute, kCircumflex, kTilde,      kDiaeresis,  kRing,  0,           kCedilla,
    kGrave,  kAcute, kCircumflex, kDiaeresis,  kGrave,      kAcute, kCircumflex, kDiaeresis,
    kStroke, kTilde, kGrave,      kAcute,      kCircumflex, kTilde, kDiaeresis,  0,
    kStroke, kGrave, kAcute,      kCircumflex, kDiaeresis,  kAcute, 0,           0,
    kGrave,  kAcute, kCircumflex, kTilde,      kDiaeresis,  kRing,  0,           kCedilla,
    kGrave,  kAcute, kCircumflex, kDiaeresis,  kGrave,      kAcute, kCircumflex, kDiaeresis,
    kStroke, kTilde, kGrave,      kAcute,      kCircumflex, kTilde, kDiaeresis,  0,
    kStroke, kGrave, kAcute,      kCircumflex, kDiaeresis,  kAcute, 0,           kDiaeresis};

// Latin Extended-A (U+0100..U+017F): base letter ('*' for the ligatures) and accent.
constexpr char kExtABase[] =
    "aaaaaaccccccccddddeeeeeeeeeegggggggghhhhiiiiiiiiii**jjkkkllllllllllnnnnnnnnnoooooo**"
    "rrrrrrsssssssstttttttuuuuuuuuuuuwwyyyzzzzzzs";
constexpr uint8_t kExtAAccent[128] = {
    kMacron,     kMacron,     kBreve,       kBreve,       kOgonek,      kOgonek,  // a
    kAcute,      kAcute,      kCircumflex,  kCircumflex,  kDot,         kDot,
    kCaron,      kCaron,                              // c
    kCaron,      kCaron,      kStroke,      kStroke,  // d
    kMacron,     kMacron,     kBreve,       kBreve,       kDot,         kDot,
    kOgonek,     kOgonek,     kCaron,       kCaron,  // e
    kCircumflex, kCircumflex, kBreve,       kBreve,       kDot,         kDot,
    kCedilla,    kCedilla,                            // g
    kCircumflex, kCircumflex, kStroke,      kStroke,  // h
    kTilde,      kTilde,      kMacron,      kMacron,      kBreve,       kBreve,
    kOgonek,     kOgonek,     kDot,         kOtherMark,  // i
    0,           0,                                      // ij
    kCircumflex, kCircumflex,                            // j
    kCedilla,    kCedilla,    kOtherMark,                // k
    kAcute,      kAcute,      kCedilla,     kCedilla,     kCaron,       kCaron,
    kOtherMark,  kOtherMark,  kStroke,
    kStroke,  // l
    kAcute,      kAcute,      kCedilla,     kCedilla,     kCaron,       kCaron,
    kOtherMark,  kOtherMark,  kOtherMark,                                              // n
    kMacron,     kMacron,     kBreve,       kBreve,       kDoubleAcute, kDoubleAcute,  // o
    0,           0,                                                                    // oe
    kAcute,      kAcute,      kCedilla,     kCedilla,     kCaron,       kCaron,        // r
    kAcute,      kAcute,      kCircumflex,  kCircumflex,  kCedilla,     kCedilla,
    kCaron,      kCaron,                                                          // s
    kCedilla,    kCedilla,    kCaron,       kCaron,       kStroke,      kStroke,  // t
    kTilde,      kTilde,      kMacron,      kMacron,      kBreve,       kBreve,
    kRing,       kRing,       kDoubleAcute, kDoubleAcute, kOgonek,      kOgonek,  // u
    kCircumflex, kCircumflex,                                                     // w
    kCircumflex, kCircumflex, kDiaeresis,                                         // y
    kAcute,      kAcute,      kDot,         kDot,         kCaron,       kCaron,   // z
    kOtherMark};                                                                  // long s
static_assert(sizeof kExtABase == 129, "one base letter per code of Latin Extended-A");

// A combining mark placed after a letter: its accent weight, as the precomposed letter has.
uint8_t CombiningAccent(Char c) {
  switch (c) {
    case 0x0300:
      return kGrave;
    case 0x0301:
      return kAcute;
    case 0x0302:
      return kCircumflex;
    case 0x0303:
      return kTilde;
    case 0x0304:
      return kMacron;
    case 0x0306:
      return kBreve;
    case 0x0307:
      return kDot;
    case 0x0308:
      return kDiaeresis;
    case 0x030A:
      return kRing;
    case 0x030B:
      return kDoubleAcute;
    case 0x030C:
      return kCaron;
    case 0x0327:
      return kCedilla;
    case 0x0328:
      return kOgonek;
    default:
      return kOtherMark;
  }
}

bool IsCombining(Char c) {
  return c >= 0x0300 && c <= 0x036F;
}

bool IsIgnorable(Char c) {
  return c <= 8 || (c >= 14 && c <= 31) || (c >= 0x7F && c <= 0x9F) || c == 0x200B || c == 0x200C ||
         c == 0x200D || c == 0xFEFF;
}

// Characters of the symbol blocks beyond Latin-1 (punctuation, currency, arrows, maths,
// drawing) sort with the symbols; everything else there counts as a letter of its script.
bool IsOtherSymbol(Char c) {
  return (c >= 0x2000 && c <= 0x2BFF) || (c >= 0x3000 && c <= 0x303F) ||
         (c >= 0xFE30 && c <= 0xFE6F);
}

class KeyBuilder {
 public:
  std::vector<uint32_t> primary;
  std::vector<uint8_t> accent;
  std::vector<uint32_t> word_sort;  // (base weights before it << 8) | weight

  void Add(Char c) {
    if (c >= 0xFF01 && c <= 0xFF5E) c = static_cast<Char>(c - 0xFEE0);  // full width
    if (c < 0x80) return AddAscii(c);
    if (IsIgnorable(c)) return;
    if (IsCombining(c)) return AddMark(c);
    if (c == 0x00AD || c == 0x2010 || c == 0x2011) return AddWordSort(kHyphenWeight);
    if (c >= 0xC0 && c <= 0xFF) return AddLatin1Letter(c);
    if (c >= 0x100 && c <= 0x17F) return AddExtendedA(c);
    if (c < 0xC0) return AddLatin1Sign(c);
    if (c == 0x0192) return Push(LatinWeight('f'), kOtherMark);
    if (IsOtherSymbol(c)) return Push(kSymbolBand + c, 0);
    Push(kOtherLetterBand + ToLowerChar(c), 0);
  }

 private:
  void Push(uint32_t weight, uint8_t mark) {
    primary.push_back(weight);
    accent.push_back(mark);
  }

  void PushPair(char first, char second) {
    Push(LatinWeight(first), 0);
    Push(LatinWeight(second), 0);
  }

  void AddWordSort(uint8_t weight) {
    word_sort.push_back(static_cast<uint32_t>(primary.size()) << 8 | weight);
  }

  void AddMark(Char c) {
    if (accent.empty() || accent.back() != kBare) return Push(kSymbolBand + c, 0);
    accent.back() = CombiningAccent(c);
  }

  void AddAscii(Char c) {
    if (c == u'\'') return AddWordSort(kApostropheWeight);
    if (c == u'-') return AddWordSort(kHyphenWeight);
    const uint32_t w = Ascii().weight[c];
    if (w) Push(w, 0);
  }

  void AddLatin1Letter(Char c) {
    const char base = kLatin1Base[c - 0xC0];
    if (base != '*') return Push(LatinWeight(base), kLatin1Accent[c - 0xC0]);
    switch (c) {
      case 0xC6:
      case 0xE6:
        return PushPair('a', 'e');
      case 0xDF:
        return PushPair('s', 's');
      case 0xDE:
      case 0xFE:
        return Push(kThornWeight, 0);
      default:  // multiplication and division signs
        return Push(kMathBand + c, 0);
    }
  }

  void AddExtendedA(Char c) {
    const char base = kExtABase[c - 0x100];
    if (base != '*') return Push(LatinWeight(base), kExtAAccent[c - 0x100]);
    if (c <= 0x133) return PushPair('i', 'j');
    PushPair('o', 'e');
  }

  // U+00A0..U+00BF: no-break space, signs, ordinal indicators, superscript digits, micro.
  void AddLatin1Sign(Char c) {
    switch (c) {
      case 0xA0:
        return Push(kSpaceBand + 5, kOtherMark);
      case 0xAA:
        return Push(LatinWeight('a'), kRaised);
      case 0xBA:
        return Push(LatinWeight('o'), kRaised);
      case 0xB2:
        return Push(kDigitBand + 2, kRaised);
      case 0xB3:
        return Push(kDigitBand + 3, kRaised);
      case 0xB9:
        return Push(kDigitBand + 1, kRaised);
      case 0xB5:
        return Push(kOtherLetterBand + 0x03BC, 0);  // micro sign sorts as Greek mu
      case 0xB1:
      case 0xAC:
        return Push(kMathBand + c, 0);
      default:
        return Push(kSymbolBand + c, 0);
    }
  }
};

template <class T>
int CompareKeys(const std::vector<T>& a, const std::vector<T>& b) {
  const size_t n = a.size() < b.size() ? a.size() : b.size();
  for (size_t i = 0; i < n; ++i) {
    if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
  }
  return a.size() == b.size() ? 0 : (a.size() < b.size() ? -1 : 1);
}

int CompareFull(StringView a, StringView b) {
  KeyBuilder x, y;
  for (const Char c : a)
    x.Add(c);
  for (const Char c : b)
    y.Add(c);
  if (const int c = CompareKeys(x.primary, y.primary)) return c;
  if (const int c = CompareKeys(x.accent, y.accent)) return c;
  return CompareKeys(x.word_sort, y.word_sort);
}

// Whether the rest of a text holds only characters the fast path weighs by itself.
bool AllPlainAscii(StringView s, size_t from, const AsciiTable& table) {
  for (size_t i = from; i < s.size(); ++i) {
    if (s[i] >= 0x80 || !table.weight[s[i]]) return false;
  }
  return true;
}

}  // namespace

int CompareText(StringView a, StringView b) {
  // Plain ASCII carries base weights only: the first differing weight decides.
  const AsciiTable& table = Ascii();
  const size_t n = a.size() < b.size() ? a.size() : b.size();
  for (size_t i = 0; i < n; ++i) {
    const Char x = a[i], y = b[i];
    if (x >= 0x80 || y >= 0x80) return CompareFull(a, b);
    const uint32_t wx = table.weight[x], wy = table.weight[y];
    if (!wx || !wy) return CompareFull(a, b);
    if (wx != wy) return wx < wy ? -1 : 1;
  }
  if (a.size() == b.size()) return 0;
  const bool a_shorter = a.size() < b.size();
  if (!AllPlainAscii(a_shorter ? b : a, n, table)) return CompareFull(a, b);
  return a_shorter ? -1 : 1;
}

}  // namespace qv

// The tagged value of VBScript and of every setting in the model: Empty, Null, the numeric
// types, Date, String, Object, Error and arrays. Sixteen bytes; strings, objects and arrays
// are shared by reference count, so copying any Variant never copies its payload.
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "automation/ref.h"
#include "automation/string.h"

namespace qv {

class Object;
class SafeArray;

// VBScript's VarType codes. An array reports kArray | its element type.
enum class VarType : uint16_t {
  Empty = 0,
  Null = 1,
  Integer = 2,
  Long = 3,
  Single = 4,
  Double = 5,
  Currency = 6,
  Date = 7,
  String = 8,
  Object = 9,
  Error = 10,
  Boolean = 11,
  Variant = 12,
  Byte = 17,
  Array = 0x2000,
};

// The Error value VBScript passes for an argument left out of a call.
inline constexpr int32_t kMissingArgument = static_cast<int32_t>(0x80020004);

class Variant {
 public:
  Variant() noexcept : type_(VarType::Empty) { u_.i64 = 0; }
  Variant(bool v) noexcept : type_(VarType::Boolean) {
    u_.i64 = 0;
    u_.b = v;
  }  // NOLINT
  Variant(int16_t v) noexcept : type_(VarType::Integer) {
    u_.i64 = 0;
    u_.i16 = v;
  }  // NOLINT
  Variant(int32_t v) noexcept : type_(VarType::Long) {
    u_.i64 = 0;
    u_.i32 = v;
  }  // NOLINT
  Variant(uint8_t v) noexcept : type_(VarType::Byte) {
    u_.i64 = 0;
    u_.u8 = v;
  }  // NOLINT
  Variant(float v) noexcept : type_(VarType::Single) {
    u_.i64 = 0;
    u_.f = v;
  }                                                                  // NOLINT
  Variant(double v) noexcept : type_(VarType::Double) { u_.d = v; }  // NOLINT
  Variant(String v) noexcept : type_(VarType::String) {
    new (&u_.s) String(std::move(v));
  }                                               // NOLINT
  Variant(StringView v) : Variant(String(v)) {}   // NOLINT
  Variant(const Char* v) : Variant(String(v)) {}  // NOLINT
  Variant(Object* object) noexcept;               // NOLINT: a null pointer is Nothing
  template <class T, class = std::enable_if_t<std::is_base_of_v<Object, T>>>
  Variant(const Ref<T>& object) noexcept : Variant(static_cast<Object*>(object.get())) {}  // NOLINT
  Variant(Ref<SafeArray> array) noexcept;                                                  // NOLINT
  // Guards against pointers silently becoming Booleans.
  template <class T, class = std::enable_if_t<!std::is_base_of_v<Object, T>>>
  Variant(T*) = delete;
  Variant(const char*) = delete;

  static Variant Null() noexcept {
    Variant v;
    v.type_ = VarType::Null;
    return v;
  }
  static Variant Nothing() noexcept { return Variant(static_cast<Object*>(nullptr)); }
  // Currency is a 64-bit count of ten-thousandths.
  static Variant Currency(int64_t scaled) noexcept {
    Variant v;
    v.type_ = VarType::Currency;
    v.u_.i64 = scaled;
    return v;
  }
  // A Date is the OLE automation day count: days since 1899-12-30, time as the fraction.
  static Variant Date(double days) noexcept {
    Variant v;
    v.type_ = VarType::Date;
    v.u_.d = days;
    return v;
  }
  static Variant ErrorValue(int32_t code) noexcept {
    Variant v;
    v.type_ = VarType::Error;
    v.u_.i32 = code;
    return v;
  }
  static Variant Missing() noexcept { return ErrorValue(kMissingArgument); }

  Variant(const Variant& other) noexcept : type_(other.type_), u_(other.u_) {
    if (IsShared(type_)) CopyShared(other);
  }
  Variant(Variant&& other) noexcept : type_(other.type_), u_(other.u_) {
    other.type_ = VarType::Empty;
    other.u_.i64 = 0;
  }
  Variant& operator=(const Variant& other) noexcept {
    if (this != &other) {
      Variant copy(other);
      swap(copy);
    }
    return *this;
  }
  Variant& operator=(Variant&& other) noexcept {
    if (this != &other) {
      Variant moved(std::move(other));
      swap(moved);
    }
    return *this;
  }
  ~Variant() {
    if (IsShared(type_)) ReleaseShared();
  }
  void swap(Variant& other) noexcept {
    std::swap(type_, other.type_);
    std::swap(u_, other.u_);
  }
  void Clear() noexcept { Variant().swap(*this); }

  VarType type() const noexcept { return type_; }
  // What VBScript's VarType() reports: arrays give 8192 plus their element type.
  uint16_t VarTypeCode() const noexcept;

  bool is_empty() const noexcept { return type_ == VarType::Empty; }
  bool is_null() const noexcept { return type_ == VarType::Null; }
  bool is_string() const noexcept { return type_ == VarType::String; }
  bool is_object() const noexcept { return type_ == VarType::Object; }
  bool is_nothing() const noexcept { return type_ == VarType::Object && !u_.obj; }
  bool is_array() const noexcept { return type_ == VarType::Array; }
  bool is_error() const noexcept { return type_ == VarType::Error; }
  bool is_missing() const noexcept { return is_error() && u_.i32 == kMissingArgument; }
  // Integer, Long, Single, Double, Currency, Date, Boolean or Byte.
  bool is_numeric_type() const noexcept;

  // Raw payloads; the caller has checked the type.
  bool as_bool() const noexcept { return u_.b; }
  int16_t as_integer() const noexcept { return u_.i16; }
  int32_t as_long() const noexcept { return u_.i32; }
  uint8_t as_byte() const noexcept { return u_.u8; }
  float as_single() const noexcept { return u_.f; }
  double as_double() const noexcept { return u_.d; }
  int64_t as_currency() const noexcept { return u_.i64; }
  double as_date() const noexcept { return u_.d; }
  int32_t as_error() const noexcept { return u_.i32; }
  const String& as_string() const noexcept { return u_.s; }
  // The string for in-place appends; only valid while the Variant holds a String.
  String& mutable_string() noexcept { return u_.s; }
  Object* as_object() const noexcept { return u_.obj; }
  SafeArray* as_array() const noexcept { return u_.arr; }
  // The array for writing: copies it first when another Variant shares it.
  SafeArray* mutable_array();

 private:
  static constexpr bool IsShared(VarType t) noexcept {
    return t == VarType::String || t == VarType::Object || t == VarType::Array;
  }
  void CopyShared(const Variant& other) noexcept;
  void ReleaseShared() noexcept;

  VarType type_;
  union Payload {
    Payload() noexcept : i64(0) {}
    Payload(const Payload& o) noexcept { std::memcpy(static_cast<void*>(this), &o, sizeof o); }
    Payload& operator=(const Payload& o) noexcept {
      std::memcpy(static_cast<void*>(this), &o, sizeof o);
      return *this;
    }
    ~Payload() {}
    bool b;
    uint8_t u8;
    int16_t i16;
    int32_t i32;
    int64_t i64;
    float f;
    double d;
    String s;
    Object* obj;
    SafeArray* arr;
  } u_;
};

static_assert(sizeof(Variant) == 16, "a Variant is two words");

inline void swap(Variant& a, Variant& b) noexcept {
  a.swap(b);
}

}  // namespace qv

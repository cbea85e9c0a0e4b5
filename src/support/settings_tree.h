// The in-memory form of one settings tree: keys below a root, each with typed values and
// subkeys. Key and value names are found without regard to case, as in the Windows registry,
// and keep the order in which they were created.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "automation/string.h"

namespace qv {

// One typed value. Texts (types 1, 2, 7) keep their characters without the final terminator,
// so a multi-string holds each item followed by a NUL. Numbers (types 4, 5) keep their four
// bytes as stored, read little-endian. Every other type keeps its bytes.
struct RegistryValue {
  int32_t type = 1;
  String text;
  uint32_t number = 0;
  std::vector<uint8_t> bytes;

  static RegistryValue Text(int32_t type, StringView text);
  static RegistryValue Number(int32_t type, uint32_t stored);
  static RegistryValue Bytes(int32_t type, std::vector<uint8_t> bytes);
  bool IsText() const { return type == 1 || type == 2 || type == 7; }
  bool IsNumber() const { return type == 4 || type == 5; }

  friend bool operator==(const RegistryValue& a, const RegistryValue& b);
};

class SettingsNode {
 public:
  explicit SettingsNode(String name) : name_(std::move(name)) {}

  const String& name() const { return name_; }

  const RegistryValue* FindValue(StringView name) const;
  // Replaces a value of that name in place, or adds it at the end.
  void SetValue(StringView name, RegistryValue value);
  bool DeleteValue(StringView name);
  const std::vector<std::pair<String, RegistryValue>>& values() const { return values_; }

  SettingsNode* FindChild(StringView name) const;
  SettingsNode& AddChild(StringView name);  // the existing child, or a new one at the end
  bool DeleteChild(StringView name);
  const std::vector<std::unique_ptr<SettingsNode>>& children() const { return children_; }

 private:
  String name_;
  std::vector<std::pair<String, RegistryValue>> values_;
  std::vector<std::unique_ptr<SettingsNode>> children_;
};

class SettingsTree {
 public:
  SettingsTree() : root_(std::make_unique<SettingsNode>(String())) {}
  SettingsTree(const SettingsTree& other);
  SettingsTree& operator=(const SettingsTree& other);
  SettingsTree(SettingsTree&&) noexcept = default;
  SettingsTree& operator=(SettingsTree&&) noexcept = default;

  // The key at a "\"-separated path ("" is the root); empty parts are skipped, so
  // "Software\\Quorvex" and "\\Software\\Quorvex\\" name the same key. nullptr when absent.
  const SettingsNode* Find(StringView path) const;
  SettingsNode* Find(StringView path);
  // The key at `path`, created with every key above it as needed.
  SettingsNode& Create(StringView path);
  // Deletes a key that exists and has no subkeys; false otherwise. The root stays.
  bool Delete(StringView path);

  const SettingsNode& root() const { return *root_; }
  bool empty() const { return root_->values().empty() && root_->children().empty(); }

  // Splits a key path into its parts, skipping empty ones.
  static std::vector<StringView> SplitPath(StringView path);

 private:
  std::unique_ptr<SettingsNode> root_;
};

}  // namespace qv

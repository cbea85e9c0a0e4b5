// Keys and typed values of one settings tree, in memory.
#include "support/settings_tree.h"

#include <algorithm>

namespace qv {

RegistryValue RegistryValue::Text(int32_t type, StringView text) {
  RegistryValue v;
  v.type = type;
  v.text = String(text);
  return v;
}

RegistryValue RegistryValue::Number(int32_t type, uint32_t stored) {
  RegistryValue v;
  v.type = type;
  v.number = stored;
  return v;
}

RegistryValue RegistryValue::Bytes(int32_t type, std::vector<uint8_t> bytes) {
  RegistryValue v;
  v.type = type;
  v.bytes = std::move(bytes);
  return v;
}

bool operator==(const RegistryValue& a, const RegistryValue& b) {
  if (a.type != b.type) return false;
  if (a.IsText()) return a.text == b.text;
  if (a.IsNumber()) return a.number == b.number;
  return a.bytes == b.bytes;
}

const RegistryValue* SettingsNode::FindValue(StringView name) const {
  for (const auto& [key, value] : values_) {
    if (EqualsNoCase(key, name)) return &value;
  }
  return nullptr;
}

void SettingsNode::SetValue(StringView name, RegistryValue value) {
  for (auto& [key, existing] : values_) {
    if (EqualsNoCase(key, name)) {
      existing = std::move(value);
      return;
    }
  }
  values_.emplace_back(String(name), std::move(value));
}

bool SettingsNode::DeleteValue(StringView name) {
  const auto it = std::find_if(values_.begin(), values_.end(),
                               [&](const auto& entry) { return EqualsNoCase(entry.first, name); });
  if (it == values_.end()) return false;
  values_.erase(it);
  return true;
}

SettingsNode* SettingsNode::FindChild(StringView name) const {
  for (const auto& child : children_) {
    if (EqualsNoCase(child->name(), name)) return child.get();
  }
  return nullptr;
}

SettingsNode& SettingsNode::AddChild(StringView name) {
  if (SettingsNode* existing = FindChild(name)) return *existing;
  children_.push_back(std::make_unique<SettingsNode>(String(name)));
  return *children_.back();
}

bool SettingsNode::DeleteChild(StringView name) {
  const auto it = std::find_if(children_.begin(), children_.end(), [&](const auto& child) {
    return EqualsNoCase(child->name(), name);
  });
  if (it == children_.end()) return false;
  children_.erase(it);
  return true;
}

namespace {

void CopyInto(const SettingsNode& from, SettingsNode& to) {
  for (const auto& [name, value] : from.values())
    to.SetValue(name, value);
  for (const auto& child : from.children())
    CopyInto(*child, to.AddChild(child->name()));
}

}  // namespace

SettingsTree::SettingsTree(const SettingsTree& other) : SettingsTree() {
  CopyInto(*other.root_, *root_);
}

SettingsTree& SettingsTree::operator=(const SettingsTree& other) {
  if (this != &other) {
    SettingsTree copy(other);
    root_ = std::move(copy.root_);
  }
  return *this;
}

std::vector<StringView> SettingsTree::SplitPath(StringView path) {
  std::vector<StringView> parts;
  size_t start = 0;
  while (start <= path.size()) {
    size_t end = path.find(u'\\', start);
    if (end == StringView::npos) end = path.size();
    if (end > start) parts.push_back(path.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

const SettingsNode* SettingsTree::Find(StringView path) const {
  const SettingsNode* node = root_.get();
  for (const StringView part : SplitPath(path)) {
    node = node->FindChild(part);
    if (!node) return nullptr;
  }
  return node;
}

SettingsNode* SettingsTree::Find(StringView path) {
  return const_cast<SettingsNode*>(static_cast<const SettingsTree&>(*this).Find(path));
}

SettingsNode& SettingsTree::Create(StringView path) {
  SettingsNode* node = root_.get();
  for (const StringView part : SplitPath(path))
    node = &node->AddChild(part);
  return *node;
}

bool SettingsTree::Delete(StringView path) {
  std::vector<StringView> parts = SplitPath(path);
  if (parts.empty()) return false;
  const StringView last = parts.back();
  parts.pop_back();
  SettingsNode* parent = root_.get();
  for (const StringView part : parts) {
    parent = parent->FindChild(part);
    if (!parent) return false;
  }
  const SettingsNode* target = parent->FindChild(last);
  if (!target || !target->children().empty()) return false;
  return parent->DeleteChild(last);
}

}  // namespace qv

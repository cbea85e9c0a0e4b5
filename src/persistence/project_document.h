// ProjectDocument: a project file parsed into a compact, read-only tree of elements and their
// attributes. libxml2 does the parsing (any declared encoding, entity and character references,
// attribute-value normalisation); the tree keeps only what the project reader looks at, with
// every attribute value as UTF-8 in one arena, so a file of ten thousand elements with a
// million attributes fits in a few tens of megabytes and is read in one pass.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "automation/string.h"

namespace qv {

class ProjectDocument {
 public:
  static constexpr int32_t kNone = -1;

  struct Attribute {
    int32_t name;  // index into the name table
    uint32_t value_offset;
    uint32_t value_size;
  };
  struct Element {
    int32_t name;  // index into the name table
    int32_t first_child = kNone;
    int32_t next_sibling = kNone;
    int32_t last_child = kNone;
    uint32_t first_attribute = 0;
    uint32_t attribute_count = 0;
  };

  // Reads and parses a file; False when it can't be read or is not well-formed XML, with the
  // reason in error(). A failed load leaves the document empty.
  bool Load(StringView path);
  // The same for bytes in memory.
  bool LoadBytes(std::string_view bytes);

  const String& error() const { return error_; }
  bool loaded() const { return !elements_.empty(); }

  // The root element is element 0 of a loaded document.
  int32_t root() const { return elements_.empty() ? kNone : 0; }
  const Element& element(int32_t index) const { return elements_[static_cast<size_t>(index)]; }
  int32_t element_count() const { return static_cast<int32_t>(elements_.size()); }
  // Qualified names ("prefix:local" when there is a prefix), each held once.
  const String& name(int32_t index) const { return names_[static_cast<size_t>(index)]; }
  int32_t name_count() const { return static_cast<int32_t>(names_.size()); }
  // The name's index, or kNone when no element or attribute of the document has it.
  int32_t FindName(StringView qualified_name) const;

  std::span<const Attribute> attributes(int32_t element) const;
  std::string_view value(const Attribute& attribute) const {
    return std::string_view(arena_).substr(attribute.value_offset, attribute.value_size);
  }
  // The value of the element's attribute with this exact qualified name, or nothing.
  std::optional<std::string_view> attribute(int32_t element, StringView qualified_name) const;
  // The same by name index, for callers that look the name up once.
  std::optional<std::string_view> attribute(int32_t element, int32_t name) const;

  // The number of elements directly below an element.
  int32_t ChildCount(int32_t element) const;
  // The first element directly below `element` with this name, or kNone.
  int32_t FirstChildNamed(int32_t element, StringView qualified_name) const;

 private:
  friend class ProjectDocumentBuilder;
  void Clear();

  std::vector<Element> elements_;
  std::vector<Attribute> attributes_;
  std::vector<String> names_;
  std::string arena_;
  String error_;
};

}  // namespace qv

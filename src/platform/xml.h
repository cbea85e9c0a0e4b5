// A thin reading layer over libxml2 with the document-object names the engine's loaders use
// (documentElement, childNodes, nodeName, baseName, attributes, nodeValue, getAttribute), and a
// small writer for the files the engine writes itself. A file that can't be loaded is a result
// with a reason, never a crash, and nothing is printed.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "automation/string.h"

struct _xmlDoc;
struct _xmlNode;

namespace qv {

struct XmlAttribute {
  String nodeName;  // the qualified name, as written
  String baseName;  // the name without its prefix
  String nodeValue;
};

// A node of a loaded document. It keeps the document alive, so nodes may outlive the
// XmlDocument they came from. A default-made node is empty (false).
class XmlNode {
 public:
  XmlNode() = default;
  explicit operator bool() const { return node_ != nullptr; }
  bool IsElement() const;

  // Elements give their qualified name; other nodes "#text", "#comment", "#cdata-section",
  // the target of a processing instruction.
  String nodeName() const;
  String baseName() const;
  // The text of a text, comment, CDATA or processing-instruction node; "" for elements.
  String nodeValue() const;
  std::vector<XmlNode> childNodes() const;
  // Attributes in document order, with entity and character references decoded and values
  // normalised as XML requires.
  std::vector<XmlAttribute> attributes() const;
  // The value of the attribute with this exact qualified name, or nothing when absent.
  std::optional<String> getAttribute(StringView name) const;

 private:
  friend class XmlDocument;
  XmlNode(std::shared_ptr<_xmlDoc> doc, _xmlNode* node) : doc_(std::move(doc)), node_(node) {}

  std::shared_ptr<_xmlDoc> doc_;
  _xmlNode* node_ = nullptr;
};

class XmlDocument {
 public:
  // Loads a file in whatever encoding it declares. False on failure; error() tells why.
  bool Load(StringView path);
  // The same for bytes in memory.
  bool LoadXml(std::string_view bytes);

  bool loaded() const { return doc_ != nullptr; }
  const String& error() const { return error_; }
  // The root element; empty before a successful load.
  XmlNode documentElement() const;

 private:
  bool Finish(_xmlDoc* doc, const String& reason);

  std::shared_ptr<_xmlDoc> doc_;
  String error_;
};

// Builds an XML text element by element, escaping as it goes:
//   XmlWriter w; w.Declaration(u"utf-8"); w.Start(u"root"); w.Attribute(u"a", v); w.End();
// Attributes belong to the element last started and must come before its children.
class XmlWriter {
 public:
  explicit XmlWriter(std::u16string_view indent = u"  ", std::u16string_view newline = u"\r\n")
      : indent_(indent), newline_(newline) {}

  void Declaration(StringView encoding);
  void Start(StringView name);
  void Attribute(StringView name, StringView value);
  void Text(StringView text);
  // Ends the innermost open element, as "<x/>" when it got no children.
  void End();
  // The text so far, every open element closed.
  String Finish();

  static String Escape(StringView text, bool in_attribute);

 private:
  void CloseStartTag();
  void NewLine();

  struct Open {
    String name;
    bool has_elements = false;
    bool has_text = false;
  };

  String out_;
  std::vector<Open> open_;
  bool tag_open_ = false;
  String indent_;
  String newline_;
};

}  // namespace qv

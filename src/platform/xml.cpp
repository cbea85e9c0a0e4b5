// The libxml2 side of the XML layer: loading with entities decoded and network and external
// entities refused, libxml2's own printing silenced, and node access in the engine's text type.
#include "platform/xml.h"

#include <libxml/parser.h>
#include <libxml/tree.h>
#include <libxml/xmlerror.h>

#include <mutex>

#include "automation/error.h"
#include "platform/fs.h"
#include "platform/text_file.h"

namespace qv {
namespace {

void Silent(void*, const char*, ...) {}
void SilentStructured(void*, xmlErrorPtr) {}

// External entities are never read: every file the engine loads stands alone, and a file
// that pulls in others could read anything on the machine.
xmlParserInputPtr RefuseEntity(const char*, const char*, xmlParserCtxtPtr) {
  return nullptr;
}

void SetUpLibxml() {
  static std::once_flag once;
  std::call_once(once, [] {
    xmlInitParser();
    xmlSetExternalEntityLoader(RefuseEntity);
  });
  // The error handlers are per thread in libxml2, so they are set on every load.
  xmlSetGenericErrorFunc(nullptr, Silent);
  xmlSetStructuredErrorFunc(nullptr, SilentStructured);
}

String FromXml(const xmlChar* text) {
  if (!text) return String();
  return String::FromUtf8(reinterpret_cast<const char*>(text));
}

String TakeXml(xmlChar* text) {
  String out = FromXml(text);
  xmlFree(text);
  return out;
}

String QualifiedName(const xmlNs* ns, const xmlChar* name) {
  String out;
  if (ns && ns->prefix) {
    out = FromXml(ns->prefix);
    out.Append(u':');
  }
  out.Append(FromXml(name).view());
  return out;
}

String ReasonOf(const xmlError* error) {
  if (!error || !error->message) return String(u"The document could not be parsed.");
  std::string words = error->message;
  while (!words.empty() && (words.back() == '\n' || words.back() == ' '))
    words.pop_back();
  if (error->line > 0) words += " (line " + std::to_string(error->line) + ")";
  return String::FromUtf8(words);
}

}  // namespace

bool XmlNode::IsElement() const {
  return node_ && node_->type == XML_ELEMENT_NODE;
}

String XmlNode::nodeName() const {
  if (!node_) return String();
  switch (node_->type) {
    case XML_ELEMENT_NODE:
      return QualifiedName(node_->ns, node_->name);
    case XML_TEXT_NODE:
      return String(u"#text");
    case XML_CDATA_SECTION_NODE:
      return String(u"#cdata-section");
    case XML_COMMENT_NODE:
      return String(u"#comment");
    default:
      return FromXml(node_->name);
  }
}

String XmlNode::baseName() const {
  if (!node_) return String();
  if (node_->type == XML_ELEMENT_NODE || node_->type == XML_PI_NODE) return FromXml(node_->name);
  return String();
}

String XmlNode::nodeValue() const {
  if (!node_ || node_->type == XML_ELEMENT_NODE) return String();
  return TakeXml(xmlNodeGetContent(node_));
}

std::vector<XmlNode> XmlNode::childNodes() const {
  std::vector<XmlNode> out;
  if (!node_) return out;
  for (xmlNode* child = node_->children; child; child = child->next) {
    out.push_back(XmlNode(doc_, child));
  }
  return out;
}

std::vector<XmlAttribute> XmlNode::attributes() const {
  std::vector<XmlAttribute> out;
  if (!IsElement()) return out;
  for (xmlAttr* attr = node_->properties; attr; attr = attr->next) {
    XmlAttribute item;
    item.nodeName = QualifiedName(attr->ns, attr->name);
    item.baseName = FromXml(attr->name);
    item.nodeValue = TakeXml(xmlNodeListGetString(node_->doc, attr->children, 1));
    out.push_back(std::move(item));
  }
  return out;
}

std::optional<String> XmlNode::getAttribute(StringView name) const {
  if (!IsElement()) return std::nullopt;
  for (xmlAttr* attr = node_->properties; attr; attr = attr->next) {
    if (QualifiedName(attr->ns, attr->name) != name) continue;
    return TakeXml(xmlNodeListGetString(node_->doc, attr->children, 1));
  }
  return std::nullopt;
}

bool XmlDocument::Load(StringView path) {
  doc_.reset();
  std::string bytes;
  try {
    if (!fs::FileExists(path)) {
      error_ = String(u"The system cannot locate the object specified.");
      return false;
    }
    const std::string native = fs::ToNative(path).string();
    std::FILE* file = std::fopen(native.c_str(), "rb");
    if (!file) {
      error_ = String(u"Access is denied.");
      return false;
    }
    char buffer[65536];
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0)
      bytes.append(buffer, got);
    std::fclose(file);
  } catch (const Error& e) {
    error_ = e.description();
    return false;
  }
  return LoadXml(bytes);
}

bool XmlDocument::LoadXml(std::string_view bytes) {
  SetUpLibxml();
  doc_.reset();
  if (bytes.size() > static_cast<size_t>(INT32_MAX)) {
    error_ = String(u"The document is too large.");
    return false;
  }
  xmlParserCtxtPtr ctxt = xmlNewParserCtxt();
  if (!ctxt) throw Error(kErrOutOfMemory);
  const int options = XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING;
  xmlDoc* doc = xmlCtxtReadMemory(ctxt, bytes.data(), static_cast<int>(bytes.size()), nullptr,
                                  nullptr, options);
  String reason;
  if (!doc || !ctxt->wellFormed) reason = ReasonOf(xmlCtxtGetLastError(ctxt));
  if (doc && !ctxt->wellFormed) {
    xmlFreeDoc(doc);
    doc = nullptr;
  }
  xmlFreeParserCtxt(ctxt);
  return Finish(doc, reason);
}

bool XmlDocument::Finish(xmlDoc* doc, const String& reason) {
  if (!doc || !xmlDocGetRootElement(doc)) {
    if (doc) xmlFreeDoc(doc);
    error_ = reason.empty() ? String(u"The document has no root element.") : reason;
    return false;
  }
  doc_.reset(doc, xmlFreeDoc);
  error_ = String();
  return true;
}

XmlNode XmlDocument::documentElement() const {
  if (!doc_) return XmlNode();
  return XmlNode(doc_, xmlDocGetRootElement(doc_.get()));
}

void XmlWriter::Declaration(StringView encoding) {
  out_.Append(u"<?xml version=\"1.0\" encoding=\"");
  out_.Append(Escape(encoding, true).view());
  out_.Append(u"\"?>");
}

void XmlWriter::NewLine() {
  if (out_.empty()) return;
  out_.Append(newline_.view());
  for (size_t i = 0; i < open_.size(); ++i)
    out_.Append(indent_.view());
}

void XmlWriter::CloseStartTag() {
  if (!tag_open_) return;
  out_.Append(u'>');
  tag_open_ = false;
}

void XmlWriter::Start(StringView name) {
  CloseStartTag();
  if (!open_.empty()) open_.back().has_elements = true;
  NewLine();
  out_.Append(u'<');
  out_.Append(name);
  open_.push_back(Open{String(name)});
  tag_open_ = true;
}

void XmlWriter::Attribute(StringView name, StringView value) {
  if (!tag_open_) throw Error(kErrInvalidCall);
  out_.Append(u' ');
  out_.Append(name);
  out_.Append(u"=\"");
  out_.Append(Escape(value, true).view());
  out_.Append(u'"');
}

void XmlWriter::Text(StringView text) {
  if (open_.empty()) throw Error(kErrInvalidCall);
  CloseStartTag();
  open_.back().has_text = true;
  out_.Append(Escape(text, false).view());
}

void XmlWriter::End() {
  if (open_.empty()) throw Error(kErrInvalidCall);
  const Open last = open_.back();
  open_.pop_back();
  if (tag_open_) {
    out_.Append(u"/>");
    tag_open_ = false;
    return;
  }
  if (last.has_elements && !last.has_text) NewLine();
  out_.Append(u"</");
  out_.Append(last.name.view());
  out_.Append(u'>');
}

String XmlWriter::Finish() {
  while (!open_.empty())
    End();
  return out_;
}

String XmlWriter::Escape(StringView text, bool in_attribute) {
  String out;
  out.Reserve(text.size());
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
        out.Append(in_attribute ? StringView(u"&quot;") : StringView(u"\""));
        break;
      // A reader turns CR LF into LF in text, and attribute-value normalisation turns all
      // three into blanks: references keep them.
      case u'\r':
        out.Append(u"&#13;");
        break;
      case u'\n':
        out.Append(in_attribute ? StringView(u"&#10;") : StringView(u"\n"));
        break;
      case u'\t':
        out.Append(in_attribute ? StringView(u"&#9;") : StringView(u"\t"));
        break;
      default:
        out.Append(c);
    }
  }
  return out;
}

}  // namespace qv

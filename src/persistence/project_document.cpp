// Parsing a project file with libxml2's push parser and SAX2 callbacks. The parser hands over
// each start tag with its attributes already decoded and normalised, so no DOM is built: a
// project of ten thousand fields would need some 300 MB as a libxml2 tree. Pushing the file in
// chunks also keeps libxml2 from refusing files over 10 MB, as it does for a whole in-memory
// buffer, without lifting its limits against entity expansion.
#include "persistence/project_document.h"

#include <libxml/SAX2.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>
#include <libxml/xmlerror.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <unordered_map>

#include "automation/error.h"
#include "platform/fs.h"

namespace qv {
namespace {

constexpr size_t kChunkSize = 256 * 1024;

void SilentMessage(void*, const char*, ...) {}
void SilentStructured(void*, xmlErrorPtr) {}

// Project files stand alone: an external entity or DTD could read any file of the machine.
xmlParserInputPtr RefuseExternal(void*, const xmlChar*, const xmlChar*) {
  return nullptr;
}

struct NameKey {
  const xmlChar* prefix;
  const xmlChar* local;
  bool operator==(const NameKey&) const = default;
};
struct NameKeyHash {
  size_t operator()(const NameKey& k) const noexcept {
    return std::hash<const void*>()(k.prefix) * 31 + std::hash<const void*>()(k.local);
  }
};

String ReasonOf(const xmlError* error) {
  if (!error || !error->message) return String(u"The document is not well-formed XML.");
  std::string words = error->message;
  while (!words.empty() && (words.back() == '\n' || words.back() == ' '))
    words.pop_back();
  if (error->line > 0) words += " (line " + std::to_string(error->line) + ")";
  return String::FromUtf8(words);
}

}  // namespace

// Receives the parser's callbacks and fills a document. Names come from the parser's
// dictionary, so a pointer pair identifies a name for the whole parse.
class ProjectDocumentBuilder {
 public:
  explicit ProjectDocumentBuilder(ProjectDocument& doc) : doc_(doc) {}

  static void OnStart(void* ctx, const xmlChar* local, const xmlChar* prefix, const xmlChar*, int,
                      const xmlChar**, int nb_attributes, int, const xmlChar** attributes) {
    ProjectDocumentBuilder& self = Of(ctx);
    if (!self.Start(local, prefix, nb_attributes, attributes)) {
      self.too_large_ = true;
      xmlStopParser(static_cast<xmlParserCtxtPtr>(ctx));
    }
  }
  bool too_large() const { return too_large_; }
  bool has_root() const { return !doc_.elements_.empty(); }
  static void OnEnd(void* ctx, const xmlChar*, const xmlChar*, const xmlChar*) {
    ProjectDocumentBuilder& self = Of(ctx);
    if (!self.open_.empty()) self.open_.pop_back();
  }

 private:
  static ProjectDocumentBuilder& Of(void* ctx) {
    return *static_cast<ProjectDocumentBuilder*>(static_cast<xmlParserCtxtPtr>(ctx)->_private);
  }

  // False when the values no longer fit the arena's 32-bit offsets.
  bool Start(const xmlChar* local, const xmlChar* prefix, int count, const xmlChar** attrs) {
    const int32_t index = static_cast<int32_t>(doc_.elements_.size());
    ProjectDocument::Element element;
    element.name = NameOf(prefix, local);
    element.first_attribute = static_cast<uint32_t>(doc_.attributes_.size());
    element.attribute_count = static_cast<uint32_t>(count);
    for (int i = 0; i < count; ++i) {
      const xmlChar** a = attrs + 5 * i;  // local name, prefix, URI, value, end of value
      const auto* begin = reinterpret_cast<const char*>(a[3]);
      const auto size = static_cast<size_t>(reinterpret_cast<const char*>(a[4]) - begin);
      if (doc_.arena_.size() + size > UINT32_MAX) return false;
      doc_.attributes_.push_back({NameOf(a[1], a[0]), static_cast<uint32_t>(doc_.arena_.size()),
                                  static_cast<uint32_t>(size)});
      doc_.arena_.append(begin, size);
    }
    if (!open_.empty()) Link(open_.back(), index);
    doc_.elements_.push_back(element);
    open_.push_back(index);
    return true;
  }

  void Link(int32_t parent, int32_t child) {
    ProjectDocument::Element& p = doc_.elements_[static_cast<size_t>(parent)];
    if (p.last_child == ProjectDocument::kNone) {
      p.first_child = child;
    } else {
      doc_.elements_[static_cast<size_t>(p.last_child)].next_sibling = child;
    }
    p.last_child = child;
  }

  int32_t NameOf(const xmlChar* prefix, const xmlChar* local) {
    const NameKey key{prefix, local};
    if (const auto it = ids_.find(key); it != ids_.end()) return it->second;
    std::string text;
    if (prefix) text.append(reinterpret_cast<const char*>(prefix)).push_back(':');
    text.append(reinterpret_cast<const char*>(local));
    const int32_t id = static_cast<int32_t>(doc_.names_.size());
    doc_.names_.push_back(String::FromUtf8(text));
    ids_.emplace(key, id);
    return id;
  }

  ProjectDocument& doc_;
  std::vector<int32_t> open_;
  std::unordered_map<NameKey, int32_t, NameKeyHash> ids_;
  bool too_large_ = false;
};

namespace {

// One push parse over bytes that `next` hands out in chunks until it gives an empty view.
template <class Next>
String Parse(ProjectDocumentBuilder& builder, Next&& next) {
  xmlSAXHandler sax;
  std::memset(&sax, 0, sizeof sax);
  xmlSAXVersion(&sax, 2);
  sax.startElementNs = &ProjectDocumentBuilder::OnStart;
  sax.endElementNs = &ProjectDocumentBuilder::OnEnd;
  sax.characters = nullptr;
  sax.ignorableWhitespace = nullptr;
  sax.cdataBlock = nullptr;
  sax.comment = nullptr;
  sax.processingInstruction = nullptr;
  sax.reference = nullptr;
  sax.resolveEntity = &RefuseExternal;
  sax.externalSubset = nullptr;
  sax.warning = &SilentMessage;
  sax.error = &SilentMessage;
  sax.fatalError = &SilentMessage;
  sax.serror = &SilentStructured;

  xmlParserCtxtPtr ctxt = xmlCreatePushParserCtxt(&sax, nullptr, nullptr, 0, nullptr);
  if (!ctxt) throw Error(kErrOutOfMemory);
  const std::unique_ptr<xmlParserCtxt, void (*)(xmlParserCtxtPtr)> owner(ctxt,
                                                                         [](xmlParserCtxtPtr c) {
                                                                           if (c->myDoc)
                                                                             xmlFreeDoc(c->myDoc);
                                                                           c->myDoc = nullptr;
                                                                           xmlFreeParserCtxt(c);
                                                                         });
  xmlCtxtUseOptions(ctxt,
                    XML_PARSE_NOENT | XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING);
  ctxt->_private = &builder;

  for (;;) {
    const std::string_view chunk = next();
    const bool last = chunk.empty();
    xmlParseChunk(ctxt, chunk.data(), static_cast<int>(chunk.size()), last ? 1 : 0);
    if (!ctxt->wellFormed || ctxt->disableSAX) break;
    if (last) break;
  }
  if (builder.too_large()) return String(u"The document is too large.");
  if (ctxt->wellFormed && builder.has_root()) return String();
  return ReasonOf(xmlCtxtGetLastError(ctxt));
}

}  // namespace

void ProjectDocument::Clear() {
  elements_.clear();
  attributes_.clear();
  names_.clear();
  arena_.clear();
}

bool ProjectDocument::LoadBytes(std::string_view bytes) {
  Clear();
  ProjectDocumentBuilder builder(*this);
  error_ = Parse(builder, [&]() {
    const std::string_view chunk = bytes.substr(0, kChunkSize);
    bytes.remove_prefix(chunk.size());
    return chunk;
  });
  if (error_.empty()) return true;
  Clear();
  return false;
}

bool ProjectDocument::Load(StringView path) {
  Clear();
  if (!fs::FileExists(path)) {
    error_ = String(u"The system cannot locate the object specified.");
    return false;
  }
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(
      std::fopen(fs::ToNative(path).c_str(), "rb"), &std::fclose);
  if (!file) {
    error_ = String(u"Access is denied.");
    return false;
  }
  std::string buffer(kChunkSize, '\0');
  bool read_failed = false;
  ProjectDocumentBuilder builder(*this);
  error_ = Parse(builder, [&]() {
    const size_t got = std::fread(buffer.data(), 1, buffer.size(), file.get());
    if (got == 0 && std::ferror(file.get())) read_failed = true;
    return std::string_view(buffer.data(), got);
  });
  if (read_failed && error_.empty()) error_ = String(u"The file could not be read.");
  if (error_.empty()) return true;
  Clear();
  return false;
}

int32_t ProjectDocument::FindName(StringView qualified_name) const {
  for (size_t i = 0; i < names_.size(); ++i) {
    if (names_[i] == qualified_name) return static_cast<int32_t>(i);
  }
  return kNone;
}

std::span<const ProjectDocument::Attribute> ProjectDocument::attributes(int32_t element) const {
  const Element& e = elements_[static_cast<size_t>(element)];
  return std::span<const Attribute>(attributes_).subspan(e.first_attribute, e.attribute_count);
}

std::optional<std::string_view> ProjectDocument::attribute(int32_t element,
                                                           StringView qualified_name) const {
  return attribute(element, FindName(qualified_name));
}

std::optional<std::string_view> ProjectDocument::attribute(int32_t element, int32_t name) const {
  if (name == kNone) return std::nullopt;
  for (const Attribute& a : attributes(element)) {
    if (a.name == name) return value(a);
  }
  return std::nullopt;
}

int32_t ProjectDocument::ChildCount(int32_t element) const {
  int32_t count = 0;
  for (int32_t c = this->element(element).first_child; c != kNone;
       c = this->element(c).next_sibling)
    ++count;
  return count;
}

int32_t ProjectDocument::FirstChildNamed(int32_t element, StringView qualified_name) const {
  const int32_t id = FindName(qualified_name);
  if (id == kNone) return kNone;
  for (int32_t c = this->element(element).first_child; c != kNone;
       c = this->element(c).next_sibling) {
    if (this->element(c).name == id) return c;
  }
  return kNone;
}

}  // namespace qv

#include "platform/XmlDocument.h"

#include <pugixml.hpp>
#include <sstream>

namespace qds {

namespace {

// Comments, processing instructions, the declaration, a doctype and the
// white space between elements are kept as they stand, so that writing the
// text back changes only what we changed.
// pugixml never expands entities declared in a doctype.
constexpr unsigned kParseOptions = pugi::parse_default | pugi::parse_ws_pcdata | pugi::parse_declaration |
                                   pugi::parse_doctype | pugi::parse_comments | pugi::parse_pi;

pugi::xml_node FromOpaque(void* p) {
  return pugi::xml_node(static_cast<pugi::xml_node_struct*>(p));
}

void* ToOpaque(const pugi::xml_node& n) {
  return n.internal_object();
}

}  // namespace

pugi::xml_node XmlNode::Pugi() const {
  return FromOpaque(node_);
}

bool XmlNode::IsElement() const {
  return node_ && Pugi().type() == pugi::node_element;
}

std::string XmlNode::Name() const {
  return node_ ? Pugi().name() : "";
}

XmlNode XmlNode::Parent() const {
  if (!node_) return {};
  const pugi::xml_node p = Pugi().parent();
  return p && p.type() == pugi::node_element ? XmlNode(ToOpaque(p)) : XmlNode();
}

std::vector<XmlNode> XmlNode::Children() const {
  std::vector<XmlNode> out;
  if (!node_) return out;
  for (pugi::xml_node c : Pugi().children()) {
    if (c.type() == pugi::node_element) out.push_back(XmlNode(ToOpaque(c)));
  }
  return out;
}

bool XmlNode::HasAttribute(std::string_view name) const {
  return node_ && Pugi().attribute(std::string(name).c_str());
}

std::string XmlNode::Attribute(std::string_view name) const {
  return node_ ? Pugi().attribute(std::string(name).c_str()).value() : "";
}

std::vector<std::pair<std::string, std::string>> XmlNode::Attributes() const {
  std::vector<std::pair<std::string, std::string>> out;
  if (!node_) return out;
  for (pugi::xml_attribute a : Pugi().attributes()) out.emplace_back(a.name(), a.value());
  return out;
}

void XmlNode::SetAttribute(std::string_view name, std::string_view value) {
  if (!IsElement()) return;
  const std::string n(name);
  pugi::xml_attribute a = Pugi().attribute(n.c_str());
  if (!a) a = Pugi().append_attribute(n.c_str());
  a.set_value(std::string(value).c_str());
}

bool XmlNode::RemoveAttribute(std::string_view name) {
  return node_ && Pugi().remove_attribute(std::string(name).c_str());
}

bool XmlNode::RemoveChild(const XmlNode& child) {
  if (!node_ || !child.node_ || child.Pugi().parent() != Pugi()) return false;
  return Pugi().remove_child(child.Pugi());
}

XmlDocument::XmlDocument() : doc_(std::make_unique<pugi::xml_document>()) {}
XmlDocument::~XmlDocument() = default;
XmlDocument::XmlDocument(XmlDocument&&) noexcept = default;
XmlDocument& XmlDocument::operator=(XmlDocument&&) noexcept = default;

bool XmlDocument::Load(std::string_view text) {
  const pugi::xml_parse_result r =
      doc_->load_buffer(text.data(), text.size(), kParseOptions, pugi::encoding_utf8);
  if (!r || !doc_->document_element()) {
    error_ =
        r ? "The document has no root element"
          : std::string("The XML is damaged: ") + r.description() + " at offset " + std::to_string(r.offset);
    doc_->reset();
    return false;
  }
  error_.clear();
  return true;
}

XmlNode XmlDocument::Root() const {
  const pugi::xml_node root = doc_->document_element();
  return root ? XmlNode(ToOpaque(root)) : XmlNode();
}

std::string XmlDocument::Serialize() const {
  std::ostringstream out;
  doc_->save(out, "", pugi::format_raw | pugi::format_no_declaration, pugi::encoding_utf8);
  return out.str();
}

bool SvgDocument::Parse(std::string_view text) {
  elements_.clear();
  if (!xml_.Load(text)) return false;
  // Depth first, in document order, without recursion: damaged input may
  // nest deeper than the stack allows.
  std::vector<XmlNode> stack{xml_.Root()};
  while (!stack.empty()) {
    const XmlNode n = stack.back();
    stack.pop_back();
    elements_.push_back(n);
    const std::vector<XmlNode> children = n.Children();
    stack.insert(stack.end(), children.rbegin(), children.rend());
  }
  return true;
}

}  // namespace qds

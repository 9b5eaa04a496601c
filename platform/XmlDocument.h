#pragma once
// Reading and changing SVG text as XML. Two levels: SvgDocument lists every
// element of a document in order, for code that only looks; XmlDocument is a
// tree to walk and change, then write back out. Neither ever fetches or
// expands anything from outside the text (no external entities, no DTDs).

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pugi {
class xml_document;
class xml_node;
}  // namespace pugi

namespace qds {

// A node of a document; a null node answers with empty values. Valid while
// its document lives and the node has not been removed.
class XmlNode {
 public:
  XmlNode() = default;

  bool IsNull() const { return node_ == nullptr; }
  bool IsElement() const;
  std::string Name() const;
  XmlNode Parent() const;
  std::vector<XmlNode> Children() const;  // element children, in order
  bool HasAttribute(std::string_view name) const;
  std::string Attribute(std::string_view name) const;  // "" when absent
  std::vector<std::pair<std::string, std::string>> Attributes() const;
  void SetAttribute(std::string_view name, std::string_view value);
  bool RemoveAttribute(std::string_view name);
  bool RemoveChild(const XmlNode& child);

  bool operator==(const XmlNode& other) const { return node_ == other.node_; }

 private:
  friend class XmlDocument;
  friend class SvgDocument;
  explicit XmlNode(void* node) : node_(node) {}
  pugi::xml_node Pugi() const;
  void* node_ = nullptr;  // pugixml's internal node
};

class XmlDocument {
 public:
  XmlDocument();
  ~XmlDocument();
  XmlDocument(XmlDocument&&) noexcept;
  XmlDocument& operator=(XmlDocument&&) noexcept;

  // False, with the reason in Error(), for text that is not well-formed.
  bool Load(std::string_view text);
  const std::string& Error() const { return error_; }
  XmlNode Root() const;  // the document element
  // The text of the document, without added indentation.
  std::string Serialize() const;

 private:
  std::unique_ptr<pugi::xml_document> doc_;
  std::string error_;
};

// Every element of a document, at any depth, in document order.
class SvgDocument {
 public:
  bool Parse(std::string_view text);
  const std::string& Error() const { return xml_.Error(); }
  const std::vector<XmlNode>& Elements() const { return elements_; }

 private:
  XmlDocument xml_;
  std::vector<XmlNode> elements_;
};

}  // namespace qds

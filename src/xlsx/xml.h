// XML helpers for package parts. Elements are matched by local name, so that parts written with
// a namespace prefix ("x:row") read like parts written without one; new elements take the prefix
// of the element they are added to.
#pragma once

#include <pugixml.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace xlsx {

// Throws XlsxError naming `partName` when the bytes are not well-formed XML.
void ParseXml(pugi::xml_document& document, const std::string& bytes, std::string_view partName);
std::string SerializeXml(const pugi::xml_document& document);

std::string_view LocalName(const pugi::xml_node& node);
pugi::xml_node Child(const pugi::xml_node& parent, std::string_view localName);
std::vector<pugi::xml_node> Children(const pugi::xml_node& parent, std::string_view localName);
// The name a new child of `parent` takes: `localName` with the parent's prefix.
std::string QualifiedName(const pugi::xml_node& parent, std::string_view localName);

// The child, created if missing at the place `order` (the local names of the parent's children
// in their required order) gives it.
pugi::xml_node EnsureChild(pugi::xml_node parent, std::string_view localName,
                           std::span<const std::string_view> order);

// A new child, placed after the children that come before it (or are like it) in `order`.
pugi::xml_node InsertInOrder(pugi::xml_node parent, std::string_view localName,
                             std::span<const std::string_view> order);

// The text of all <t> elements below `node`, joined: a rich text flattened.
std::string JoinedText(const pugi::xml_node& node);

// The bytes as text XML can hold: each byte that does not begin a well-formed UTF-8 sequence of
// a character XML allows becomes U+FFFD, and the controls XML forbids are dropped.
std::string WellFormedText(std::string_view bytes);
// Appends `text` as the content of an element, escaped, and well-formed as WellFormedText makes
// it: what SerializeXml writes for a text node.
void AppendXmlText(std::string& out, std::string_view text);

}  // namespace xlsx

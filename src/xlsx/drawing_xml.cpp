#include "xlsx/drawing_xml.h"

#include "xlsx/xml.h"

namespace xlsx {
std::string NamespacePrefix(pugi::xml_node root, std::string_view uri, std::string_view wanted) {
    for (pugi::xml_attribute attribute : root.attributes()) {
        const std::string_view name = attribute.name();
        if (attribute.value() != uri) continue;
        if (name == "xmlns") return "";
        if (name.starts_with("xmlns:")) return std::string(name.substr(6));
    }
    root.append_attribute(("xmlns:" + std::string(wanted)).c_str())
        .set_value(std::string(uri).c_str());
    return std::string(wanted);
}

DrawingPrefixes DrawingPrefixes::Bind(pugi::xml_node root) {
    return DrawingPrefixes{NamespacePrefix(root, kSpreadsheetDrawingNamespace, "xdr"),
                           NamespacePrefix(root, kDrawingMainNamespace, "a"),
                           NamespacePrefix(root, kRelationshipsNamespace, "r"),
                           NamespacePrefix(root, kChartNamespace, "c")};
}

std::string Prefixed(std::string_view prefix, std::string_view localName) {
    if (prefix.empty()) return std::string(localName);
    return std::string(prefix) + ":" + std::string(localName);
}

pugi::xml_node AddElement(pugi::xml_node parent, std::string_view prefix,
                          std::string_view localName) {
    return parent.append_child(Prefixed(prefix, localName).c_str());
}

pugi::xml_node ChildOrAdd(pugi::xml_node parent, std::string_view prefix,
                          std::string_view localName) {
    if (pugi::xml_node existing = Child(parent, localName)) return existing;
    return AddElement(parent, prefix, localName);
}

void SetAttribute(pugi::xml_node node, const char* name, std::string_view value) {
    pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) attribute = node.append_attribute(name);
    attribute.set_value(std::string(value).c_str());
}

void SetAttribute(pugi::xml_node node, const char* name, std::int64_t value) {
    SetAttribute(node, name, std::string_view(std::to_string(value)));
}

}  // namespace xlsx

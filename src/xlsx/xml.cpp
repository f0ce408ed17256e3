#include "xlsx/xml.h"

#include <algorithm>
#include <sstream>

#include "xlsx/xlsx.h"

namespace xlsx {

void ParseXml(pugi::xml_document& document, const std::string& bytes, std::string_view partName) {
    const pugi::xml_parse_result result = document.load_buffer(
        bytes.data(), bytes.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
    if (!result) {
        throw XlsxError("the workbook is corrupt: part " + std::string(partName) +
                        " is not well-formed (" + result.description() + ")");
    }
}

std::string SerializeXml(const pugi::xml_document& document) {
    std::ostringstream out;
    document.save(out, "", pugi::format_raw, pugi::encoding_utf8);
    return out.str();
}

std::string_view LocalName(const pugi::xml_node& node) {
    const std::string_view name = node.name();
    const auto colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

pugi::xml_node Child(const pugi::xml_node& parent, std::string_view localName) {
    for (pugi::xml_node child : parent.children()) {
        if (child.type() == pugi::node_element && LocalName(child) == localName) return child;
    }
    return {};
}

std::vector<pugi::xml_node> Children(const pugi::xml_node& parent, std::string_view localName) {
    std::vector<pugi::xml_node> found;
    for (pugi::xml_node child : parent.children()) {
        if (child.type() == pugi::node_element && LocalName(child) == localName) {
            found.push_back(child);
        }
    }
    return found;
}

std::string QualifiedName(const pugi::xml_node& parent, std::string_view localName) {
    const std::string_view name = parent.name();
    const auto colon = name.find(':');
    if (colon == std::string_view::npos) return std::string(localName);
    return std::string(name.substr(0, colon + 1)) + std::string(localName);
}

pugi::xml_node EnsureChild(pugi::xml_node parent, std::string_view localName,
                           std::span<const std::string_view> order) {
    if (pugi::xml_node existing = Child(parent, localName)) return existing;
    return InsertInOrder(parent, localName, order);
}

pugi::xml_node InsertInOrder(pugi::xml_node parent, std::string_view localName,
                             std::span<const std::string_view> order) {
    const auto rank = [&](std::string_view name) {
        return std::find(order.begin(), order.end(), name) - order.begin();
    };
    const auto wanted = rank(localName);
    const std::string name = QualifiedName(parent, localName);
    for (pugi::xml_node child : parent.children()) {
        if (child.type() == pugi::node_element && rank(LocalName(child)) > wanted) {
            return parent.insert_child_before(name.c_str(), child);
        }
    }
    return parent.append_child(name.c_str());
}

std::string JoinedText(const pugi::xml_node& node) {
    std::string text;
    for (pugi::xml_node run : node.children()) {
        if (run.type() != pugi::node_element) continue;
        if (LocalName(run) == "t") {
            text += run.text().get();
        } else if (LocalName(run) == "r") {
            text += JoinedText(run);
        }
    }
    return text;
}

}  // namespace xlsx

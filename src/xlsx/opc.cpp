#include "xlsx/opc.h"

#include <algorithm>

#include "xlsx/xml.h"

namespace xlsx {

std::string RelationshipsPartName(std::string_view partName) {
    const auto slash = partName.rfind('/');
    if (slash == std::string_view::npos) {
        return "_rels/" + std::string(partName) + ".rels";
    }
    return std::string(partName.substr(0, slash + 1)) + "_rels/" +
           std::string(partName.substr(slash + 1)) + ".rels";
}

std::string ResolveTarget(std::string_view partName, std::string_view target) {
    std::string joined;
    if (!target.empty() && target.front() == '/') {
        joined = target.substr(1);
    } else {
        const auto slash = partName.rfind('/');
        joined = (slash == std::string_view::npos ? std::string()
                                                  : std::string(partName.substr(0, slash + 1))) +
                 std::string(target);
    }
    // Fold "." and ".." segments.
    std::vector<std::string> segments;
    std::size_t start = 0;
    while (start <= joined.size()) {
        const auto end = std::min(joined.find('/', start), joined.size());
        const std::string segment = joined.substr(start, end - start);
        if (segment == "..") {
            if (!segments.empty()) segments.pop_back();
        } else if (!segment.empty() && segment != ".") {
            segments.push_back(segment);
        }
        start = end + 1;
    }
    std::string resolved;
    for (const auto& segment : segments) {
        if (!resolved.empty()) resolved += '/';
        resolved += segment;
    }
    return resolved;
}

std::vector<Relationship> ReadRelationships(const Package& package, std::string_view partName) {
    std::vector<Relationship> relationships;
    const std::string relsName = RelationshipsPartName(partName);
    const Part* part = package.Find(relsName);
    if (part == nullptr) return relationships;
    pugi::xml_document document;
    ParseXml(document, part->bytes, relsName);
    for (pugi::xml_node node : Children(document.document_element(), "Relationship")) {
        Relationship relationship;
        relationship.id = node.attribute("Id").value();
        relationship.type = node.attribute("Type").value();
        relationship.external =
            std::string_view(node.attribute("TargetMode").value()) == "External";
        const std::string_view target = node.attribute("Target").value();
        relationship.target =
            relationship.external ? std::string(target) : ResolveTarget(partName, target);
        relationships.push_back(std::move(relationship));
    }
    return relationships;
}

const Relationship* FindByType(const std::vector<Relationship>& relationships,
                               std::string_view type) {
    auto found = std::find_if(relationships.begin(), relationships.end(),
                              [&](const Relationship& r) { return r.type == type; });
    return found == relationships.end() ? nullptr : &*found;
}

}  // namespace xlsx

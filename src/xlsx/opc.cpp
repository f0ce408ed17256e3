#include "xlsx/opc.h"

#include <algorithm>
#include <set>

#include "xlsx/xlsx.h"
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

std::set<std::string> ReachableParts(const Package& package) {
    std::set<std::string> reached;
    std::vector<std::string> pending{""};
    while (!pending.empty()) {
        const std::string source = std::move(pending.back());
        pending.pop_back();
        for (const Relationship& relationship : ReadRelationships(package, source)) {
            if (relationship.external || package.Find(relationship.target) == nullptr) continue;
            if (reached.insert(relationship.target).second) pending.push_back(relationship.target);
        }
    }
    return reached;
}

const Relationship* FindByType(const std::vector<Relationship>& relationships,
                               std::string_view type) {
    auto found = std::find_if(relationships.begin(), relationships.end(),
                              [&](const Relationship& r) { return r.type == type; });
    return found == relationships.end() ? nullptr : &*found;
}

std::string FreePartName(const Package& package, std::string_view stem,
                         std::string_view extension) {
    for (int number = 1;; ++number) {
        std::string name = std::string(stem) + std::to_string(number) + std::string(extension);
        if (package.Find(name) == nullptr) return name;
    }
}

ContentTypes::ContentTypes(Package& package) : package_(package) {
    const Part* part = package_.Find("[Content_Types].xml");
    if (part == nullptr) throw XlsxError("the workbook is corrupt: it has no [Content_Types].xml");
    ParseXml(document_, part->bytes, "[Content_Types].xml");
}

void ContentTypes::Override(const std::string& partName, std::string_view contentType) {
    Remove(partName);
    pugi::xml_node types = document_.document_element();
    pugi::xml_node node = types.append_child(QualifiedName(types, "Override").c_str());
    node.append_attribute("PartName").set_value(("/" + partName).c_str());
    node.append_attribute("ContentType").set_value(std::string(contentType).c_str());
}

void ContentTypes::Remove(const std::string& partName) {
    for (pugi::xml_node node : Children(document_.document_element(), "Override")) {
        if (node.attribute("PartName").value() == "/" + partName) {
            document_.document_element().remove_child(node);
        }
    }
}

void ContentTypes::Store() {
    package_.Put("[Content_Types].xml", SerializeXml(document_));
}

PartRelationships::PartRelationships(Package& package, std::string sourcePart)
    : package_(package), sourcePart_(std::move(sourcePart)) {
    const std::string name = RelationshipsPartName(sourcePart_);
    if (const Part* part = package_.Find(name)) {
        ParseXml(document_, part->bytes, name);
    } else {
        document_.load_string(
            R"(<Relationships xmlns="http://schemas.openxmlformats.org/package/2006/relationships"/>)");
    }
}

std::string PartRelationships::Add(std::string_view type, const std::string& targetPart) {
    pugi::xml_node root = document_.document_element();
    std::set<std::string, std::less<>> taken;
    for (pugi::xml_node node : Children(root, "Relationship")) {
        taken.insert(node.attribute("Id").value());
    }
    int next = 1;
    while (taken.contains("rId" + std::to_string(next))) ++next;
    const std::string id = "rId" + std::to_string(next);
    pugi::xml_node node = root.append_child(QualifiedName(root, "Relationship").c_str());
    node.append_attribute("Id").set_value(id.c_str());
    node.append_attribute("Type").set_value(std::string(type).c_str());
    node.append_attribute("Target").set_value(("/" + targetPart).c_str());
    return id;
}

std::vector<std::string> PartRelationships::Ids() const {
    std::vector<std::string> ids;
    for (pugi::xml_node node : Children(document_.document_element(), "Relationship")) {
        ids.emplace_back(node.attribute("Id").value());
    }
    return ids;
}

void PartRelationships::Remove(std::string_view id) {
    for (pugi::xml_node node : Children(document_.document_element(), "Relationship")) {
        if (node.attribute("Id").value() == id) document_.document_element().remove_child(node);
    }
}

void PartRelationships::RemoveTarget(const std::string& targetPart) {
    for (pugi::xml_node node : Children(document_.document_element(), "Relationship")) {
        if (std::string_view(node.attribute("TargetMode").value()) != "External" &&
            ResolveTarget(sourcePart_, node.attribute("Target").value()) == targetPart) {
            document_.document_element().remove_child(node);
        }
    }
}

void PartRelationships::Store() {
    const std::string name = RelationshipsPartName(sourcePart_);
    if (Children(document_.document_element(), "Relationship").empty()) {
        package_.Remove(name);
    } else {
        package_.Put(name, SerializeXml(document_));
    }
}

void RemovePart(Package& package, ContentTypes& types, const std::string& partName) {
    package.Remove(partName);
    package.Remove(RelationshipsPartName(partName));
    types.Remove(partName);
}

}  // namespace xlsx

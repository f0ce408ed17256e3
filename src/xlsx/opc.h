// Package structure: relationships between parts and the content types of parts.
#pragma once

#include <pugixml.hpp>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "xlsx/package.h"

namespace xlsx {

inline constexpr std::string_view kOfficeDocumentType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/officeDocument";
inline constexpr std::string_view kWorksheetType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/worksheet";
inline constexpr std::string_view kStylesType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/styles";
inline constexpr std::string_view kSharedStringsType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/sharedStrings";
inline constexpr std::string_view kCalcChainType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/calcChain";
inline constexpr std::string_view kDrawingType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/drawing";
inline constexpr std::string_view kChartType =
    "http://schemas.openxmlformats.org/officeDocument/2006/relationships/chart";
inline constexpr std::string_view kWorksheetContentType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";
inline constexpr std::string_view kDrawingContentType =
    "application/vnd.openxmlformats-officedocument.drawing+xml";
inline constexpr std::string_view kChartContentType =
    "application/vnd.openxmlformats-officedocument.drawingml.chart+xml";

struct Relationship {
    std::string id;
    std::string type;
    std::string target;  // the part name it resolves to, or the raw target when external
    bool external = false;
};

// "xl/_rels/workbook.xml.rels" for "xl/workbook.xml"; "_rels/.rels" for the package ("").
std::string RelationshipsPartName(std::string_view partName);
// The part a relative or absolute target names, seen from `partName`.
std::string ResolveTarget(std::string_view partName, std::string_view target);

std::vector<Relationship> ReadRelationships(const Package& package, std::string_view partName);
const Relationship* FindByType(const std::vector<Relationship>& relationships,
                               std::string_view type);

// The parts reached from the package's root through internal relationships, followed from part
// to part.
std::set<std::string> ReachableParts(const Package& package);

// The first free part name of the pattern "xl/drawings/drawing" + N + ".xml".
std::string FreePartName(const Package& package, std::string_view stem, std::string_view extension);

// The content types of a package, edited in memory and stored back by Store().
class ContentTypes {
  public:
    // Throws XlsxError when the package has none.
    explicit ContentTypes(Package& package);
    void Override(const std::string& partName, std::string_view contentType);
    void Remove(const std::string& partName);
    void Store();

  private:
    Package& package_;
    pugi::xml_document document_;
};

// The relationships of one part, edited in memory and stored back by Store().
class PartRelationships {
  public:
    PartRelationships(Package& package, std::string sourcePart);
    // Relates a part to the source part; answers the new relationship's id.
    std::string Add(std::string_view type, const std::string& targetPart);
    std::vector<std::string> Ids() const;
    void Remove(std::string_view id);
    // Removes the relationships that target the part.
    void RemoveTarget(const std::string& targetPart);
    // Stores the relationships, or removes their part when none is left.
    void Store();

  private:
    Package& package_;
    std::string sourcePart_;
    pugi::xml_document document_;
};

// Drops a part with its own relationships and content type.
void RemovePart(Package& package, ContentTypes& types, const std::string& partName);

}  // namespace xlsx

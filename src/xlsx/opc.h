// Package structure: relationships between parts and the content types of parts.
#pragma once

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
inline constexpr std::string_view kWorksheetContentType =
    "application/vnd.openxmlformats-officedocument.spreadsheetml.worksheet+xml";

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

}  // namespace xlsx

#include "xlsx/xml.h"

#include <algorithm>
#include <sstream>

#include "xlsx/xlsx.h"

namespace xlsx {
namespace {

// Drops "&#1;" to "&#31;" other than tab, line feed and carriage return, as the writer spells
// them. Done in place: a sheet's XML can be tens of megabytes.
void DropForbiddenReferences(std::string& xml) {
    std::size_t kept = 0;
    for (std::size_t at = 0; at < xml.size();) {
        if (xml.compare(at, 2, "&#") == 0) {
            const auto end = xml.find(';', at);
            if (end != std::string::npos && end - at <= 4) {
                const std::string digits = xml.substr(at + 2, end - at - 2);
                if (!digits.empty() &&
                    digits.find_first_not_of("0123456789") == std::string::npos) {
                    const int code = std::stoi(digits);
                    if (code < 0x20 && code != 9 && code != 10 && code != 13) {
                        at = end + 1;
                        continue;
                    }
                }
            }
        }
        xml[kept++] = xml[at++];
    }
    xml.resize(kept);
}

// What stands for a byte that begins no character: U+FFFD.
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

// The length of the UTF-8 character at `at` when XML may hold it; 0 for a control XML forbids
// and for a byte that does not begin a well-formed sequence.
std::size_t AllowedCharacterLength(std::string_view bytes, std::size_t at) {
    const auto byte = [&](std::size_t k) { return static_cast<unsigned char>(bytes[k]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        // Controls other than tab, line feed and carriage return have no place in XML.
        return lead >= 0x20 || lead == '\t' || lead == '\n' || lead == '\r' ? 1 : 0;
    }
    const std::size_t length = (lead >> 5) == 0x6    ? 2
                               : (lead >> 4) == 0xE  ? 3
                               : (lead >> 3) == 0x1E ? 4
                                                     : 0;
    char32_t code = length == 2 ? lead & 0x1F : length == 3 ? lead & 0x0F : lead & 0x07;
    bool valid = length != 0 && at + length <= bytes.size();
    for (std::size_t k = 1; valid && k < length; ++k) {
        valid = (byte(at + k) & 0xC0) == 0x80;
        code = (code << 6) | (byte(at + k) & 0x3F);
    }
    // Over-long forms, surrogates, U+FFFE and U+FFFF and codes past U+10FFFF are refused too.
    const char32_t least = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
    valid = valid && code >= least && code <= 0x10FFFF && (code < 0xD800 || code > 0xDFFF) &&
            code != 0xFFFE && code != 0xFFFF;
    return valid ? length : 0;
}

// Hands each character of `bytes` that XML may hold to `take`, U+FFFD for each byte that begins
// no character, and nothing for the controls XML forbids.
template <class Take>
void ForEachAllowedCharacter(std::string_view bytes, Take take) {
    for (std::size_t at = 0; at < bytes.size();) {
        if (const std::size_t length = AllowedCharacterLength(bytes, at); length != 0) {
            take(bytes.substr(at, length));
            at += length;
            continue;
        }
        if (static_cast<unsigned char>(bytes[at]) >= 0x80) take(kReplacement);
        ++at;
    }
}

// WellFormedText, copying only when something needs mending.
void MakeWellFormed(std::string& bytes) {
    std::size_t at = 0;
    for (std::size_t length = 0; at < bytes.size(); at += length) {
        length = AllowedCharacterLength(bytes, at);
        if (length == 0) break;
    }
    if (at < bytes.size()) bytes = WellFormedText(bytes);
}

}  // namespace

void ParseXml(pugi::xml_document& document, const std::string& bytes, std::string_view partName) {
    const pugi::xml_parse_result result = document.load_buffer(
        bytes.data(), bytes.size(), pugi::parse_default | pugi::parse_ws_pcdata_single);
    if (!result) {
        throw XlsxError("the workbook is corrupt: part " + std::string(partName) +
                        " is not well-formed (" + result.description() + ")");
    }
}

std::string SerializeXml(const pugi::xml_document& document) {
    // A text of the workbook may hold bytes that are no UTF-8, and the parser decodes character
    // references without looking at the code they name, so a text read from a file may hold
    // controls that XML forbids, which the writer turns into references again. Mend both:
    // whatever is written must be well-formed. The markup itself is plain ASCII.
    struct Writer : pugi::xml_writer {
        std::string bytes;
        void write(const void* data, std::size_t size) override {
            bytes.append(static_cast<const char*>(data), size);
        }
    } writer;
    document.save(writer, "", pugi::format_raw, pugi::encoding_utf8);
    MakeWellFormed(writer.bytes);
    DropForbiddenReferences(writer.bytes);
    return std::move(writer.bytes);
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
    // Runs may nest as deep as the file likes: walk them in document order without recursion.
    std::string text;
    pugi::xml_node current = node.first_child();
    while (current) {
        const bool element = current.type() == pugi::node_element;
        if (element && LocalName(current) == "t") text += current.text().get();
        if (element && LocalName(current) == "r" && current.first_child()) {
            current = current.first_child();
            continue;
        }
        while (current != node && !current.next_sibling()) current = current.parent();
        if (current == node) break;
        current = current.next_sibling();
    }
    return text;
}

void AppendXmlText(std::string& out, std::string_view text) {
    // One pass, mending and escaping as it goes: the writer calls this for every text and formula
    // of a sheet.
    ForEachAllowedCharacter(text, [&](std::string_view character) {
        if (character == "&") {
            out += "&amp;";
        } else if (character == "<") {
            out += "&lt;";
        } else if (character == ">") {
            out += "&gt;";
        } else {
            out += character;
        }
    });
}

std::string WellFormedText(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size());
    ForEachAllowedCharacter(bytes, [&](std::string_view character) { text += character; });
    return text;
}

}  // namespace xlsx

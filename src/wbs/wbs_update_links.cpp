#include <string>

#include "com/text.h"
#include "wbs/wbs_update.h"

namespace {

// The first value is to be at least the second; a value that is not a number fails too.
bool Violates(double first, double second) {
    return !(first >= second);
}

}  // namespace

LinkReference ParseLink(std::string_view piece) {
    const WideString wide = Widen(piece);
    const std::size_t typeStart = wide.size() < 2 ? 0 : wide.size() - 2;
    WideString type = wide.substr(typeStart);
    if (!type.empty() && type.back() >= OLESTR('0') && type.back() <= OLESTR('9')) {
        return {std::string(piece), "FS"};
    }
    for (OLECHAR& c : type) {
        if (c >= OLESTR('a') && c <= OLESTR('z')) {
            c = static_cast<OLECHAR>(c - OLESTR('a') + OLESTR('A'));
        }
    }
    return {Narrow(wide.substr(0, typeStart)), Narrow(type)};
}

void CheckPredecessors(TaskRecord& successor) {
    successor.dependencyError = 0;
    // A copy: a task that names itself has its record read again by CheckLink.
    const std::string predecessors = successor.predecessors;
    if (predecessors.empty()) {
        return;
    }
    // Pieces are taken as they stand: " 3" names no task and is skipped.
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = predecessors.find(',', start);
        const LinkReference link =
            ParseLink(std::string_view(predecessors)
                          .substr(start, end == std::string::npos ? end : end - start));
        if (TaskRecord* predecessor = Tasks_Find(link.reference)) {
            CheckLink(*predecessor, successor, link.type);
        }
        if (end == std::string::npos) {
            return;
        }
        start = end + 1;
    }
}

void CheckLink(TaskRecord& predecessor, TaskRecord& successor, std::string_view type) {
    TaskRecord_ReadRow(predecessor);
    bool violated = false;
    if (type == "FS") {
        violated = Violates(successor.plannedStart, predecessor.plannedEnd);
    } else if (type == "FF") {
        // The predecessor's end comes first in this test (and the start in "SF"): the workbook's
        // users rely on these senses, so they are kept as they are.
        violated = Violates(predecessor.plannedEnd, successor.plannedEnd);
    } else if (type == "SS") {
        violated = Violates(successor.plannedStart, predecessor.plannedStart);
    } else if (type == "SF") {
        violated = Violates(predecessor.plannedStart, successor.plannedEnd);
    }
    if (violated && successor.dependencyError == 0) {
        successor.dependencyError = 1;
    }
}

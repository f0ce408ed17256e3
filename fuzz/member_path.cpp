// The member-path format strings of the call layer, walked into the in-memory host. The first
// byte picks the operation and the result specifier; the rest is the path. Argument specifiers
// that take a pointer or a double are turned into "%d" so that the whole-number arguments passed
// always match what the path asks for (a wrong type in a variable argument list is the caller's
// fault, not the layer's).
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "com/text.h"
#include "sheethost/sheethost.h"
#include "workbook/automation.h"

namespace {

constexpr int kArgumentsPassed = 25;

// Argument specifiers whose value is a 32-bit whole number, or none at all.
bool TakesAWholeNumber(char specifier) {
    return specifier == 'd' || specifier == 'u' || specifier == 'b' || specifier == 'm';
}

std::string SafePath(const char* bytes, std::size_t size) {
    std::string path(bytes, size);
    for (std::size_t at = 0; at + 1 < path.size(); ++at) {
        if (path[at] == '%' && !TakesAWholeNumber(path[at + 1])) path[at + 1] = 'd';
    }
    if (!path.empty() && path.back() == '%') path.pop_back();
    return path;
}

void FreeResult(char specifier, VARIANT& result) {
    switch (specifier) {
        case 's':
            automation::FreeAutomationText(reinterpret_cast<char*>(result.byref));
            break;
        case 'S':
        case 'B':
            SysFreeString(result.bstrVal);
            break;
        case 'o':
            if (result.pdispVal != nullptr) result.pdispVal->Release();
            break;
        default:
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    static bool started = [] {
        automation::AutomationInit(1, 1);
        automation::ToggleErrors(0);
        return true;
    }();
    (void)started;
    const std::string narrowPath = SafePath(reinterpret_cast<const char*>(data) + 1, size - 1);
    // Every component takes its arguments from the one list: a path that asks for more than the
    // list holds reads past it, as printf would, and is no fault of the layer.
    if (std::count(narrowPath.begin(), narrowPath.end(), '%') > kArgumentsPassed) return 0;
    const WideString path = Widen(narrowPath);
    IDispatch* book = sheethost::NewWorkbookObject(sheethost::NewWorkbook());
    constexpr char kResults[] = "deDsSBo";
    const char result = kResults[data[0] % (sizeof kResults - 1)];
    const WideString resultSpec = Widen(std::string(1, result));
    // More whole numbers than any path can take: small ones, so that the host is not asked for a
    // million rows.
    const int a = data[0] % 7, b = 1, c = 2;
    switch (data[0] / 7 % 3) {
        case 0: {
            VARIANT out{};
            automation::GetValue(resultSpec.c_str(), &out.byref, book, path.c_str(), a, b, c, a, b,
                                 c, a, b, c, a, b, c, a, b, c, a, b, c, a, b, c, a, b, c, a);
            FreeResult(result, out);
            break;
        }
        case 1:
            automation::PutValue(book, path.c_str(), a, b, c, a, b, c, a, b, c, a, b, c, a, b, c, a,
                                 b, c, a, b, c, a, b, c, a);
            break;
        default:
            automation::CallMethod(book, path.c_str(), a, b, c, a, b, c, a, b, c, a, b, c, a, b, c,
                                   a, b, c, a, b, c, a, b, c, a);
            break;
    }
    book->Release();
    return 0;
}

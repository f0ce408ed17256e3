// The system's message texts for the codes this subset knows, and message boxes on standard
// error, since there is no window system to show them in.
#ifndef _WIN32

#include <cstdio>
#include <cstring>
#include <string>

#include "com/com.h"
#include "com/text.h"

namespace {

struct SystemMessage {
    HRESULT code;
    const char* text;
};

// The texts as the system tables hold them, line break included.
constexpr SystemMessage kSystemMessages[] = {
    {S_OK, "The operation completed successfully.\r\n"},
    {S_FALSE, "Incorrect function.\r\n"},
    {E_NOTIMPL, "Not implemented\r\n"},
    {E_NOINTERFACE, "No such interface supported\r\n"},
    {E_POINTER, "Invalid pointer\r\n"},
    {E_FAIL, "Unspecified error\r\n"},
    {E_UNEXPECTED, "Catastrophic failure\r\n"},
    {E_OUTOFMEMORY, "Not enough memory resources are available to complete this operation.\r\n"},
    {E_INVALIDARG, "The parameter is incorrect.\r\n"},
    {DISP_E_UNKNOWNINTERFACE, "Unknown interface.\r\n"},
    {DISP_E_MEMBERNOTFOUND, "Member not found.\r\n"},
    {DISP_E_PARAMNOTFOUND, "Parameter not found.\r\n"},
    {DISP_E_TYPEMISMATCH, "Type mismatch.\r\n"},
    {DISP_E_UNKNOWNNAME, "Unknown name.\r\n"},
    {DISP_E_NONAMEDARGS, "No named arguments.\r\n"},
    {DISP_E_BADVARTYPE, "Bad variable type.\r\n"},
    {DISP_E_EXCEPTION, "Exception occurred.\r\n"},
    {DISP_E_OVERFLOW, "Out of present range.\r\n"},
    {DISP_E_BADINDEX, "Invalid index.\r\n"},
    {DISP_E_BADPARAMCOUNT, "Invalid number of parameters.\r\n"},
    {DISP_E_PARAMNOTOPTIONAL, "Parameter not optional.\r\n"},
    {DISP_E_DIVBYZERO, "Division by zero.\r\n"},
    {REGDB_E_CLASSNOTREG, "Class not registered\r\n"},
    {MK_E_UNAVAILABLE, "Operation unavailable\r\n"},
    {MK_E_SYNTAX, "Invalid syntax\r\n"},
    {CO_E_CLASSSTRING, "Invalid class string\r\n"},
};

const char* SystemMessageText(DWORD messageId) {
    for (const SystemMessage& message : kSystemMessages)
        if (static_cast<DWORD>(message.code) == messageId) return message.text;
    return nullptr;
}

}  // namespace

DWORD FormatMessageA(DWORD flags, LPCVOID, DWORD messageId, DWORD, LPSTR buffer, DWORD size,
                     va_list*) {
    if (!(flags & FORMAT_MESSAGE_FROM_SYSTEM) || buffer == nullptr) return 0;
    const char* text = SystemMessageText(messageId);
    if (text == nullptr) return 0;
    const std::size_t length = std::strlen(text);
    if (length >= size) return 0;
    std::memcpy(buffer, text, length + 1);
    return static_cast<DWORD>(length);
}

int MessageBoxW(HWND, LPCWSTR text, LPCWSTR caption, UINT) {
    constexpr int kIdOk = 1;
    const std::string title = caption != nullptr ? Narrow(caption) : "Error";
    const std::string message = text != nullptr ? Narrow(text) : "";
    std::fprintf(stderr, "[%s] %s\n", title.c_str(), message.c_str());
    return kIdOk;
}

#endif  // _WIN32

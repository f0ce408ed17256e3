// The message text of an error record, and its message box.
#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <string>

#include "workbook/automation_record.h"

namespace automation {
namespace {

using detail::OleStringView;
using OleString = std::basic_string<OLECHAR>;

constexpr int kShownTextLength = 512;
constexpr DWORD kSystemMessageLength = 256;

// Fills the "%s", "%d" and "%x" of a message template, in order, with texts the caller formatted.
OleString FillTemplate(OleStringView format, std::initializer_list<OleStringView> values) {
    OleString text;
    auto next = values.begin();
    for (std::size_t i = 0; i < format.size(); ++i) {
        const bool isField = format[i] == '%' && i + 1 < format.size() && next != values.end();
        if (isField) {
            text.append(*next++);
            ++i;
        } else {
            text.push_back(format[i]);
        }
    }
    return text;
}

OleString AsciiToOle(const std::string& ascii) {
    return OleString(ascii.begin(), ascii.end());
}

OleString Hexadecimal(HRESULT code) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string digits;
    auto value = static_cast<std::uint32_t>(code);
    do {
        digits.insert(digits.begin(), kDigits[value % 16]);
        value /= 16;
    } while (value != 0);
    return AsciiToOle(digits);
}

bool IsEmpty(BSTR text) {
    return text == nullptr || SysStringLen(text) == 0;
}

OleStringView ViewOf(BSTR text) {
    return OleStringView(text, SysStringLen(text));
}

// The system's text for a code, without its trailing line break; empty when it has none.
OleString SystemMessage(HRESULT code) {
    char message[kSystemMessageLength] = {};
    const DWORD length =
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
                       static_cast<DWORD>(code), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), message,
                       kSystemMessageLength, nullptr);
    if (length == 0) return {};
    const int wideLength =
        MultiByteToWideChar(CP_ACP, 0, message, static_cast<int>(length), nullptr, 0);
    OleString text(static_cast<std::size_t>(wideLength), OLECHAR{});
    MultiByteToWideChar(CP_ACP, 0, message, static_cast<int>(length), text.data(), wideLength);
    if (text.ends_with(OLESTR("\r\n"))) {
        text.resize(text.size() - 2);
    } else if (text.ends_with(OLESTR("\n"))) {
        text.pop_back();
    }
    return text;
}

OleString Description(const ErrorRecord& record, HRESULT code) {
    if (!IsEmpty(record.description)) return OleString(ViewOf(record.description));
    const OleStringView member(record.member);
    if (code == E_NOINTERFACE) return OLESTR("Object required");
    if (code == DISP_E_MEMBERNOTFOUND || code == DISP_E_UNKNOWNNAME) {
        return FillTemplate(OLESTR("Object doesn't support this property or method: '%s'"),
                            {member});
    }
    if (code == DISP_E_TYPEMISMATCH && !member.empty()) {
        const OleString index = AsciiToOle(std::to_string(static_cast<int>(record.argumentIndex)));
        return FillTemplate(OLESTR("Type mismatch: '%s'. Argument Index: %d"), {member, index});
    }
    OleString text = SystemMessage(code);
    return text.empty() ? OLESTR("Unknown runtime error") : text;
}

OleString MessageText(const ErrorRecord& record, BOOL fixedFont) {
    const HRESULT code = record.code == DISP_E_EXCEPTION && record.exceptionCode != 0
                             ? record.exceptionCode
                             : record.code;
    const OleString source = !IsEmpty(record.source) ? OleString(ViewOf(record.source))
                             : record.fromInvoke     ? OLESTR("IDispatch Interface")
                                                     : OLESTR("Application");
    const OleStringView format =
        fixedFont
            ? OLESTR(
                  "Member:   %s\r\nFunction: %s\r\nError In: %s\r\nError:    %s\r\n"
                  "Code:     %x\r\nSource:   %s")
            : OLESTR(
                  "Member:\t  %s\r\nFunction:\t  %s\t\t\r\nError In:\t  %s\r\nError:\t  %s\r\n"
                  "Code:\t  %x\r\nSource:\t  %s");
    return FillTemplate(format, {record.member, record.functionName, record.errorFunction,
                                 Description(record, code), Hexadecimal(code), source});
}

}  // namespace

HRESULT FormatError(const ErrorRecord* record, LPWSTR buffer, int size, BOOL fixedFont) {
    if (buffer == nullptr || size <= 0) return E_INVALIDARG;
    const OleString text = record == nullptr ? OleString(OLESTR("No error information available."))
                                             : MessageText(*record, fixedFont);
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size - 1));
    std::copy_n(text.data(), length, buffer);
    buffer[length] = 0;
    return S_OK;
}

HRESULT ShowError(const ErrorRecord* record) {
    WCHAR text[kShownTextLength];
    FormatError(record, text, kShownTextLength, FALSE);
    MessageBoxW(detail::layerOptions.ownerWindow, text, detail::layerOptions.title,
                MB_ICONERROR | MB_SETFOREGROUND);
    return S_OK;
}

}  // namespace automation

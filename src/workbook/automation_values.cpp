#include "workbook/automation_values.h"

#include <algorithm>
#include <cmath>
#include <ctime>

namespace automation {
namespace detail {
namespace {

constexpr double kUnixEpochSerial = 25569.0;  // 1 January 1970
constexpr double kSecondsPerDay = 86400.0;

// C time values count seconds since 1970 in UTC; they map to the date serial of that UTC time, so
// a value means the same on every machine.
double SerialFromTime(std::time_t time) {
    return kUnixEpochSerial + static_cast<double>(time) / kSecondsPerDay;
}

std::time_t TimeFromSerial(double serial) {
    return static_cast<std::time_t>(std::llround((serial - kUnixEpochSerial) * kSecondsPerDay));
}

bool SerialFromSystemTime(SYSTEMTIME time, double& serial) {
    return SystemTimeToVariantTime(&time, &serial) != FALSE;
}

bool SerialFromFileTime(const FILETIME& time, double& serial) {
    SYSTEMTIME parts{};
    return FileTimeToSystemTime(&time, &parts) != FALSE && SerialFromSystemTime(parts, serial);
}

HRESULT CopyWideText(LPCOLESTR text, VARIANTARG& value, bool& madeHere) {
    const BSTR copy = SysAllocString(text);
    if (text != nullptr && copy == nullptr) return E_OUTOFMEMORY;
    value.vt = VT_BSTR;
    value.bstrVal = copy;
    madeHere = true;
    return S_OK;
}

HRESULT CopyNarrowText(const char* text, VARIANTARG& value, bool& madeHere) {
    value.vt = VT_BSTR;
    value.bstrVal = nullptr;
    if (text == nullptr) return S_OK;
    const int length = MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    if (length == 0) return E_INVALIDARG;
    const BSTR copy = SysAllocStringLen(nullptr, static_cast<UINT>(length - 1));
    if (copy == nullptr) return E_OUTOFMEMORY;
    MultiByteToWideChar(CP_ACP, 0, text, -1, copy, length);
    value.bstrVal = copy;
    madeHere = true;
    return S_OK;
}

HRESULT DateArgument(double serial, VARIANTARG& value) {
    value.vt = VT_DATE;
    value.date = serial;
    return S_OK;
}

// One argument for the specifier `letter`, taken from `arguments`.
HRESULT PackArgument(OLECHAR letter, va_list* arguments, VARIANTARG& value, bool& madeHere) {
    double serial = 0.0;
    switch (letter) {
        case 'd':
            value.vt = VT_I4;
            value.lVal = va_arg(*arguments, int);
            return S_OK;
        case 'u':
            value.vt = VT_UI4;
            value.ulVal = va_arg(*arguments, unsigned int);
            return S_OK;
        case 'e':
            value.vt = VT_R8;
            value.dblVal = va_arg(*arguments, double);
            return S_OK;
        case 'b':
            value.vt = VT_BOOL;
            value.boolVal = va_arg(*arguments, int) != 0 ? VARIANT_TRUE : VARIANT_FALSE;
            return S_OK;
        case 'v': {
            const VARIANT* source = va_arg(*arguments, VARIANT*);
            if (source == nullptr) return E_INVALIDARG;
            value = *source;
            return S_OK;
        }
        case 'B':
            value.vt = VT_BSTR;
            value.bstrVal = va_arg(*arguments, BSTR);
            return S_OK;
        case 'S':
            return CopyWideText(va_arg(*arguments, LPCOLESTR), value, madeHere);
        case 's':
            return CopyNarrowText(va_arg(*arguments, const char*), value, madeHere);
        case 'T':
            return layerUnicodeMode
                       ? CopyWideText(va_arg(*arguments, LPCOLESTR), value, madeHere)
                       : CopyNarrowText(va_arg(*arguments, const char*), value, madeHere);
        case 'o':
            value.vt = VT_DISPATCH;
            value.pdispVal = va_arg(*arguments, IDispatch*);
            return S_OK;
        case 'O':
            value.vt = VT_UNKNOWN;
            value.punkVal = va_arg(*arguments, IUnknown*);
            return S_OK;
        case 'p':
            value.vt = VT_I8;
            value.llVal = va_arg(*arguments, INT_PTR);
            return S_OK;
        case 'D':
            return DateArgument(va_arg(*arguments, double), value);
        case 't':
            return DateArgument(SerialFromTime(va_arg(*arguments, std::time_t)), value);
        case 'W': {
            const SYSTEMTIME* time = va_arg(*arguments, SYSTEMTIME*);
            if (time == nullptr || !SerialFromSystemTime(*time, serial)) return E_INVALIDARG;
            return DateArgument(serial, value);
        }
        case 'f': {
            const FILETIME* time = va_arg(*arguments, FILETIME*);
            if (time == nullptr || !SerialFromFileTime(*time, serial)) return E_INVALIDARG;
            return DateArgument(serial, value);
        }
        case 'm':
            value.vt = VT_ERROR;
            value.scode = DISP_E_PARAMNOTFOUND;
            return S_OK;
        default:
            return E_INVALIDARG;
    }
}

char* NarrowText(BSTR text) {
    const int wideLength = static_cast<int>(SysStringLen(text));
    const int length = wideLength == 0 ? 0
                                       : WideCharToMultiByte(CP_ACP, 0, text, wideLength, nullptr,
                                                             0, nullptr, nullptr);
    char* narrow = new char[static_cast<std::size_t>(length) + 1];
    if (length > 0) {
        WideCharToMultiByte(CP_ACP, 0, text, wideLength, narrow, length, nullptr, nullptr);
    }
    narrow[length] = '\0';
    return narrow;
}

}  // namespace

HRESULT ConvertVariant(OwnedVariant& value, VARTYPE type) {
    if (type == VT_EMPTY || value->vt == type) return S_OK;
    OwnedVariant converted;
    const HRESULT hr = VariantChangeTypeEx(converted.get(), value.get(), LOCALE_INVARIANT,
                                           VARIANT_ALPHABOOL, type);
    if (FAILED(hr)) return hr;
    VariantClear(value.get());
    *value.get() = converted.Detach();
    return S_OK;
}

PackedArguments::~PackedArguments() {
    for (std::size_t i = 0; i < values_.size(); ++i) {
        if (madeHere_[i]) SysFreeString(values_[i].bstrVal);
    }
}

HRESULT PackedArguments::Pack(OleStringView member, OleStringView specifiers, va_list* arguments) {
    return Recorded(OLESTR("CreateArgumentArray"), [&](Failure& failure) -> HRESULT {
        failure.member = member;
        const auto total = std::count(specifiers.begin(), specifiers.end(), OLECHAR{'%'});
        if (total > kMaxArguments) return E_INVALIDARG;
        std::ptrdiff_t written = 0;
        for (std::size_t i = 0; i < specifiers.size(); ++i) {
            if (specifiers[i] != '%') continue;
            const OLECHAR letter = i + 1 < specifiers.size() ? specifiers[++i] : OLECHAR{};
            // Invoke reads its arguments last-first.
            const auto slot = static_cast<std::size_t>(total - 1 - written);
            const HRESULT hr = PackArgument(letter, arguments, values_[slot], madeHere_[slot]);
            if (FAILED(hr)) return hr;
            ++written;
        }
        count_ = static_cast<UINT>(total);
        return S_OK;
    });
}

HRESULT ResultTypeOf(LPCOLESTR resultSpec, OLECHAR& specifier, VARTYPE& type) {
    if (resultSpec[0] == '%') ++resultSpec;
    if (resultSpec[0] == 0 || resultSpec[1] != 0) return E_INVALIDARG;
    specifier = resultSpec[0];
    if (specifier == 'T') specifier = layerUnicodeMode ? 'S' : 's';
    switch (specifier) {
        case 'd':
            type = VT_I4;
            return S_OK;
        case 'u':
            type = VT_UI4;
            return S_OK;
        case 'e':
            type = VT_R8;
            return S_OK;
        case 'b':
            type = VT_BOOL;
            return S_OK;
        case 'D':
        case 'W':
        case 'f':
        case 't':
            type = VT_DATE;
            return S_OK;
        case 'B':
        case 'S':
        case 's':
            type = VT_BSTR;
            return S_OK;
        case 'o':
            type = VT_DISPATCH;
            return S_OK;
        case 'O':
            type = VT_UNKNOWN;
            return S_OK;
        case 'p':
            type = VT_I8;
            return S_OK;
        case 'v':
            type = VT_EMPTY;
            return S_OK;
        default:
            return E_INVALIDARG;
    }
}

HRESULT StoreResult(OLECHAR specifier, OwnedVariant& value, void* result) {
    SYSTEMTIME parts{};
    switch (specifier) {
        case 'd':
            *static_cast<LONG*>(result) = value->lVal;
            return S_OK;
        case 'u':
            *static_cast<ULONG*>(result) = value->ulVal;
            return S_OK;
        case 'e':
            *static_cast<double*>(result) = value->dblVal;
            return S_OK;
        case 'b':
            *static_cast<BOOL*>(result) = value->boolVal != VARIANT_FALSE;
            return S_OK;
        case 'D':
            *static_cast<double*>(result) = value->date;
            return S_OK;
        case 't':
            *static_cast<std::time_t*>(result) = TimeFromSerial(value->date);
            return S_OK;
        case 'W':
            if (!VariantTimeToSystemTime(value->date, &parts)) return E_INVALIDARG;
            *static_cast<SYSTEMTIME*>(result) = parts;
            return S_OK;
        case 'f': {
            FILETIME time{};
            if (!VariantTimeToSystemTime(value->date, &parts)) return E_INVALIDARG;
            if (!SystemTimeToFileTime(&parts, &time)) return E_INVALIDARG;
            *static_cast<FILETIME*>(result) = time;
            return S_OK;
        }
        case 'B':
        case 'S':
            *static_cast<BSTR*>(result) = value.Detach().bstrVal;
            return S_OK;
        case 's':
            *static_cast<char**>(result) = NarrowText(value->bstrVal);
            return S_OK;
        case 'o':
            *static_cast<IDispatch**>(result) = value.Detach().pdispVal;
            return S_OK;
        case 'O':
            *static_cast<IUnknown**>(result) = value.Detach().punkVal;
            return S_OK;
        case 'p':
            *static_cast<INT_PTR*>(result) = static_cast<INT_PTR>(value->llVal);
            return S_OK;
        default:  // 'v': the value as the member returned it
            *static_cast<VARIANT*>(result) = value.Detach();
            return S_OK;
    }
}

}  // namespace detail

HRESULT ConvertResult(VARIANT* value, VARTYPE type) {
    if (value == nullptr) return E_INVALIDARG;
    detail::OwnedVariant owned;
    *owned.get() = *value;
    VariantInit(value);
    const HRESULT hr = detail::ConvertVariant(owned, type);
    *value = owned.Detach();
    return hr;
}

void FreeAutomationText(char* text) {
    delete[] text;
}

}  // namespace automation

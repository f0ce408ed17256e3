// Variant conversion as the automation runtime does it for the invariant locale. Every LCID is
// read as the invariant one. Currency and decimal values are outside this subset.
#ifndef _WIN32

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

#include "com/date_text.h"
#include "com/number_text.h"
#include "com/variant_types.h"

namespace {

// Owns a variant for the length of a scope.
struct OwnedVariant {
    OwnedVariant() { VariantInit(&value); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;
    ~OwnedVariant() { VariantClear(&value); }
    VARIANT value;
};

struct IntegerType {
    std::int64_t min;
    std::uint64_t max;
    int bytes;
};

template <typename T>
constexpr IntegerType IntegerTypeFor() {
    return {std::numeric_limits<T>::min(), std::numeric_limits<T>::max(), sizeof(T)};
}

std::optional<IntegerType> IntegerTypeOf(VARTYPE type) {
    switch (type) {
        case VT_I1:
            return IntegerTypeFor<std::int8_t>();
        case VT_UI1:
            return IntegerTypeFor<std::uint8_t>();
        case VT_I2:
            return IntegerTypeFor<std::int16_t>();
        case VT_UI2:
            return IntegerTypeFor<std::uint16_t>();
        case VT_I4:
        case VT_INT:
            return IntegerTypeFor<std::int32_t>();
        case VT_UI4:
        case VT_UINT:
            return IntegerTypeFor<std::uint32_t>();
        case VT_I8:
            return IntegerTypeFor<std::int64_t>();
        case VT_UI8:
            return IntegerTypeFor<std::uint64_t>();
        default:
            return std::nullopt;
    }
}

bool Fits(WholeNumber number, IntegerType type) {
    if (!number.negative || number.magnitude == 0) return number.magnitude <= type.max;
    const std::uint64_t minMagnitude = 0 - static_cast<std::uint64_t>(type.min);
    return type.min < 0 && number.magnitude <= minMagnitude;
}

std::uint64_t UnsignedMax(int bytes) {
    return bytes == 8 ? std::numeric_limits<std::uint64_t>::max() : (1ull << (8 * bytes)) - 1;
}

WholeNumber FromSigned(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    return {value < 0, value < 0 ? 0 - bits : bits};
}

WholeNumber FromUnsigned(std::uint64_t value) {
    return {false, value};
}

// The integer held by an integer-typed variant, or nothing for other types.
std::optional<WholeNumber> IntegerValue(const VARIANT& value) {
    switch (value.vt) {
        case VT_EMPTY:
            return WholeNumber{};
        case VT_I1:
            return FromSigned(value.cVal);
        case VT_UI1:
            return FromUnsigned(value.bVal);
        case VT_I2:
            return FromSigned(value.iVal);
        case VT_UI2:
            return FromUnsigned(value.uiVal);
        case VT_I4:
            return FromSigned(value.lVal);
        case VT_INT:
            return FromSigned(value.intVal);
        case VT_UI4:
            return FromUnsigned(value.ulVal);
        case VT_UINT:
            return FromUnsigned(value.uintVal);
        case VT_I8:
            return FromSigned(value.llVal);
        case VT_UI8:
            return FromUnsigned(value.ullVal);
        case VT_BOOL:
            return FromSigned(value.boolVal);
        default:
            return std::nullopt;
    }
}

// The double held by a floating-point variant, or nothing for other types.
std::optional<double> RealValue(const VARIANT& value) {
    switch (value.vt) {
        case VT_R4:
            return value.fltVal;
        case VT_R8:
            return value.dblVal;
        case VT_DATE:
            return value.date;
        default:
            return std::nullopt;
    }
}

// The text of a string variant as far as its first NUL, as the runtime's parsers read it.
std::u16string_view TextOf(BSTR text) {
    if (text == nullptr) return {};
    const std::u16string_view whole(text, SysStringLen(text));
    return whole.substr(0, whole.find(u'\0'));
}

// A double rounded half to even.
HRESULT RoundToWhole(double value, WholeNumber& number) {
    const double rounded = std::nearbyint(value);
    constexpr double kLimit = 18446744073709551616.0;  // 2^64
    if (!(std::fabs(rounded) < kLimit)) return DISP_E_OVERFLOW;
    number = {rounded < 0, static_cast<std::uint64_t>(std::fabs(rounded))};
    return S_OK;
}

void StoreInteger(WholeNumber number, VARTYPE type, VARIANT& out) {
    const std::uint64_t bits = number.negative ? 0 - number.magnitude : number.magnitude;
    switch (type) {
        case VT_I1:
            out.cVal = static_cast<CHAR>(bits);
            break;
        case VT_UI1:
            out.bVal = static_cast<BYTE>(bits);
            break;
        case VT_I2:
            out.iVal = static_cast<SHORT>(bits);
            break;
        case VT_UI2:
            out.uiVal = static_cast<USHORT>(bits);
            break;
        case VT_I4:
            out.lVal = static_cast<LONG>(bits);
            break;
        case VT_INT:
            out.intVal = static_cast<INT>(bits);
            break;
        case VT_UI4:
            out.ulVal = static_cast<ULONG>(bits);
            break;
        case VT_UINT:
            out.uintVal = static_cast<UINT>(bits);
            break;
        case VT_I8:
            out.llVal = static_cast<LONGLONG>(bits);
            break;
        default:
            out.ullVal = bits;
            break;
    }
    out.vt = type;
}

// Reals beyond 2^62 do not convert to VT_I8, as the runtime has it.
constexpr double kI8RealLimit = 4611686018427387904.0;

HRESULT ToInteger(const VARIANT& source, VARTYPE type, IntegerType target, VARIANT& out) {
    WholeNumber number;
    // The runtime keeps the low bits instead of checking the range between integer types of one
    // width, from booleans, and for radix texts that fit the width unsigned.
    bool keepLowBits = false;
    if (const auto integer = IntegerValue(source)) {
        number = *integer;
        const auto sourceType = IntegerTypeOf(source.vt);
        keepLowBits = source.vt == VT_BOOL || (sourceType && sourceType->bytes == target.bytes);
    } else if (const auto real = RealValue(source)) {
        if (type == VT_I8 && (*real < -kI8RealLimit || *real >= kI8RealLimit))
            return DISP_E_OVERFLOW;
        if (const HRESULT hr = RoundToWhole(*real, number); FAILED(hr)) return hr;
    } else if (source.vt == VT_BSTR) {
        ParsedNumber parsed;
        HRESULT hr = ParseNumber(TextOf(source.bstrVal), parsed);
        if (SUCCEEDED(hr)) hr = NumberToWhole(parsed, number);
        if (FAILED(hr)) return hr;
        if (parsed.radixBits) {
            if (number.magnitude > UnsignedMax(target.bytes)) return DISP_E_OVERFLOW;
            keepLowBits = true;
        }
    } else {
        return DISP_E_TYPEMISMATCH;
    }
    if (!keepLowBits && !Fits(number, target)) return DISP_E_OVERFLOW;
    StoreInteger(number, type, out);
    return S_OK;
}

double ToDouble(WholeNumber number) {
    const auto magnitude = static_cast<double>(number.magnitude);
    return number.negative ? -magnitude : magnitude;
}

// VT_R4, VT_R8 and VT_DATE.
HRESULT ToReal(const VARIANT& source, VARTYPE type, VARIANT& out) {
    double value = 0;
    if (const auto integer = IntegerValue(source)) {
        value = ToDouble(*integer);
    } else if (const auto real = RealValue(source)) {
        value = *real;
    } else if (source.vt == VT_BSTR && type == VT_DATE) {
        if (const HRESULT hr = ParseDate(TextOf(source.bstrVal), value); FAILED(hr)) return hr;
    } else if (source.vt == VT_BSTR) {
        ParsedNumber parsed;
        HRESULT hr = ParseNumber(TextOf(source.bstrVal), parsed);
        if (SUCCEEDED(hr)) hr = NumberToDouble(parsed, value);
        if (FAILED(hr)) return hr;
    } else {
        return DISP_E_TYPEMISMATCH;
    }
    switch (type) {
        case VT_R4:
            if (std::fabs(value) > FLT_MAX) return DISP_E_OVERFLOW;
            out.fltVal = static_cast<float>(value);
            break;
        case VT_DATE:
            // The runtime checks the date range of every source but a single-precision one.
            if (source.vt != VT_R4 && !IsDateSerialInRange(value)) return DISP_E_OVERFLOW;
            out.date = value;
            break;
        default:
            out.dblVal = value;
            break;
    }
    out.vt = type;
    return S_OK;
}

HRESULT BoolFromText(std::u16string_view text, VARIANT_BOOL& value) {
    auto equalsIgnoringCase = [text](std::u16string_view word) {
        if (text.size() != word.size()) return false;
        for (std::size_t i = 0; i < text.size(); ++i) {
            const char16_t c = text[i] >= u'a' && text[i] <= u'z' ? text[i] - 32 : text[i];
            if (c != word[i]) return false;
        }
        return true;
    };
    if (equalsIgnoringCase(u"TRUE") || text == u"#TRUE#") {
        value = VARIANT_TRUE;
    } else if (equalsIgnoringCase(u"FALSE") || text == u"#FALSE#") {
        value = VARIANT_FALSE;
    } else {
        ParsedNumber parsed;
        double number = 0;
        HRESULT hr = ParseNumber(text, parsed);
        if (SUCCEEDED(hr)) hr = NumberToDouble(parsed, number);
        if (FAILED(hr)) return hr;
        value = number != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    }
    return S_OK;
}

HRESULT ToBool(const VARIANT& source, VARIANT& out) {
    VARIANT_BOOL value = VARIANT_FALSE;
    if (const auto integer = IntegerValue(source)) {
        value = integer->magnitude != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (const auto real = RealValue(source)) {
        value = *real != 0 ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (source.vt == VT_BSTR) {
        if (const HRESULT hr = BoolFromText(TextOf(source.bstrVal), value); FAILED(hr)) return hr;
    } else {
        return DISP_E_TYPEMISMATCH;
    }
    out.boolVal = value;
    out.vt = VT_BOOL;
    return S_OK;
}

HRESULT ToText(const VARIANT& source, USHORT flags, VARIANT& out) {
    std::u16string text;
    if (source.vt == VT_BOOL && (flags & (VARIANT_ALPHABOOL | VARIANT_LOCALBOOL))) {
        text = source.boolVal ? u"True" : u"False";
    } else if (source.vt == VT_R4) {
        text = FormatReal(source.fltVal, 7);
    } else if (source.vt == VT_R8) {
        text = FormatReal(source.dblVal, 15);
    } else if (source.vt == VT_DATE) {
        if (const HRESULT hr = FormatDate(source.date, text); FAILED(hr)) return hr;
    } else if (source.vt == VT_EMPTY) {
        text.clear();
    } else if (const auto integer = IntegerValue(source)) {
        text = FormatWhole(*integer);
    } else {
        return DISP_E_TYPEMISMATCH;
    }
    out.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
    if (out.bstrVal == nullptr) return E_OUTOFMEMORY;
    out.vt = VT_BSTR;
    return S_OK;
}

// VT_DISPATCH and VT_UNKNOWN: the other object type is asked for the interface.
HRESULT ToObject(const VARIANT& source, VARTYPE type, VARIANT& out) {
    if (source.vt != VT_DISPATCH && source.vt != VT_UNKNOWN) return DISP_E_TYPEMISMATCH;
    IUnknown* object = nullptr;
    if (source.punkVal != nullptr) {
        const IID& iid = type == VT_DISPATCH ? IID_IDispatch : IID_IUnknown;
        void* queried = nullptr;
        if (const HRESULT hr = source.punkVal->QueryInterface(iid, &queried); FAILED(hr)) return hr;
        object = static_cast<IUnknown*>(queried);
    }
    out.punkVal = object;
    out.vt = type;
    return S_OK;
}

// Converts a by-value source that is not an object needing its default value.
HRESULT Convert(VARIANT& source, VARTYPE type, USHORT flags, VARIANT& out) {
    if (source.vt == VT_CY || source.vt == VT_DECIMAL || type == VT_CY || type == VT_DECIMAL)
        return DISP_E_BADVARTYPE;
    if (source.vt == type) return VariantCopy(&out, &source);
    // An array converts to nothing but an array of its own type.
    if ((source.vt & VT_ARRAY) || (type & VT_ARRAY)) return DISP_E_TYPEMISMATCH;
    if (source.vt == VT_NULL) return DISP_E_TYPEMISMATCH;
    if (const auto integerType = IntegerTypeOf(type))
        return ToInteger(source, type, *integerType, out);
    switch (type) {
        case VT_EMPTY:
        case VT_NULL:
            if (source.vt == VT_ERROR) return DISP_E_TYPEMISMATCH;
            out.vt = type;
            return S_OK;
        case VT_R4:
        case VT_R8:
        case VT_DATE:
            return ToReal(source, type, out);
        case VT_BOOL:
            return ToBool(source, out);
        case VT_BSTR:
            return ToText(source, flags, out);
        case VT_ERROR:
            return DISP_E_TYPEMISMATCH;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return ToObject(source, type, out);
        default:
            return DISP_E_BADVARTYPE;
    }
}

// The value a by-reference variant points to, as a by-value variant that owns nothing.
HRESULT Dereference(const VARIANT& source, VARIANT& value) {
    if (!(source.vt & VT_BYREF)) {
        value = source;
        return S_OK;
    }
    if (source.byref == nullptr) return DISP_E_TYPEMISMATCH;
    const VARTYPE base = source.vt & ~VT_BYREF;
    switch (base) {
        case VT_VARIANT:
            return Dereference(*source.pvarVal, value);
        case VT_CY:
        case VT_DECIMAL:
            return DISP_E_BADVARTYPE;
        default:
            // Every other value starts at the front of the variant's value union.
            std::memcpy(&value.llVal, source.byref, ValueSize(base));
            break;
    }
    value.vt = base;
    return S_OK;
}

// An object converted to a plain type is read through its default member.
HRESULT ReadDefaultValue(IDispatch* object, LCID lcid, VARIANT& value) {
    if (object == nullptr) return DISP_E_BADVARTYPE;
    DISPPARAMS noArguments{nullptr, nullptr, 0, 0};
    const HRESULT hr = object->Invoke(DISPID_VALUE, IID_NULL, lcid, DISPATCH_PROPERTYGET,
                                      &noArguments, &value, nullptr, nullptr);
    if (FAILED(hr)) {
        VariantInit(&value);
        return DISP_E_TYPEMISMATCH;
    }
    return S_OK;
}

}  // namespace

HRESULT VariantChangeTypeEx(VARIANTARG* dest, VARIANTARG* source, LCID lcid, USHORT flags,
                            VARTYPE type) {
    if (dest == nullptr || source == nullptr) return E_INVALIDARG;
    if (!IsValidVariantType(source->vt) || !IsValidVariantType(type) || (type & VT_BYREF))
        return DISP_E_BADVARTYPE;
    VARIANT value;
    if (const HRESULT hr = Dereference(*source, value); FAILED(hr)) return hr;
    if (value.vt == VT_DISPATCH && type != VT_DISPATCH && type != VT_UNKNOWN) {
        if (flags & VARIANT_NOVALUEPROP) return DISP_E_TYPEMISMATCH;
        // Emptying a variant needs no value and an error code cannot be one. The default value
        // is converted without the caller's flags, as the runtime does.
        if (type != VT_EMPTY && type != VT_NULL && type != VT_ERROR) {
            OwnedVariant defaultValue;
            const HRESULT hr = ReadDefaultValue(value.pdispVal, lcid, defaultValue.value);
            if (FAILED(hr)) return hr;
            return VariantChangeTypeEx(dest, &defaultValue.value, lcid, 0, type);
        }
    }
    // Convert first and replace the destination only on success: it may be the source itself.
    OwnedVariant converted;
    if (const HRESULT hr = Convert(value, type, flags, converted.value); FAILED(hr)) return hr;
    if (const HRESULT hr = VariantClear(dest); FAILED(hr)) return hr;
    *dest = converted.value;
    converted.value.vt = VT_EMPTY;
    return S_OK;
}

HRESULT VariantChangeType(VARIANTARG* dest, VARIANTARG* source, USHORT flags, VARTYPE type) {
    return VariantChangeTypeEx(dest, source, LOCALE_USER_DEFAULT, flags, type);
}

#endif  // _WIN32

// Helpers for the tests of the COM subset: variants that clean up after themselves, a compact
// text form of a conversion result, and an object that counts its references.
#pragma once

#include <cstdio>
#include <string>

#include "com/com.h"
#include "com/text.h"

// A variant cleared at the end of the scope.
struct ScopedVariant {
    ScopedVariant() { VariantInit(&value); }
    ScopedVariant(const ScopedVariant&) = delete;
    ScopedVariant& operator=(const ScopedVariant&) = delete;
    ~ScopedVariant() { VariantClear(&value); }
    VARIANT value;
};

inline void SetText(ScopedVariant& variant, const char* utf8) {
    const WideString wide = Widen(utf8);
    VariantClear(&variant.value);
    variant.value.vt = VT_BSTR;
    variant.value.bstrVal = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

// The value of a variant as text: numbers in full precision, strings as they are.
inline std::string Describe(const VARIANT& value) {
    char buffer[64];
    switch (value.vt) {
        case VT_EMPTY:
            return "(empty)";
        case VT_NULL:
            return "(null)";
        case VT_I2:
            std::snprintf(buffer, sizeof buffer, "%d", value.iVal);
            break;
        case VT_I4:
            std::snprintf(buffer, sizeof buffer, "%ld", static_cast<long>(value.lVal));
            break;
        case VT_UI4:
            std::snprintf(buffer, sizeof buffer, "%lu", static_cast<unsigned long>(value.ulVal));
            break;
        case VT_I8:
            std::snprintf(buffer, sizeof buffer, "%lld", static_cast<long long>(value.llVal));
            break;
        case VT_UI1:
            std::snprintf(buffer, sizeof buffer, "%u", value.bVal);
            break;
        case VT_R8:
            std::snprintf(buffer, sizeof buffer, "%.17g", value.dblVal);
            break;
        case VT_DATE:
            std::snprintf(buffer, sizeof buffer, "%.17g", value.date);
            break;
        case VT_BOOL:
            std::snprintf(buffer, sizeof buffer, "%d", value.boolVal);
            break;
        case VT_BSTR:
            return NarrowBstr(value.bstrVal);
        default:
            std::snprintf(buffer, sizeof buffer, "(type %u)", value.vt);
            break;
    }
    return buffer;
}

inline std::string DescribeFailure(HRESULT hr) {
    switch (hr) {
        case DISP_E_TYPEMISMATCH:
            return "TYPEMISMATCH";
        case DISP_E_OVERFLOW:
            return "OVERFLOW";
        case DISP_E_BADVARTYPE:
            return "BADVARTYPE";
        case E_INVALIDARG:
            return "INVALIDARG";
        default:
            return "failed " + std::to_string(static_cast<unsigned long>(hr & 0xFFFFFFFFul));
    }
}

// Converts with the invariant locale and describes the result or the failure.
inline std::string Convert(VARIANT& source, VARTYPE type, USHORT flags = 0) {
    ScopedVariant result;
    const HRESULT hr = VariantChangeTypeEx(&result.value, &source, LOCALE_INVARIANT, flags, type);
    if (FAILED(hr)) return DescribeFailure(hr);
    if (result.value.vt != type) return "wrong type";
    return Describe(result.value);
}

inline std::string ConvertText(const char* text, VARTYPE type, USHORT flags = 0) {
    ScopedVariant source;
    SetText(source, text);
    return Convert(source.value, type, flags);
}

inline std::string ConvertDouble(double number, VARTYPE type, USHORT flags = 0) {
    ScopedVariant source;
    source.value.vt = VT_R8;
    source.value.dblVal = number;
    return Convert(source.value, type, flags);
}

// An automation object that counts its references and answers its default member with a value.
class CountingObject : public IDispatch {
  public:
    ULONG references = 1;
    int defaultValueReads = 0;
    ScopedVariant defaultValue;  // VT_EMPTY: the object has no default member

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        if (iid == IID_IUnknown || iid == IID_IDispatch) {
            *object = static_cast<IDispatch*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references; }
    ULONG STDMETHODCALLTYPE Release() override { return --references; }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID id, REFIID, LCID, WORD flags, DISPPARAMS* params,
                                     VARIANT* result, EXCEPINFO*, UINT*) override {
        if (id != DISPID_VALUE || !(flags & DISPATCH_PROPERTYGET) || params->cArgs != 0 ||
            defaultValue.value.vt == VT_EMPTY)
            return DISP_E_MEMBERNOTFOUND;
        ++defaultValueReads;
        return VariantCopy(result, &defaultValue.value);
    }
};

// Variant life cycle: a variant owns its string and holds one reference on its object; a by-
// reference variant owns nothing.
#ifndef _WIN32

#include "com/variant_types.h"

bool IsValidVariantType(VARTYPE type) {
    if (type & VT_ARRAY) {
        // Arrays of values: not of nothing, of nulls or of arrays.
        const VARTYPE element = type & ~(VT_ARRAY | VT_BYREF);
        return element > VT_NULL && IsValidVariantType(element);
    }
    const VARTYPE base = type & ~VT_BYREF;
    if (base > VT_UINT || base == 15) return false;
    // A reference to nothing or to a null is not a value.
    return !((type & VT_BYREF) && base <= VT_NULL);
}

void VariantInit(VARIANTARG* variant) {
    variant->vt = VT_EMPTY;
}

HRESULT VariantClear(VARIANTARG* variant) {
    if (!IsValidVariantType(variant->vt)) return DISP_E_BADVARTYPE;
    if ((variant->vt & (VT_ARRAY | VT_BYREF)) == VT_ARRAY) {
        if (const HRESULT hr = SafeArrayDestroy(variant->parray); FAILED(hr)) return hr;
        variant->vt = VT_EMPTY;
        return S_OK;
    }
    switch (variant->vt) {
        case VT_BSTR:
            SysFreeString(variant->bstrVal);
            break;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            if (variant->punkVal != nullptr) variant->punkVal->Release();
            break;
        default:
            break;
    }
    variant->vt = VT_EMPTY;
    return S_OK;
}

HRESULT VariantCopy(VARIANTARG* dest, VARIANTARG* source) {
    if (!IsValidVariantType(source->vt)) return DISP_E_BADVARTYPE;
    if (dest == source) return S_OK;
    if (const HRESULT cleared = VariantClear(dest); FAILED(cleared)) return cleared;
    *dest = *source;
    if ((source->vt & (VT_ARRAY | VT_BYREF)) == VT_ARRAY) {
        const HRESULT hr = SafeArrayCopy(source->parray, &dest->parray);
        if (FAILED(hr)) dest->vt = VT_EMPTY;
        return hr;
    }
    switch (source->vt) {
        case VT_BSTR:
            // A null string is copied as an empty one.
            dest->bstrVal = SysAllocStringLen(source->bstrVal, SysStringLen(source->bstrVal));
            if (dest->bstrVal == nullptr) {
                dest->vt = VT_EMPTY;
                return E_OUTOFMEMORY;
            }
            break;
        case VT_DISPATCH:
        case VT_UNKNOWN:
            if (source->punkVal != nullptr) source->punkVal->AddRef();
            break;
        default:
            break;
    }
    return S_OK;
}

#endif  // _WIN32

// Arrays of automation values, laid out as the system lays them out: a descriptor whose bounds are
// stored last dimension first, the element type just before it, and one block of elements in which
// the first index varies fastest. A host hands a block of cells over as such an array.
#ifndef _WIN32

#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>
#include <vector>

#include "com/com.h"
#include "com/variant_types.h"

namespace {

// Room in front of the descriptor; its last bytes hold the element type, as on the system.
constexpr std::size_t kPrefix = 16;

USHORT FeaturesOf(VARTYPE type) {
    switch (type) {
        case VT_BSTR:
            return FADF_HAVEVARTYPE | FADF_BSTR;
        case VT_DISPATCH:
            return FADF_HAVEVARTYPE | FADF_DISPATCH;
        case VT_UNKNOWN:
            return FADF_HAVEVARTYPE | FADF_UNKNOWN;
        case VT_VARIANT:
            return FADF_HAVEVARTYPE | FADF_VARIANT;
        default:
            return FADF_HAVEVARTYPE;
    }
}

std::byte* BlockOf(SAFEARRAY* array) {
    return reinterpret_cast<std::byte*>(array) - kPrefix;
}

VARTYPE StoredType(SAFEARRAY* array) {
    VARTYPE type;
    std::memcpy(&type, BlockOf(array) + kPrefix - sizeof(DWORD), sizeof type);
    return type;
}

// The number of elements, or nothing when it does not fit in memory.
bool CountElements(const SAFEARRAYBOUND* bounds, UINT dimensions, std::size_t elementSize,
                   std::size_t& count) {
    count = 1;
    for (UINT d = 0; d < dimensions; ++d) {
        const std::size_t size = bounds[d].cElements;
        if (size != 0 && count > std::numeric_limits<std::size_t>::max() / size) return false;
        count *= size;
    }
    return count <= std::numeric_limits<std::size_t>::max() / elementSize;
}

std::size_t ElementCount(const SAFEARRAY* array) {
    std::size_t count = 1;
    for (USHORT d = 0; d < array->cDims; ++d) count *= array->rgsabound[d].cElements;
    return count;
}

// The bound of dimension `dimension` (1 = first), which the descriptor keeps last-first.
const SAFEARRAYBOUND& BoundOf(const SAFEARRAY* array, UINT dimension) {
    return array->rgsabound[array->cDims - dimension];
}

// The position of an element in the block: the first index varies fastest.
HRESULT CellOffset(const SAFEARRAY* array, const LONG* indices, std::size_t& offset) {
    offset = 0;
    std::size_t stride = 1;
    for (UINT d = 1; d <= array->cDims; ++d) {
        const SAFEARRAYBOUND& bound = BoundOf(array, d);
        const LONG index = indices[d - 1];
        if (index < bound.lLbound || static_cast<ULONG>(index - bound.lLbound) >= bound.cElements) {
            return DISP_E_BADINDEX;
        }
        offset += static_cast<std::size_t>(index - bound.lLbound) * stride;
        stride *= bound.cElements;
    }
    return S_OK;
}

void ClearElements(SAFEARRAY* array) {
    const std::size_t count = ElementCount(array);
    if (array->fFeatures & FADF_VARIANT) {
        auto* items = static_cast<VARIANT*>(array->pvData);
        for (std::size_t k = 0; k < count; ++k) VariantClear(&items[k]);
    } else if (array->fFeatures & FADF_BSTR) {
        auto* items = static_cast<BSTR*>(array->pvData);
        for (std::size_t k = 0; k < count; ++k) SysFreeString(std::exchange(items[k], nullptr));
    } else if (array->fFeatures & (FADF_DISPATCH | FADF_UNKNOWN)) {
        auto* items = static_cast<IUnknown**>(array->pvData);
        for (std::size_t k = 0; k < count; ++k) {
            if (IUnknown* item = std::exchange(items[k], nullptr)) item->Release();
        }
    }
}

// Copies one element into storage that holds nothing of its own yet.
HRESULT CopyElementInto(const SAFEARRAY* array, const void* from, void* to) {
    if (array->fFeatures & FADF_VARIANT) {
        auto* target = static_cast<VARIANT*>(to);
        VariantInit(target);
        return VariantCopy(target, static_cast<VARIANT*>(const_cast<void*>(from)));
    }
    if (array->fFeatures & FADF_BSTR) {
        const BSTR text = *static_cast<const BSTR*>(from);
        BSTR copy = nullptr;
        if (text != nullptr) {
            copy = SysAllocStringLen(text, SysStringLen(text));
            if (copy == nullptr) return E_OUTOFMEMORY;
        }
        std::memcpy(to, &copy, sizeof copy);
        return S_OK;
    }
    if (array->fFeatures & (FADF_DISPATCH | FADF_UNKNOWN)) {
        IUnknown* object = *static_cast<IUnknown* const*>(from);
        if (object != nullptr) object->AddRef();
        std::memcpy(to, &object, sizeof object);
        return S_OK;
    }
    std::memcpy(to, from, array->cbElements);
    return S_OK;
}

// Releases what one element holds, leaving its storage to be overwritten.
void ReleaseElement(const SAFEARRAY* array, void* element) {
    if (array->fFeatures & FADF_VARIANT) {
        VariantClear(static_cast<VARIANT*>(element));
    } else if (array->fFeatures & FADF_BSTR) {
        SysFreeString(*static_cast<BSTR*>(element));
    } else if (array->fFeatures & (FADF_DISPATCH | FADF_UNKNOWN)) {
        if (IUnknown* object = *static_cast<IUnknown**>(element)) object->Release();
    }
}

}  // namespace

SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds) {
    const std::size_t elementSize = ValueSize(type);
    std::size_t count = 0;
    if (elementSize == 0 || dimensions == 0 || dimensions > 0xFFFF || bounds == nullptr ||
        !CountElements(bounds, dimensions, elementSize, count)) {
        return nullptr;
    }
    const std::size_t descriptor = sizeof(SAFEARRAY) + (dimensions - 1) * sizeof(SAFEARRAYBOUND);
    auto* block = static_cast<std::byte*>(std::calloc(1, kPrefix + descriptor));
    if (block == nullptr) return nullptr;
    auto* array = reinterpret_cast<SAFEARRAY*>(block + kPrefix);
    // Zero-filled elements are empty variants, null strings and null interfaces.
    array->pvData = std::calloc(count == 0 ? 1 : count, elementSize);
    if (array->pvData == nullptr) {
        std::free(block);
        return nullptr;
    }
    const DWORD storedType = type;
    std::memcpy(block + kPrefix - sizeof storedType, &storedType, sizeof storedType);
    array->cDims = static_cast<USHORT>(dimensions);
    array->fFeatures = FeaturesOf(type);
    array->cbElements = static_cast<ULONG>(elementSize);
    for (UINT d = 0; d < dimensions; ++d) array->rgsabound[d] = bounds[dimensions - 1 - d];
    return array;
}

HRESULT SafeArrayDestroy(SAFEARRAY* array) {
    if (array == nullptr) return S_OK;
    if (array->cLocks > 0) return DISP_E_ARRAYISLOCKED;
    ClearElements(array);
    std::free(array->pvData);
    std::free(BlockOf(array));
    return S_OK;
}

HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy) {
    if (copy == nullptr) return E_INVALIDARG;
    *copy = nullptr;
    if (source == nullptr) return S_OK;
    std::vector<SAFEARRAYBOUND> bounds(source->cDims);
    for (UINT d = 1; d <= source->cDims; ++d) bounds[d - 1] = BoundOf(source, d);
    SAFEARRAY* made = SafeArrayCreate(StoredType(source), source->cDims, bounds.data());
    if (made == nullptr) return E_OUTOFMEMORY;
    const std::size_t count = ElementCount(source);
    for (std::size_t k = 0; k < count; ++k) {
        const std::size_t at = k * source->cbElements;
        const HRESULT hr = CopyElementInto(source, static_cast<std::byte*>(source->pvData) + at,
                                           static_cast<std::byte*>(made->pvData) + at);
        if (FAILED(hr)) {
            SafeArrayDestroy(made);
            return hr;
        }
    }
    *copy = made;
    return S_OK;
}

UINT SafeArrayGetDim(SAFEARRAY* array) {
    return array == nullptr ? 0 : array->cDims;
}

UINT SafeArrayGetElemsize(SAFEARRAY* array) {
    return array == nullptr ? 0 : array->cbElements;
}

HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type) {
    if (array == nullptr || type == nullptr) return E_INVALIDARG;
    *type = StoredType(array);
    return S_OK;
}

HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (array == nullptr || bound == nullptr) return E_INVALIDARG;
    if (dimension < 1 || dimension > array->cDims) return DISP_E_BADINDEX;
    *bound = BoundOf(array, dimension).lLbound;
    return S_OK;
}

HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound) {
    if (array == nullptr || bound == nullptr) return E_INVALIDARG;
    if (dimension < 1 || dimension > array->cDims) return DISP_E_BADINDEX;
    const SAFEARRAYBOUND& of = BoundOf(array, dimension);
    *bound = of.lLbound + static_cast<LONG>(of.cElements) - 1;
    return S_OK;
}

HRESULT SafeArrayLock(SAFEARRAY* array) {
    if (array == nullptr) return E_INVALIDARG;
    ++array->cLocks;
    return S_OK;
}

HRESULT SafeArrayUnlock(SAFEARRAY* array) {
    if (array == nullptr) return E_INVALIDARG;
    if (array->cLocks == 0) return E_UNEXPECTED;
    --array->cLocks;
    return S_OK;
}

HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data) {
    if (array == nullptr || data == nullptr) return E_INVALIDARG;
    SafeArrayLock(array);
    *data = array->pvData;
    return S_OK;
}

HRESULT SafeArrayUnaccessData(SAFEARRAY* array) {
    return SafeArrayUnlock(array);
}

HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** element) {
    if (array == nullptr || indices == nullptr || element == nullptr) return E_INVALIDARG;
    std::size_t offset = 0;
    if (const HRESULT hr = CellOffset(array, indices, offset); FAILED(hr)) return hr;
    *element = static_cast<std::byte*>(array->pvData) + offset * array->cbElements;
    return S_OK;
}

HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value) {
    if (value == nullptr) return E_INVALIDARG;
    void* element = nullptr;
    if (const HRESULT hr = SafeArrayPtrOfIndex(array, indices, &element); FAILED(hr)) return hr;
    return CopyElementInto(array, element, value);
}

HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value) {
    void* element = nullptr;
    if (const HRESULT hr = SafeArrayPtrOfIndex(array, indices, &element); FAILED(hr)) return hr;
    if ((array->fFeatures & (FADF_VARIANT | FADF_BSTR | FADF_DISPATCH | FADF_UNKNOWN)) == 0) {
        if (value == nullptr) return E_INVALIDARG;
        std::memcpy(element, value, array->cbElements);
        return S_OK;
    }
    // A string or interface element is given by value: the pointer itself, which may be null.
    const void* from = (array->fFeatures & FADF_VARIANT) ? value : &value;
    if (from == nullptr) return E_INVALIDARG;
    // Copy first, so that putting an element's own value back cannot free it on the way.
    alignas(VARIANT) std::byte copy[sizeof(VARIANT)];
    if (const HRESULT hr = CopyElementInto(array, from, copy); FAILED(hr)) return hr;
    ReleaseElement(array, element);
    std::memcpy(element, copy, array->cbElements);
    return S_OK;
}

std::size_t ValueSize(VARTYPE type) {
    switch (type) {
        case VT_I1:
        case VT_UI1:
            return 1;
        case VT_I2:
        case VT_UI2:
        case VT_BOOL:
            return 2;
        case VT_I4:
        case VT_UI4:
        case VT_R4:
        case VT_ERROR:
        case VT_INT:
        case VT_UINT:
            return 4;
        case VT_R8:
        case VT_CY:
        case VT_DATE:
        case VT_I8:
        case VT_UI8:
            return 8;
        case VT_BSTR:
        case VT_DISPATCH:
        case VT_UNKNOWN:
            return sizeof(void*);
        case VT_VARIANT:
            return sizeof(VARIANT);
        case VT_DECIMAL:
            return sizeof(DECIMAL);
        default:
            return 0;
    }
}

#endif  // _WIN32

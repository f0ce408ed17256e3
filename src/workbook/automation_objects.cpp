// Objects that do not come from a member path: collections' enumerators, and objects created or
// found by program identifier, class identifier or path name.
#include "workbook/automation.h"
#include "workbook/automation_record.h"
#include "workbook/automation_values.h"

namespace automation {
namespace {

using detail::Failure;
using detail::OwnedVariant;
using detail::Recorded;

constexpr WORD kGetKinds = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

// "{...}" is a class identifier written out; anything else is a program identifier.
HRESULT ClassIdOf(LPCOLESTR name, CLSID& classId) {
    return name[0] == '{' ? CLSIDFromString(name, &classId) : CLSIDFromProgID(name, &classId);
}

// Asks `collection` for its enumerator (the member DISPID_NEWENUM).
HRESULT NewEnumerator(IDispatch* collection, IEnumVARIANT** enumerator, Failure& failure) {
    failure.member = OLESTR("_NewEnum");
    DISPPARAMS noArguments{};
    OwnedVariant result;
    const HRESULT hr = detail::InvokeDispatch(collection, DISPID_NEWENUM, kGetKinds, noArguments,
                                              result.get(), failure);
    if (FAILED(hr)) return hr;
    const bool isObject = result->vt == VT_DISPATCH || result->vt == VT_UNKNOWN;
    if (!isObject || result->punkVal == nullptr) return E_NOINTERFACE;
    return result->punkVal->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(enumerator));
}

}  // namespace

HRESULT EnumBeginV(IEnumVARIANT** enumerator, IDispatch* object, LPCOLESTR path,
                   va_list arguments) {
    return Recorded(OLESTR("EnumBeginV"), [&](Failure& failure) -> HRESULT {
        if (enumerator == nullptr || object == nullptr) return E_INVALIDARG;
        if (path == nullptr || path[0] == 0) return NewEnumerator(object, enumerator, failure);
        OwnedVariant collection;
        const HRESULT hr =
            InvokeV(kGetKinds, VT_DISPATCH, collection.get(), object, path, arguments);
        if (FAILED(hr)) return hr;
        if (collection->pdispVal == nullptr) return E_NOINTERFACE;
        return NewEnumerator(collection->pdispVal, enumerator, failure);
    });
}

HRESULT EnumBegin(IEnumVARIANT** enumerator, IDispatch* object, LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = EnumBeginV(enumerator, object, path, arguments);
    va_end(arguments);
    return hr;
}

HRESULT EnumNextObject(IEnumVARIANT* enumerator, IDispatch** object) {
    return Recorded(OLESTR("EnumNextObject"), [&](Failure&) -> HRESULT {
        if (enumerator == nullptr || object == nullptr) return E_INVALIDARG;
        OwnedVariant item;
        ULONG fetched = 0;
        HRESULT hr = enumerator->Next(1, item.get(), &fetched);
        if (hr != S_OK || fetched == 0) return FAILED(hr) ? hr : S_FALSE;
        hr = detail::ConvertVariant(item, VT_DISPATCH);
        if (FAILED(hr)) return hr;
        *object = item.Detach().pdispVal;
        return S_OK;
    });
}

HRESULT EnumNextVariant(IEnumVARIANT* enumerator, VARIANT* item) {
    return Recorded(OLESTR("EnumNextVariant"), [&](Failure&) -> HRESULT {
        if (enumerator == nullptr || item == nullptr) return E_INVALIDARG;
        VariantInit(item);
        ULONG fetched = 0;
        const HRESULT hr = enumerator->Next(1, item, &fetched);
        if (hr != S_OK || fetched == 0) return FAILED(hr) ? hr : S_FALSE;
        return S_OK;
    });
}

HRESULT CreateObjectEx(LPCOLESTR progId, REFIID riid, DWORD context, void** object) {
    return Recorded(OLESTR("CreateObjectEx"), [&](Failure& failure) -> HRESULT {
        if (progId == nullptr || object == nullptr) return E_INVALIDARG;
        failure.member = progId;
        CLSID classId{};
        const HRESULT hr = ClassIdOf(progId, classId);
        if (FAILED(hr)) return hr;
        return CoCreateInstance(classId, nullptr, context, riid, object);
    });
}

HRESULT CreateObject(LPCOLESTR progId, IDispatch** object) {
    return Recorded(OLESTR("CreateObject"), [&](Failure&) {
        return CreateObjectEx(progId, IID_IDispatch, CLSCTX_LOCAL_SERVER | CLSCTX_INPROC_SERVER,
                              reinterpret_cast<void**>(object));
    });
}

HRESULT GetObjectEx(LPCOLESTR pathName, LPCOLESTR progId, REFIID riid, void** object) {
    return Recorded(OLESTR("GetObjectEx"), [&](Failure& failure) -> HRESULT {
        if (object == nullptr || (pathName == nullptr && progId == nullptr)) return E_INVALIDARG;
        if (pathName != nullptr) {
            failure.member = pathName;
            return CoGetObject(pathName, nullptr, riid, object);
        }
        failure.member = progId;
        CLSID classId{};
        HRESULT hr = ClassIdOf(progId, classId);
        if (FAILED(hr)) return hr;
        IUnknown* running = nullptr;
        hr = GetActiveObject(classId, nullptr, &running);
        if (FAILED(hr)) return hr;
        const detail::InterfaceRef<IUnknown> runningRef(running);
        return running->QueryInterface(riid, object);
    });
}

HRESULT GetObject(LPCOLESTR pathName, LPCOLESTR progId, IDispatch** object) {
    return Recorded(OLESTR("GetObject"), [&](Failure&) {
        return GetObjectEx(pathName, progId, IID_IDispatch, reinterpret_cast<void**>(object));
    });
}

}  // namespace automation

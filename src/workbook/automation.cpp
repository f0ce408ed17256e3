// Member paths: walking the dotted components, invoking each by name, converting the result.
#include "workbook/automation.h"

#include <string>

#include "workbook/automation_record.h"
#include "workbook/automation_values.h"

namespace automation {
namespace {

using detail::Failure;
using detail::OleStringView;
using detail::OwnedVariant;
using detail::Recorded;

constexpr WORD kGetKinds = DISPATCH_METHOD | DISPATCH_PROPERTYGET;

// A component's member name ends at a blank, "(" or "="; its argument specifiers follow.
OleStringView MemberName(OleStringView component) {
    return component.substr(0, component.find_first_of(OLESTR(" (=")));
}

// One path component on `object`: the member is looked up by name and invoked with the
// arguments that the component's specifiers take from `arguments`.
HRESULT InvokeComponent(WORD invokeKind, VARTYPE resultType, VARIANT* result, IDispatch* object,
                        OleStringView component, va_list* arguments) {
    return Recorded(OLESTR("InternalInvokeV"), [&](Failure& failure) -> HRESULT {
        const OleStringView name = MemberName(component);
        failure.member = name;
        detail::PackedArguments packed;
        HRESULT hr = packed.Pack(name, component.substr(name.size()), arguments);
        if (FAILED(hr)) return hr;

        std::basic_string<OLECHAR> nameText(name);
        LPOLESTR names[] = {nameText.data()};
        DISPID member = DISPID_UNKNOWN;
        hr = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &member);
        if (FAILED(hr)) return hr;

        // A property put names its value argument, as Invoke requires.
        DISPID putValue = DISPID_PROPERTYPUT;
        const bool isPut = (invokeKind & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
        DISPPARAMS parameters{packed.values(), isPut ? &putValue : nullptr, packed.count(),
                              isPut ? 1u : 0u};
        OwnedVariant value;
        hr = detail::InvokeDispatch(object, member, invokeKind, parameters, value.get(), failure);
        if (FAILED(hr)) return hr;
        if (result == nullptr) return S_OK;
        hr = detail::ConvertVariant(value, resultType);
        if (FAILED(hr)) return hr;
        *result = value.Detach();
        return S_OK;
    });
}

// Fetches every component but the last as an object, then invokes the last one. Objects fetched
// on the way are released as soon as the next one is reached.
HRESULT WalkPath(WORD invokeKind, VARTYPE resultType, VARIANT* result, IDispatch* object,
                 OleStringView path, va_list* arguments, Failure& failure) {
    detail::InterfaceRef<IDispatch> fetched;
    IDispatch* current = object;
    for (auto dot = path.find('.'); dot != OleStringView::npos; dot = path.find('.')) {
        const OleStringView component = path.substr(0, dot);
        OwnedVariant next;
        const HRESULT hr =
            InvokeComponent(kGetKinds, VT_EMPTY, next.get(), current, component, arguments);
        if (FAILED(hr)) return hr;
        if (next->vt != VT_DISPATCH || next->pdispVal == nullptr) {
            failure.member = MemberName(component);
            return E_NOINTERFACE;  // "Object required"
        }
        fetched.reset(next.Detach().pdispVal);
        current = fetched.get();
        path.remove_prefix(dot + 1);
    }
    return InvokeComponent(invokeKind, resultType, result, current, path, arguments);
}

}  // namespace

HRESULT AutomationInit(BOOL initCom, BOOL unicode) {
    return Recorded(OLESTR("AutomationInit"), [&](Failure&) {
        detail::layerUnicodeMode = unicode;
        return initCom ? CoInitialize(nullptr) : S_OK;
    });
}

HRESULT AutomationShutdown(BOOL uninitCom) {
    detail::FreeThreadRecord();
    if (uninitCom) CoUninitialize();
    return S_OK;
}

HRESULT InvokeV(int invokeKind, VARTYPE resultType, VARIANT* result, IDispatch* object,
                LPCOLESTR path, va_list arguments) {
    return Recorded(OLESTR("InvokeV"), [&](Failure& failure) -> HRESULT {
        if (object == nullptr || path == nullptr) return E_INVALIDARG;
        OleStringView walk(path);
        failure.member = walk;
        if (walk.size() >= static_cast<std::size_t>(kMaxPathLength)) return E_INVALIDARG;
        if (walk.starts_with('.')) walk.remove_prefix(1);
        // The components take their values from one list, in the order they are written.
        va_list remaining;
        va_copy(remaining, arguments);
        const HRESULT hr = WalkPath(static_cast<WORD>(invokeKind), resultType, result, object, walk,
                                    &remaining, failure);
        va_end(remaining);
        return hr;
    });
}

HRESULT CallMethodV(IDispatch* object, LPCOLESTR path, va_list arguments) {
    return Recorded(OLESTR("CallMethodV"), [&](Failure&) {
        return InvokeV(DISPATCH_METHOD, VT_EMPTY, nullptr, object, path, arguments);
    });
}

HRESULT PutValueV(IDispatch* object, LPCOLESTR path, va_list arguments) {
    return Recorded(OLESTR("PutValueV"), [&](Failure&) {
        return InvokeV(DISPATCH_PROPERTYPUT, VT_EMPTY, nullptr, object, path, arguments);
    });
}

HRESULT PutRefV(IDispatch* object, LPCOLESTR path, va_list arguments) {
    return Recorded(OLESTR("PutRefV"), [&](Failure&) {
        return InvokeV(DISPATCH_PROPERTYPUTREF, VT_EMPTY, nullptr, object, path, arguments);
    });
}

HRESULT GetValueV(LPCOLESTR resultSpec, void* result, IDispatch* object, LPCOLESTR path,
                  va_list arguments) {
    return Recorded(OLESTR("GetValueV"), [&](Failure&) -> HRESULT {
        if (resultSpec == nullptr || result == nullptr) return E_INVALIDARG;
        OLECHAR specifier = 0;
        VARTYPE type = VT_EMPTY;
        HRESULT hr = detail::ResultTypeOf(resultSpec, specifier, type);
        if (FAILED(hr)) return hr;
        OwnedVariant value;
        hr = InvokeV(kGetKinds, type, value.get(), object, path, arguments);
        if (FAILED(hr)) return hr;
        return detail::StoreResult(specifier, value, result);
    });
}

HRESULT CallMethod(IDispatch* object, LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = CallMethodV(object, path, arguments);
    va_end(arguments);
    return hr;
}

HRESULT PutValue(IDispatch* object, LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = PutValueV(object, path, arguments);
    va_end(arguments);
    return hr;
}

HRESULT PutRef(IDispatch* object, LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = PutRefV(object, path, arguments);
    va_end(arguments);
    return hr;
}

HRESULT GetValue(LPCOLESTR resultSpec, void* result, IDispatch* object, LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = GetValueV(resultSpec, result, object, path, arguments);
    va_end(arguments);
    return hr;
}

HRESULT Invoke(int invokeKind, VARTYPE resultType, VARIANT* result, IDispatch* object,
               LPCOLESTR path, ...) {
    va_list arguments;
    va_start(arguments, path);
    const HRESULT hr = InvokeV(invokeKind, resultType, result, object, path, arguments);
    va_end(arguments);
    return hr;
}

}  // namespace automation

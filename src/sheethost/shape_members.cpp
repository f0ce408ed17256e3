// Helpers shared by the member handlers of the drawing side's objects.
#include <vector>

#include "com/text.h"
#include "sheethost/shape_objects.h"

namespace sheethost {

void ReturnItemOrCollection(Invocation& call, IDispatch* collection) {
    ComRef<IDispatch> owned = ComRef<IDispatch>::Adopt(collection);
    if (call.Count() == 0) return call.ReturnObject(owned.Detach());
    if (call.IsPut()) Refuse(DISP_E_MEMBERNOTFOUND);
    // The arguments go on to the collection's default member (Item), last first as Invoke wants.
    std::vector<VARIANT> arguments;
    for (std::size_t k = call.Count(); k > 0; --k) arguments.push_back(call.Argument(k - 1));
    DISPPARAMS params{arguments.data(), nullptr, static_cast<UINT>(arguments.size()), 0};
    VARIANT result;
    VariantInit(&result);
    EXCEPINFO exception{};
    UINT argError = 0;
    const HRESULT hr = owned->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT,
                                     DISPATCH_METHOD | DISPATCH_PROPERTYGET, &params, &result,
                                     &exception, &argError);
    // A missing item is passed on as it came, without unwinding: callers ask for shapes by name
    // to learn whether they exist.
    if (hr == DISP_E_EXCEPTION) {
        std::string description = NarrowBstr(exception.bstrDescription);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrHelpFile);
        return call.Decline(Raised(std::move(description), exception.scode));
    }
    if (FAILED(hr)) return call.Decline(Refused(hr));
    call.ReturnVariant(result);
}

void NumberProperty(Invocation& call, double& field) {
    call.ExpectCount(0, 0);
    if (call.IsPut()) {
        field = call.PutNumber();
    } else {
        call.ReturnNumber(field);
    }
}

void IntegerProperty(Invocation& call, int& field) {
    call.ExpectCount(0, 0);
    if (call.IsPut()) {
        field = call.PutInteger();
    } else {
        call.ReturnInteger(field);
    }
}

void ColorProperty(Invocation& call, std::int32_t& field) {
    call.ExpectCount(0, 0);
    if (call.IsPut()) {
        const double color = call.PutNumber();
        if (color < 0 || color > 0xFFFFFF) RaiseOutOfRange();
        field = static_cast<std::int32_t>(color);
    } else {
        call.ReturnInteger(field);
    }
}

void TriStateProperty(Invocation& call, bool& field) {
    call.ExpectCount(0, 0);
    if (call.IsPut()) {
        field = call.PutInteger() != 0;
    } else {
        call.ReturnInteger(field ? -1 : 0);
    }
}

void BooleanProperty(Invocation& call, bool& field) {
    call.ExpectCount(0, 0);
    if (call.IsPut()) {
        field = call.PutBoolean();
    } else {
        call.ReturnBoolean(field);
    }
}

void TextProperty(Invocation& call, std::string& field) {
    call.ExpectCount(0, 0);
    if (call.IsPut()) {
        field = call.PutText();
    } else {
        call.ReturnText(field);
    }
}

void ReadOnly(Invocation& call) {
    if (call.IsPut()) Refuse(DISP_E_MEMBERNOTFOUND);
}

Refusal OutOfRange() {
    return Raised("The specified value is out of range.");
}

Refusal BadIndex() {
    return Raised("The index into the specified collection is out of bounds.");
}

void RaiseOutOfRange() {
    throw OutOfRange();
}

void RaiseBadIndex() {
    throw BadIndex();
}

Refusal NotFound() {
    return Raised("The item with the specified name wasn't found.");
}

// A reference kept to a shape after it was deleted answers as a disconnected object does.
void RaiseDeleted() {
    Refuse(static_cast<HRESULT>(0x800401A8));
}

}  // namespace sheethost

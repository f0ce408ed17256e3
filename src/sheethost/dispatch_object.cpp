#include "sheethost/dispatch_object.h"

#include <algorithm>
#include <cstdio>
#include <new>

#include "com/text.h"
#include "values/values.h"

namespace sheethost {
namespace {

// Answered by QueryInterface of our own objects only, so that FromDispatch can recognise them.
const IID kHostObjectIid = {
    0x5a1e07c2, 0x3b4d, 0x4e8f, {0x9a, 0x61, 0x27, 0xc4, 0x0d, 0x8e, 0x55, 0x13}};
constexpr const char* kExceptionSource = "Vantora Sheet";

struct Diagnostics {
    // The live objects, newest first, linked through the objects themselves: a chart's redraw
    // makes and frees an object for every shape it visits, and a set needed a node and a hash for
    // each.
    CountedObject* newestLive = nullptr;
    long calls = 0;
    std::vector<std::string>* log = nullptr;
    // Invoke calls in progress: only the outermost one was sent from outside the host.
    int depth = 0;
    // After CloseHost, every call is one the spreadsheet program would take into freed memory.
    bool closed = false;
    long callsAfterClose = 0;
};

// Never destroyed: objects released during static destruction still find it.
Diagnostics& State() {
    static auto* state = new Diagnostics;
    return *state;
}

bool IsMissing(const VARIANT& value) {
    return value.vt == VT_ERROR && value.scode == DISP_E_PARAMNOTFOUND;
}

const VARIANT& Resolved(const VARIANT& value) {
    if (value.vt == (VT_BYREF | VT_VARIANT) && value.pvarVal != nullptr) return *value.pvarVal;
    return value;
}

BSTR NewBstr(std::string_view utf8) {
    const WideString wide = Widen(utf8);
    return SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
}

std::string DescribeVariant(const VARIANT& value) {
    if (value.vt & VT_ARRAY) return "Array";
    switch (value.vt) {
        case VT_EMPTY:
            return "Empty";
        case VT_NULL:
            return "Null";
        case VT_BSTR:
            return "\"" + NarrowBstr(value.bstrVal) + "\"";
        case VT_BOOL:
            return value.boolVal ? "True" : "False";
        case VT_DISPATCH:
        case VT_UNKNOWN: {
            const DispatchObject* object = DispatchObject::FromDispatch(value.punkVal);
            return object ? std::string(object->TypeName()) : "Object";
        }
        case VT_ERROR:
            if (IsMissing(value)) return "";
            break;
        default:
            break;
    }
    VARIANT number;
    VariantInit(&number);
    if (SUCCEEDED(ChangeVariantType(number, value, VT_R8))) {
        return values::NumberText(number.dblVal);
    }
    return "?";
}

class Enumerator final : public IEnumVARIANT, public CountedObject {
  public:
    Enumerator(std::string description, std::function<IDispatch*(std::size_t)> itemAt,
               std::size_t position)
        : description_(std::move(description)), itemAt_(std::move(itemAt)), position_(position) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (object == nullptr) return E_POINTER;
        if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IEnumVARIANT)) {
            *object = static_cast<IEnumVARIANT*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return AddReference(); }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = ReleaseReference();
        if (left == 0) delete this;
        return left;
    }

    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override {
        if (items == nullptr && count > 0) return E_POINTER;
        ULONG done = 0;
        for (; done < count; ++done) {
            IDispatch* item = itemAt_(position_);
            if (item == nullptr) break;
            ++position_;
            VariantInit(&items[done]);
            items[done].vt = VT_DISPATCH;
            items[done].pdispVal = item;
        }
        if (fetched != nullptr) *fetched = done;
        return done == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        for (ULONG k = 0; k < count; ++k) {
            IDispatch* item = itemAt_(position_);
            if (item == nullptr) return S_FALSE;
            item->Release();
            ++position_;
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        position_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) override {
        if (copy == nullptr) return E_POINTER;
        *copy = new Enumerator(description_, itemAt_, position_);
        return S_OK;
    }

    std::string Describe() const override { return "Enumerator of " + description_; }

  private:
    std::string description_;
    std::function<IDispatch*(std::size_t)> itemAt_;
    std::size_t position_;
};

}  // namespace

Refusal Raised(std::string description, HRESULT exceptionCode) {
    return Refusal{DISP_E_EXCEPTION, std::move(description), exceptionCode, 0};
}

void Raise(std::string description, HRESULT exceptionCode) {
    throw Raised(std::move(description), exceptionCode);
}

Refusal Refused(HRESULT code) {
    return Refusal{code, {}, kHostError, 0};
}

void Refuse(HRESULT code) {
    throw Refused(code);
}

void RaiseProperty(std::string_view verb, std::string_view member, std::string_view typeName) {
    Raise("Unable to " + std::string(verb) + " the " + std::string(member) + " property of the " +
          std::string(typeName) + " class");
}

void RaiseMethod(std::string_view member, std::string_view typeName) {
    Raise(std::string(member) + " method of " + std::string(typeName) + " class failed");
}

HRESULT ChangeVariantType(VARIANT& dest, const VARIANT& source, VARTYPE type) {
    return VariantChangeType(&dest, const_cast<VARIANT*>(&source), 0, type);
}

std::string LowerName(std::string_view name) {
    std::string lower(name);
    for (char& c : lower) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return lower;
}

// --- Invocation -----------------------------------------------------------------------------

Invocation::Invocation(WORD flags, const DISPPARAMS* params, VARIANT* result) : result_(result) {
    const UINT named = params->cNamedArgs;
    if ((flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0) put_ = &params->rgvarg[0];
    for (UINT k = params->cArgs; k > named; --k) arguments_.push_back(&params->rgvarg[k - 1]);
}

Invocation::~Invocation() {
    for (VARIANT& value : scratch_) VariantClear(&value);
}

void Invocation::Decline(Refusal refusal) {
    declined_ = std::move(refusal);
}

bool Invocation::Has(std::size_t index) const {
    return index < arguments_.size() && !IsMissing(Resolved(*arguments_[index]));
}

void Invocation::ExpectCount(std::size_t minimum, std::size_t maximum) const {
    if (arguments_.size() < minimum || arguments_.size() > maximum) Refuse(DISP_E_BADPARAMCOUNT);
}

const VARIANT& Invocation::Argument(std::size_t index) const {
    if (!Has(index)) throw Refusal{DISP_E_PARAMNOTFOUND, {}, kHostError, static_cast<int>(index)};
    return Resolved(*arguments_[index]);
}

const VARIANT& Invocation::Coerced(const VARIANT& value, VARTYPE type, int argument) const {
    VARIANT& converted = scratch_.emplace_back();
    VariantInit(&converted);
    if (FAILED(ChangeVariantType(converted, value, type))) {
        throw Refusal{DISP_E_TYPEMISMATCH, {}, kHostError, argument};
    }
    return converted;
}

double Invocation::Number(std::size_t index) const {
    return Coerced(Argument(index), VT_R8, static_cast<int>(index)).dblVal;
}

std::int32_t Invocation::Integer(std::size_t index) const {
    return Coerced(Argument(index), VT_I4, static_cast<int>(index)).lVal;
}

bool Invocation::Boolean(std::size_t index) const {
    return Coerced(Argument(index), VT_BOOL, static_cast<int>(index)).boolVal != VARIANT_FALSE;
}

std::string Invocation::Text(std::size_t index) const {
    return NarrowBstr(Coerced(Argument(index), VT_BSTR, static_cast<int>(index)).bstrVal);
}

IDispatch* Invocation::Object(std::size_t index) const {
    const VARIANT& value = Argument(index);
    if ((value.vt == VT_DISPATCH || value.vt == VT_UNKNOWN) && value.punkVal != nullptr) {
        IDispatch* object = nullptr;
        if (SUCCEEDED(
                value.punkVal->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&object)))) {
            object->Release();  // borrowed: the caller's variant keeps it alive
            return object;
        }
    }
    throw Refusal{DISP_E_TYPEMISMATCH, {}, kHostError, static_cast<int>(index)};
}

std::optional<double> Invocation::OptionalNumber(std::size_t index) const {
    return Has(index) ? std::optional(Number(index)) : std::nullopt;
}

std::optional<std::int32_t> Invocation::OptionalInteger(std::size_t index) const {
    return Has(index) ? std::optional(Integer(index)) : std::nullopt;
}

std::optional<std::string> Invocation::OptionalText(std::size_t index) const {
    return Has(index) ? std::optional(Text(index)) : std::nullopt;
}

const VARIANT& Invocation::PutValue() const {
    if (put_ == nullptr) Refuse(DISP_E_PARAMNOTFOUND);
    return Resolved(*put_);
}

double Invocation::PutNumber() const {
    return Coerced(PutValue(), VT_R8, -1).dblVal;
}

std::int32_t Invocation::PutInteger() const {
    return Coerced(PutValue(), VT_I4, -1).lVal;
}

bool Invocation::PutBoolean() const {
    return Coerced(PutValue(), VT_BOOL, -1).boolVal != VARIANT_FALSE;
}

std::string Invocation::PutText() const {
    return NarrowBstr(Coerced(PutValue(), VT_BSTR, -1).bstrVal);
}

void Invocation::SetResult(VARIANT& value) {
    if (IsPut()) {
        VariantClear(&value);
        Refuse(DISP_E_MEMBERNOTFOUND);
    }
    if (result_ == nullptr) {
        VariantClear(&value);
        return;
    }
    VariantClear(result_);
    *result_ = value;
    VariantInit(&value);
}

void Invocation::ReturnEmpty() {
    VARIANT value;
    VariantInit(&value);
    SetResult(value);
}

void Invocation::ReturnNull() {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_NULL;
    SetResult(value);
}

void Invocation::ReturnNumber(double number) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_R8;
    value.dblVal = number;
    SetResult(value);
}

void Invocation::ReturnInteger(std::int32_t number) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_I4;
    value.lVal = number;
    SetResult(value);
}

void Invocation::ReturnBoolean(bool flag) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BOOL;
    value.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
    SetResult(value);
}

void Invocation::ReturnText(std::string_view utf8) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_BSTR;
    value.bstrVal = NewBstr(utf8);
    SetResult(value);
}

void Invocation::ReturnDate(double serial) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_DATE;
    value.date = serial;
    SetResult(value);
}

void Invocation::ReturnError(SCODE code) {
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_ERROR;
    value.scode = code;
    SetResult(value);
}

void Invocation::ReturnObject(IDispatch* newReference) {
    ComRef<IDispatch> object = ComRef<IDispatch>::Adopt(newReference);
    if (!object) Raise("Object required", kHostError);
    if (!IsPut()) {
        VARIANT value;
        VariantInit(&value);
        value.vt = VT_DISPATCH;
        value.pdispVal = object.Detach();
        SetResult(value);
        return;
    }
    // Assigning to an object-valued member assigns its default member.
    VARIANT argument = PutValue();
    DISPID named = DISPID_PROPERTYPUT;
    DISPPARAMS params{&argument, &named, 1, 1};
    EXCEPINFO exception{};
    UINT argError = 0;
    const HRESULT hr =
        object->Invoke(DISPID_VALUE, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_PROPERTYPUT, &params,
                       nullptr, &exception, &argError);
    if (hr == DISP_E_EXCEPTION) {
        std::string description = NarrowBstr(exception.bstrDescription);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrHelpFile);
        Raise(std::move(description), exception.scode);
    }
    if (FAILED(hr)) Refuse(hr);
}

void Invocation::ReturnUnknown(IUnknown* newReference) {
    if (newReference == nullptr) Raise("Object required", kHostError);
    VARIANT value;
    VariantInit(&value);
    value.vt = VT_UNKNOWN;
    value.punkVal = newReference;
    SetResult(value);
}

void Invocation::ReturnVariant(VARIANT& value) {
    SetResult(value);
}

std::string Invocation::DescribeArguments() const {
    std::string text;
    if (!arguments_.empty()) {
        text = "(";
        for (std::size_t k = 0; k < arguments_.size(); ++k) {
            if (k > 0) text += ",";
            text += DescribeVariant(Resolved(*arguments_[k]));
        }
        text += ")";
    }
    if (put_ != nullptr) text += "=" + DescribeVariant(Resolved(*put_));
    return text;
}

// --- Diagnostics ----------------------------------------------------------------------------

long LiveObjectCount() {
    long count = 0;
    for (const CountedObject* object = State().newestLive; object != nullptr;
         object = object->older_) {
        ++count;
    }
    return count;
}

std::vector<std::string> LiveObjectReport() {
    std::vector<std::string> report;
    for (const CountedObject* object = State().newestLive; object != nullptr;
         object = object->older_) {
        report.push_back(object->Describe() + " (" + std::to_string(object->references_) +
                         " references)");
    }
    std::sort(report.begin(), report.end());
    return report;
}

long CallCount() {
    return State().calls;
}
void ResetCallCount() {
    State().calls = 0;
}
void SetMemberLog(std::vector<std::string>* log) {
    State().log = log;
}
void CloseHost() {
    State().closed = true;
}
long CallsAfterClose() {
    return State().callsAfterClose;
}

CountedObject::CountedObject() {
    Diagnostics& state = State();
    older_ = state.newestLive;
    if (older_ != nullptr) older_->newer_ = this;
    state.newestLive = this;
}
CountedObject::~CountedObject() {
    Diagnostics& state = State();
    if (newer_ != nullptr) {
        newer_->older_ = older_;
    } else {
        state.newestLive = older_;
    }
    if (older_ != nullptr) older_->newer_ = newer_;
}
ULONG CountedObject::AddReference() {
    if (State().closed) ++State().callsAfterClose;
    return ++references_;
}
ULONG CountedObject::ReleaseReference() {
    if (State().closed) ++State().callsAfterClose;
    return --references_;
}

// --- DispatchObject -------------------------------------------------------------------------

DispatchObject* DispatchObject::FromDispatch(IUnknown* object) {
    if (object == nullptr) return nullptr;
    void* found = nullptr;
    if (FAILED(object->QueryInterface(kHostObjectIid, &found))) return nullptr;
    return static_cast<DispatchObject*>(found);
}

HRESULT DispatchObject::QueryInterface(REFIID riid, void** object) {
    if (object == nullptr) return E_POINTER;
    if (IsEqualIID(riid, kHostObjectIid)) {
        *object = this;  // no reference: see FromDispatch
        return S_OK;
    }
    if (IsEqualIID(riid, IID_IUnknown) || IsEqualIID(riid, IID_IDispatch)) {
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    *object = nullptr;
    return E_NOINTERFACE;
}

ULONG DispatchObject::AddRef() {
    return AddReference();
}

ULONG DispatchObject::Release() {
    const ULONG left = ReleaseReference();
    if (left == 0) delete this;
    return left;
}

HRESULT DispatchObject::GetTypeInfoCount(UINT* count) {
    if (count == nullptr) return E_POINTER;
    *count = 0;
    return S_OK;
}

HRESULT DispatchObject::GetTypeInfo(UINT, LCID, ITypeInfo** info) {
    if (info != nullptr) *info = nullptr;
    return DISP_E_BADINDEX;
}

HRESULT DispatchObject::GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID,
                                      DISPID* dispIds) {
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (names == nullptr || dispIds == nullptr || count == 0) return E_INVALIDARG;
    // Only the member name is looked up; named arguments are not supported.
    for (UINT k = 1; k < count; ++k) dispIds[k] = DISPID_UNKNOWN;
    if (names[0] == nullptr) return E_INVALIDARG;
    const std::string name = Narrow(WideStringView(names[0]));  // a plain string, not a BSTR
    dispIds[0] = FindMember(LowerName(name));
    return dispIds[0] == DISPID_UNKNOWN || count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
}

HRESULT DispatchObject::Invoke(DISPID dispId, REFIID riid, LCID, WORD flags, DISPPARAMS* params,
                               VARIANT* result, EXCEPINFO* exception, UINT* argError) {
    Diagnostics& state = State();
    const bool outermost = state.depth == 0;
    if (outermost) ++state.calls;
    if (state.closed) ++state.callsAfterClose;
    if (!IsEqualIID(riid, IID_NULL)) return DISP_E_UNKNOWNINTERFACE;
    if (params == nullptr || (params->cArgs > 0 && params->rgvarg == nullptr)) {
        return E_INVALIDARG;
    }
    const bool put = (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) != 0;
    if (put) {
        if (params->cArgs == 0 || params->cNamedArgs != 1 || params->rgdispidNamedArgs == nullptr ||
            params->rgdispidNamedArgs[0] != DISPID_PROPERTYPUT) {
            return DISP_E_PARAMNOTFOUND;
        }
    } else if (params->cNamedArgs > 0) {
        return DISP_E_NONAMEDARGS;
    }
    if (result != nullptr) VariantInit(result);

    // Keeps this object alive while its handler runs, even if the handler drops the last
    // reference its model held.
    AddRef();
    HRESULT hr = S_OK;
    Invocation call(flags, params, result);
    ++state.depth;
    const auto answer = [&](const Refusal& refusal) {
        hr = refusal.code;
        if (hr == DISP_E_EXCEPTION && exception != nullptr) {
            *exception = EXCEPINFO{};
            exception->bstrSource = NewBstr(kExceptionSource);
            exception->bstrDescription = NewBstr(refusal.description);
            exception->scode = refusal.exceptionCode;
        }
        if (argError != nullptr && (hr == DISP_E_TYPEMISMATCH || hr == DISP_E_PARAMNOTFOUND)) {
            *argError =
                refusal.argument < 0 ? 0 : params->cArgs - 1 - static_cast<UINT>(refusal.argument);
        }
    };
    try {
        if (!InvokeMember(dispId, call)) {
            hr = DISP_E_MEMBERNOTFOUND;
        } else if (call.Declined()) {
            answer(*call.Declined());
        }
    } catch (const Refusal& refusal) {
        answer(refusal);
    } catch (const std::bad_alloc&) {
        hr = E_OUTOFMEMORY;
    } catch (...) {
        hr = E_UNEXPECTED;
    }
    --state.depth;
    if (FAILED(hr) && result != nullptr) VariantClear(result);

    if (outermost && state.log != nullptr) {
        std::string entry = std::string(TypeName()) + "." +
                            std::string(dispId == DISPID_VALUE ? "_Default" : MemberName(dispId)) +
                            call.DescribeArguments();
        if (FAILED(hr)) {
            char code[16];
            std::snprintf(code, sizeof code, " -> 0x%08X", static_cast<unsigned>(hr));
            entry += code;
        }
        state.log->push_back(std::move(entry));
    }
    Release();
    return hr;
}

IUnknown* NewEnumerator(std::string description, std::function<IDispatch*(std::size_t)> itemAt) {
    return static_cast<IEnumVARIANT*>(new Enumerator(std::move(description), std::move(itemAt), 0));
}

}  // namespace sheethost

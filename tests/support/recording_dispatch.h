// A recording IDispatch for tests. Every Invoke is recorded with its member name, invoke flags,
// locale and arguments (deep copies: strings are copied, objects are held until the calls are
// cleared); each member answers what the test set (a value, an object, a failure, an exception);
// and AddRef/Release are counted, so a test can prove that everything fetched was released.
// Answers do not hold the objects they name: a reference is taken only when one is handed out.
//
//     testsupport::RecordingDispatch sheet, range;
//     sheet.AnswerObject(OLESTR("Range"), &range);
//     ... code under test ...
//     EXPECT_EQ(sheet.calls()[0].member, OLESTR("Range"));
//     EXPECT_EQ(range.outstanding(), 0);
//
// The double lives where the test puts it: Release never deletes it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "com/com.h"

namespace testsupport {

using OleString = std::basic_string<OLECHAR>;
using OleStringView = std::basic_string_view<OLECHAR>;

// VariantCopy; the source is not changed, though some Windows headers declare it non-const.
inline void CopyVariant(VARIANT& target, const VARIANT& source) {
    VariantCopy(&target, const_cast<VARIANT*>(&source));
}

// A deep copy of a VARIANT that clears itself.
class HeldVariant {
  public:
    HeldVariant() { VariantInit(&value_); }
    explicit HeldVariant(const VARIANT& source) : HeldVariant() { CopyVariant(value_, source); }
    HeldVariant(const HeldVariant& other) : HeldVariant(other.value_) {}
    HeldVariant& operator=(const HeldVariant& other) {
        if (this != &other) CopyVariant(value_, other.value_);
        return *this;
    }
    ~HeldVariant() { VariantClear(&value_); }

    static HeldVariant Number(double number) {
        HeldVariant held;
        held.value_.vt = VT_R8;
        held.value_.dblVal = number;
        return held;
    }
    static HeldVariant Integer(LONG number) {
        HeldVariant held;
        held.value_.vt = VT_I4;
        held.value_.lVal = number;
        return held;
    }
    static HeldVariant Date(double serial) {
        HeldVariant held;
        held.value_.vt = VT_DATE;
        held.value_.date = serial;
        return held;
    }
    static HeldVariant Bool(bool flag) {
        HeldVariant held;
        held.value_.vt = VT_BOOL;
        held.value_.boolVal = flag ? VARIANT_TRUE : VARIANT_FALSE;
        return held;
    }
    static HeldVariant Text(OleStringView text) {
        HeldVariant held;
        held.value_.vt = VT_BSTR;
        held.value_.bstrVal = SysAllocStringLen(text.data(), static_cast<UINT>(text.size()));
        return held;
    }
    // Holds a reference of its own.
    static HeldVariant Object(IDispatch* object) {
        HeldVariant held;
        held.value_.vt = VT_DISPATCH;
        held.value_.pdispVal = object;
        if (object != nullptr) object->AddRef();
        return held;
    }

    const VARIANT& get() const { return value_; }
    const VARIANT* operator->() const { return &value_; }
    VARTYPE type() const { return value_.vt; }
    // The text of a VT_BSTR value (empty for any other type).
    OleString text() const {
        if (value_.vt != VT_BSTR || value_.bstrVal == nullptr) return {};
        return OleString(value_.bstrVal, SysStringLen(value_.bstrVal));
    }

  private:
    VARIANT value_;
};

// What a member answers instead of a value: an exception with these fields.
struct ExceptionReply {
    OleString description;
    OleString source;
    OleString helpFile;
    DWORD helpContext = 0;
    SCODE scode = 0;
    WORD wCode = 0;
    // When set, the fields are filled only when the caller runs pfnDeferredFillIn.
    bool deferred = false;
};

// An enumerator over copies of the given items; it deletes itself on its last Release.
class VariantEnumerator final : public IEnumVARIANT {
  public:
    explicit VariantEnumerator(std::vector<HeldVariant> items) : items_(std::move(items)) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IEnumVARIANT)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IEnumVARIANT*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return ++references_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --references_;
        if (left == 0) delete this;
        return left;
    }
    HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) override {
        ULONG given = 0;
        for (; given < count && next_ < items_.size(); ++given, ++next_) {
            VariantInit(&items[given]);
            CopyVariant(items[given], items_[next_].get());
        }
        if (fetched != nullptr) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Skip(ULONG count) override {
        next_ = std::min(items_.size(), next_ + count);
        return next_ < items_.size() ? S_OK : S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE Reset() override {
        next_ = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) override {
        *copy = nullptr;
        return E_NOTIMPL;
    }

  private:
    ~VariantEnumerator() = default;

    std::vector<HeldVariant> items_;
    std::size_t next_ = 0;
    ULONG references_ = 1;
};

class RecordingDispatch : public IDispatch {
  public:
    struct Call {
        OleString member;  // as the caller spelled it; "_NewEnum" for DISPID_NEWENUM
        WORD flags = 0;
        LCID locale = 0;
        std::vector<HeldVariant> arguments;  // as Invoke received them: the last written first
        std::vector<DISPID> namedArguments;

        // The argument at `position` in the order the caller wrote them.
        const HeldVariant& Argument(std::size_t position) const {
            return arguments[arguments.size() - 1 - position];
        }
    };

    RecordingDispatch() = default;
    RecordingDispatch(const RecordingDispatch&) = delete;
    RecordingDispatch& operator=(const RecordingDispatch&) = delete;
    virtual ~RecordingDispatch() = default;

    // Answers, by member name (matched without regard to case, as automation names are). A
    // member without an answer succeeds with an empty value.
    void Answer(OleStringView member, HeldVariant value) { ReplyFor(member).given = {value, {}}; }
    void AnswerNumber(OleStringView member, double number) {
        Answer(member, HeldVariant::Number(number));
    }
    void AnswerText(OleStringView member, OleStringView text) {
        Answer(member, HeldVariant::Text(text));
    }
    void AnswerBool(OleStringView member, bool flag) { Answer(member, HeldVariant::Bool(flag)); }
    void AnswerObject(OleStringView member, IDispatch* object) {
        ReplyFor(member).given = {HeldVariant(), object};
    }
    // Invoke fails with `code`, reporting `argumentError` as the argument in error.
    void Fail(OleStringView member, HRESULT code, UINT argumentError = 0) {
        Reply& reply = ReplyFor(member);
        reply.code = code;
        reply.argumentError = argumentError;
    }
    // Invoke fails with DISP_E_EXCEPTION and this exception.
    void Throw(OleStringView member, ExceptionReply exception) {
        ReplyFor(member).exception = std::move(exception);
    }
    // GetIDsOfNames does not know the member.
    void RejectName(OleStringView member) { ReplyFor(member).nameUnknown = true; }
    // The collection's enumerator (DISPID_NEWENUM) yields these values, or these objects.
    void AnswerItems(const std::vector<HeldVariant>& values) {
        std::vector<Given> items;
        for (const HeldVariant& value : values) items.push_back({value, {}});
        ReplyFor(kNewEnum).items = std::move(items);
    }
    void AnswerObjects(const std::vector<IDispatch*>& objects) {
        std::vector<Given> items;
        for (IDispatch* object : objects) items.push_back({HeldVariant(), object});
        ReplyFor(kNewEnum).items = std::move(items);
    }

    const std::vector<Call>& calls() const { return calls_; }
    const Call& lastCall() const { return calls_.back(); }
    void ClearCalls() { calls_.clear(); }

    long addRefs() const { return addRefs_; }
    long releases() const { return releases_; }
    // References taken by AddRef and not given back: 0 when every fetched reference was released,
    // negative when something released a reference it never had.
    long outstanding() const { return addRefs_ - releases_; }

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override {
        if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IDispatch)) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        *object = static_cast<IDispatch*>(this);
        AddRef();
        return S_OK;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(1 + ++addRefs_); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(1 - ++releases_); }

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo** info) override {
        *info = nullptr;
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID,
                                            DISPID* dispIds) override {
        HRESULT result = S_OK;
        for (UINT i = 0; i < count; ++i) {
            const OleString name(names[i]);
            const auto reply = replies_.find(Folded(name));
            if (reply != replies_.end() && reply->second.nameUnknown) {
                dispIds[i] = DISPID_UNKNOWN;
                result = DISP_E_UNKNOWNNAME;
                continue;
            }
            dispIds[i] = IdOf(name);
        }
        return result;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID dispId, REFIID, LCID locale, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argumentError) override {
        const OleString member = dispId == DISPID_NEWENUM ? OleString(kNewEnum) : NameOf(dispId);
        if (member.empty()) return DISP_E_MEMBERNOTFOUND;
        Record(member, flags, locale, *parameters);
        const auto found = replies_.find(Folded(member));
        if (found == replies_.end()) return S_OK;
        Reply& reply = found->second;
        if (reply.exception) return RaiseException(*reply.exception, exception);
        if (FAILED(reply.code)) {
            if (argumentError != nullptr) *argumentError = reply.argumentError;
            return reply.code;
        }
        if (result == nullptr) return S_OK;
        if (reply.items) {
            std::vector<HeldVariant> items;
            for (const Given& item : *reply.items) items.push_back(item.Handed());
            result->vt = VT_UNKNOWN;
            result->punkVal = new VariantEnumerator(std::move(items));
        } else {
            CopyVariant(*result, reply.given.Handed().get());
        }
        return S_OK;
    }

  private:
    static constexpr OleStringView kNewEnum = OLESTR("_NewEnum");

    // A value to hand out, or an object that is referenced only when it is handed out.
    struct Given {
        HeldVariant value;
        std::optional<IDispatch*> object;
        HeldVariant Handed() const { return object ? HeldVariant::Object(*object) : value; }
    };

    struct Reply {
        HRESULT code = S_OK;
        Given given;
        UINT argumentError = 0;
        std::optional<ExceptionReply> exception;
        std::optional<std::vector<Given>> items;
        bool nameUnknown = false;
    };

    static OleString Folded(OleStringView name) {
        OleString folded(name);
        for (OLECHAR& c : folded) {
            if (c >= 'a' && c <= 'z') c = static_cast<OLECHAR>(c - 'a' + 'A');
        }
        return folded;
    }

    static void WriteException(const ExceptionReply& reply, EXCEPINFO& info) {
        info.bstrDescription = SysAllocString(reply.description.c_str());
        info.bstrSource = SysAllocString(reply.source.c_str());
        info.bstrHelpFile = SysAllocString(reply.helpFile.c_str());
        info.dwHelpContext = reply.helpContext;
        info.scode = reply.scode;
        info.wCode = reply.wCode;
    }

    // The deferred fill-in finds its reply through pvReserved, which this double sets.
    static HRESULT STDMETHODCALLTYPE FillInException(EXCEPINFO* info) {
        const auto* reply = static_cast<const ExceptionReply*>(info->pvReserved);
        info->pvReserved = nullptr;
        info->pfnDeferredFillIn = nullptr;
        WriteException(*reply, *info);
        return S_OK;
    }

    static HRESULT RaiseException(const ExceptionReply& reply, EXCEPINFO* info) {
        if (info == nullptr) return DISP_E_EXCEPTION;
        if (reply.deferred) {
            info->pvReserved = const_cast<ExceptionReply*>(&reply);
            info->pfnDeferredFillIn = &FillInException;
        } else {
            WriteException(reply, *info);
        }
        return DISP_E_EXCEPTION;
    }

    Reply& ReplyFor(OleStringView member) { return replies_[Folded(member)]; }

    // Every spelling of a name gets its own identifier, so the calls show the caller's spelling.
    DISPID IdOf(const OleString& name) {
        for (std::size_t i = 0; i < names_.size(); ++i) {
            if (names_[i] == name) return static_cast<DISPID>(i + 1);
        }
        names_.push_back(name);
        return static_cast<DISPID>(names_.size());
    }

    OleString NameOf(DISPID dispId) const {
        if (dispId < 1 || static_cast<std::size_t>(dispId) > names_.size()) return {};
        return names_[static_cast<std::size_t>(dispId - 1)];
    }

    void Record(const OleString& member, WORD flags, LCID locale, const DISPPARAMS& parameters) {
        Call call{member, flags, locale, {}, {}};
        for (UINT i = 0; i < parameters.cArgs; ++i) {
            call.arguments.emplace_back(parameters.rgvarg[i]);
        }
        for (UINT i = 0; i < parameters.cNamedArgs; ++i) {
            call.namedArguments.push_back(parameters.rgdispidNamedArgs[i]);
        }
        calls_.push_back(std::move(call));
    }

    std::map<OleString, Reply> replies_;
    std::vector<OleString> names_;
    std::vector<Call> calls_;
    long addRefs_ = 0;
    long releases_ = 0;
};

}  // namespace testsupport

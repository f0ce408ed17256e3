// The automation base of every object of the in-memory spreadsheet host.
//
// A host object derives from DispatchObjectOf<Self> and lists its members once, in a static table
// of name -> handler (names are matched without regard to case, as the real spreadsheet does):
//
//     class Font final : public DispatchObjectOf<Font> {
//     public:
//         static const MemberTable<Font>& Members();   // {{"Name", &Font::Name}, ...}
//         ...
//     };
//
// A handler receives the Invocation: the arguments in their natural order (first argument = 0),
// coerced on request with VariantChangeType as the real host coerces them, and the result slot.
// A handler that cannot do what it was asked calls Raise or Refuse; the refusal unwinds to
// Invoke, which answers it as an HRESULT (with EXCEPINFO for DISP_E_EXCEPTION). Nothing leaves
// Invoke as a C++ exception. Where a refusal is an everyday answer (a lookup by a name that is
// not there, which callers use to ask whether it is), the handler returns it with
// Invocation::Decline instead, which costs no unwinding.
//
// Factories of the concrete objects are declared in "sheethost/objects.h".
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "com/com.h"

namespace sheethost {

// The code the real host gives to its run-time refusals (error 1004).
inline constexpr HRESULT kHostError = static_cast<HRESULT>(0x800A03EC);
// The code of "Subscript out of range" (error 9), e.g. a missing worksheet.
inline constexpr HRESULT kSubscriptOutOfRange = static_cast<HRESULT>(0x800A0009);

// What a handler throws to refuse a call. Caught by DispatchObject::Invoke.
struct Refusal {
    HRESULT code = DISP_E_EXCEPTION;
    // For DISP_E_EXCEPTION: the text and code reported in EXCEPINFO.
    std::string description;
    HRESULT exceptionCode = kHostError;
    // For DISP_E_TYPEMISMATCH and DISP_E_PARAMNOTFOUND: the argument's natural index (0 = first),
    // or -1 for the value of a property put.
    int argument = 0;
};

// Refuses with DISP_E_EXCEPTION and the given description, as the host does for a run-time error
// ("Unable to get the Cells property of the Worksheet class").
[[noreturn]] void Raise(std::string description, HRESULT exceptionCode = kHostError);
// The refusal Raise throws.
Refusal Raised(std::string description, HRESULT exceptionCode = kHostError);
// Refuses with a plain HRESULT (DISP_E_BADPARAMCOUNT, DISP_E_MEMBERNOTFOUND, ...).
[[noreturn]] void Refuse(HRESULT code);
// The refusal Refuse throws.
Refusal Refused(HRESULT code);
// The host's messages for a refused property or method ("Unable to set the Hidden property of the
// Range class", "Select method of Range class failed").
[[noreturn]] void RaiseProperty(std::string_view verb, std::string_view member,
                                std::string_view typeName);
[[noreturn]] void RaiseMethod(std::string_view member, std::string_view typeName);

// One call of IDispatch::Invoke as a handler sees it.
class Invocation {
  public:
    Invocation(WORD flags, const DISPPARAMS* params, VARIANT* result);
    ~Invocation();
    Invocation(const Invocation&) = delete;
    Invocation& operator=(const Invocation&) = delete;

    // A property put (or put by reference). Everything else is a get or a method call, which the
    // host does not tell apart.
    bool IsPut() const { return put_ != nullptr; }

    // Positional arguments, not counting the value of a put.
    std::size_t Count() const { return arguments_.size(); }
    // The argument is given and not an omitted optional one.
    bool Has(std::size_t index) const;
    // Refuses with DISP_E_BADPARAMCOUNT unless minimum <= Count() <= maximum.
    void ExpectCount(std::size_t minimum, std::size_t maximum) const;
    // The argument as passed (by-reference variants resolved); refuses with DISP_E_PARAMNOTFOUND
    // when it is missing.
    const VARIANT& Argument(std::size_t index) const;

    // Coerced arguments; a missing argument refuses with DISP_E_PARAMNOTFOUND and one that does
    // not convert with DISP_E_TYPEMISMATCH. Integer() rounds as the runtime does (half to even).
    double Number(std::size_t index) const;
    std::int32_t Integer(std::size_t index) const;
    bool Boolean(std::size_t index) const;
    std::string Text(std::size_t index) const;  // UTF-8
    // The argument as an object (borrowed, not AddRef'ed); refuses with DISP_E_TYPEMISMATCH when
    // it is not one.
    IDispatch* Object(std::size_t index) const;

    std::optional<double> OptionalNumber(std::size_t index) const;
    std::optional<std::int32_t> OptionalInteger(std::size_t index) const;
    std::optional<std::string> OptionalText(std::size_t index) const;

    // The value of a property put, raw and coerced.
    const VARIANT& PutValue() const;
    double PutNumber() const;
    std::int32_t PutInteger() const;
    bool PutBoolean() const;
    std::string PutText() const;

    // Results. On a put, a scalar result means the member is read-only: it refuses with
    // DISP_E_MEMBERNOTFOUND. On a put, ReturnObject does what the real host does with
    // `sheet.Cells(1, 2) = x`: the value is put into the returned object's default member.
    void ReturnEmpty();
    void ReturnNull();  // mixed values of a multi-cell range
    void ReturnNumber(double value);
    void ReturnInteger(std::int32_t value);
    void ReturnBoolean(bool value);
    void ReturnText(std::string_view utf8);
    void ReturnDate(double serial);
    void ReturnError(SCODE code);
    // Takes over a new reference (null refuses with kHostError, as a missing object does).
    void ReturnObject(IDispatch* newReference);
    void ReturnUnknown(IUnknown* newReference);
    // Takes over the variant (it is left empty).
    void ReturnVariant(VARIANT& value);

    // Answers the call with `refusal` once the handler returns, as if it had been thrown.
    void Decline(Refusal refusal);
    const std::optional<Refusal>& Declined() const { return declined_; }

    // The member log's text of the arguments: "(3,2)" and, for a put, "=value".
    std::string DescribeArguments() const;

  private:
    const VARIANT& Coerced(const VARIANT& value, VARTYPE type, int argument) const;
    void SetResult(VARIANT& value);

    std::vector<const VARIANT*> arguments_;  // natural order
    const VARIANT* put_ = nullptr;
    VARIANT* result_;
    // Keeps the coerced copies alive (at stable addresses) while the handler runs.
    mutable std::deque<VARIANT> scratch_;
    std::optional<Refusal> declined_;
};

// Diagnostics over all host objects of the process (the host is used from one thread at a time,
// like the spreadsheet's own objects).
long LiveObjectCount();
// One line per live object, sorted: what it stands for and its reference count.
std::vector<std::string> LiveObjectReport();
// IDispatch::Invoke calls received since the last reset.
long CallCount();
void ResetCallCount();
// While a log is set, every Invoke appends "Type.Member(args)" or "Type.Member(args)=value"
// (a refused call ends with " -> 0x80020009" and the like). Null stops logging; the log must
// outlive the calls made while it is set.
void SetMemberLog(std::vector<std::string>* log);
// Plays the spreadsheet program closing the workbook: from now on every AddRef, Release or Invoke
// on a host object is counted as a call the program would take into freed memory. Nothing reopens.
void CloseHost();
long CallsAfterClose();

// Reference counting and live-object accounting shared by dispatch objects and enumerators.
class CountedObject {
  public:
    CountedObject(const CountedObject&) = delete;
    CountedObject& operator=(const CountedObject&) = delete;

  protected:
    CountedObject();
    virtual ~CountedObject();
    ULONG AddReference();
    ULONG ReleaseReference();
    ULONG References() const { return references_; }

  public:
    // The live-object report's name of the object ("Range Sheet1!$A$1").
    virtual std::string Describe() const = 0;

  private:
    ULONG references_ = 1;
    // Neighbours in the list of live objects.
    CountedObject* older_ = nullptr;
    CountedObject* newer_ = nullptr;
    friend long LiveObjectCount();
    friend std::vector<std::string> LiveObjectReport();
};

// The IDispatch implementation. A new object starts with one reference, owned by its creator.
class DispatchObject : public IDispatch, public CountedObject {
  public:
    // The host object behind an interface pointer, or null when it is not one of ours (asked
    // through QueryInterface, so a foreign object is never misread). No reference is added.
    static DispatchObject* FromDispatch(IUnknown* object);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count, LCID lcid,
                                            DISPID* dispIds) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID dispId, REFIID riid, LCID lcid, WORD flags,
                                     DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception,
                                     UINT* argError) override;

    // The class name the real host reports in its messages ("Range", "Worksheet").
    virtual std::string_view TypeName() const = 0;
    std::string Describe() const override { return std::string(TypeName()); }

  protected:
    DispatchObject() = default;

    // DISPID_UNKNOWN when the object has no such member; the name is already lower case.
    virtual DISPID FindMember(std::string_view lowerName) const = 0;
    // The member's name for the log; empty for an unknown identifier.
    virtual std::string_view MemberName(DISPID id) const = 0;
    // False when the object has no member with this identifier.
    virtual bool InvokeMember(DISPID id, Invocation& call) = 0;
};

// VariantChangeType for a source the caller may not change: the runtime only reads it, but its
// declaration takes a non-const pointer.
HRESULT ChangeVariantType(VARIANT& dest, const VARIANT& source, VARTYPE type);

// ASCII letters to lower case: member names are matched without regard to case.
std::string LowerName(std::string_view name);

// The members of a class: names (any case) and their handlers. Member k gets DISPID k + 1; the
// member named "_NewEnum" answers DISPID_NEWENUM, and the default member (named at construction,
// e.g. "Value" or "Item") also answers DISPID_VALUE.
template <class T>
class MemberTable {
  public:
    using Handler = void (*)(T& self, Invocation& call);
    struct Entry {
        std::string_view name;
        Handler handler;
    };

    MemberTable(std::initializer_list<Entry> entries, std::string_view defaultMember = {})
        : entries_(entries) {
        for (std::size_t k = 0; k < entries_.size(); ++k) {
            lowerNames_.push_back(LowerName(entries_[k].name));
            if (!defaultMember.empty() && LowerName(defaultMember) == lowerNames_.back()) {
                default_ = static_cast<DISPID>(k + 1);
            }
        }
    }

    DISPID Find(std::string_view lowerName) const {
        for (std::size_t k = 0; k < entries_.size(); ++k) {
            if (lowerNames_[k] == lowerName) {
                return lowerName == "_newenum" ? DISPID_NEWENUM : static_cast<DISPID>(k + 1);
            }
        }
        return DISPID_UNKNOWN;
    }

    const Entry* At(DISPID id) const {
        if (id == DISPID_VALUE) id = default_;
        if (id == DISPID_NEWENUM) {
            for (std::size_t k = 0; k < entries_.size(); ++k) {
                if (lowerNames_[k] == "_newenum") return &entries_[k];
            }
            return nullptr;
        }
        if (id < 1 || static_cast<std::size_t>(id) > entries_.size()) return nullptr;
        return &entries_[static_cast<std::size_t>(id - 1)];
    }

  private:
    std::vector<Entry> entries_;
    std::vector<std::string> lowerNames_;
    DISPID default_ = DISPID_UNKNOWN;
};

// The base of a concrete host object: T provides `static const MemberTable<T>& Members();` and
// `std::string_view TypeName() const`.
template <class T>
class DispatchObjectOf : public DispatchObject {
  protected:
    DISPID FindMember(std::string_view lowerName) const override {
        return T::Members().Find(lowerName);
    }
    std::string_view MemberName(DISPID id) const override {
        const auto* entry = T::Members().At(id);
        return entry ? entry->name : std::string_view();
    }
    bool InvokeMember(DISPID id, Invocation& call) override {
        const auto* entry = T::Members().At(id);
        if (entry == nullptr) return false;
        entry->handler(static_cast<T&>(*this), call);
        return true;
    }
};

// An owning smart pointer for COM references: releases once, copies add a reference.
template <class T>
class ComRef {
  public:
    ComRef() = default;
    // Takes over a reference the caller owns.
    static ComRef Adopt(T* reference) {
        ComRef ref;
        ref.pointer_ = reference;
        return ref;
    }
    // Adds a reference of its own.
    static ComRef Share(T* reference) {
        if (reference) reference->AddRef();
        return Adopt(reference);
    }
    ComRef(const ComRef& other) : pointer_(other.pointer_) {
        if (pointer_) pointer_->AddRef();
    }
    ComRef(ComRef&& other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    ComRef& operator=(ComRef other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    ~ComRef() {
        if (pointer_) pointer_->Release();
    }

    T* get() const { return pointer_; }
    T* operator->() const { return pointer_; }
    explicit operator bool() const { return pointer_ != nullptr; }
    // Gives up the reference without releasing it.
    T* Detach() { return std::exchange(pointer_, nullptr); }

  private:
    T* pointer_ = nullptr;
};

// A new IEnumVARIANT (one reference) over a collection read at each step: itemAt(k) gives a new
// reference to the k-th item (0-based) or null past the end. Because the position is an index
// into the live collection, removing the current item while enumerating skips the next one; a
// collection that must not behave so hands over a snapshot instead.
IUnknown* NewEnumerator(std::string description, std::function<IDispatch*(std::size_t)> itemAt);

}  // namespace sheethost

// Values crossing the automation layer: the argument specifiers packed into variants, the result
// specifiers of GetValue, and the small owners that keep variants and interfaces from leaking.
#pragma once

#include <array>
#include <cstdarg>
#include <memory>

#include "workbook/automation_record.h"

namespace automation::detail {

// A VARIANT that is cleared when it goes out of scope.
class OwnedVariant {
  public:
    OwnedVariant() { VariantInit(&value_); }
    ~OwnedVariant() { VariantClear(&value_); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;

    VARIANT* get() { return &value_; }
    VARIANT* operator->() { return &value_; }
    // Hands the value over; this one is left empty.
    VARIANT Detach() {
        const VARIANT value = value_;
        VariantInit(&value_);
        return value;
    }

  private:
    VARIANT value_;
};

struct ReleaseInterface {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using InterfaceRef = std::unique_ptr<Interface, ReleaseInterface>;

// Converts `value` in place to `type`. Conversions use the invariant locale and write booleans as
// "True"/"False", so numbers and flags read the same whatever the user's regional settings.
HRESULT ConvertVariant(OwnedVariant& value, VARTYPE type);

// The arguments of one path component, stored last-first as IDispatch::Invoke expects. Strings
// made here for the S, s and T specifiers are freed with it; everything else is passed as given.
class PackedArguments {
  public:
    PackedArguments() = default;
    ~PackedArguments();
    PackedArguments(const PackedArguments&) = delete;
    PackedArguments& operator=(const PackedArguments&) = delete;

    // Takes one value from `arguments` for every "%" of `specifiers`. `member` names the
    // component in the error record.
    HRESULT Pack(OleStringView member, OleStringView specifiers, va_list* arguments);
    VARIANTARG* values() { return values_.data(); }
    UINT count() const { return count_; }

  private:
    std::array<VARIANTARG, kMaxArguments> values_{};
    std::array<bool, kMaxArguments> madeHere_{};
    UINT count_ = 0;
};

// The variant type that a GetValue result specifier ("%e", "e", ...) asks for; `specifier`
// receives the letter, with T already resolved to S or s. E_INVALIDARG for an unknown specifier.
HRESULT ResultTypeOf(LPCOLESTR resultSpec, OLECHAR& specifier, VARTYPE& type);
// Writes `value`, already of the type ResultTypeOf gave, to the caller's output.
HRESULT StoreResult(OLECHAR specifier, OwnedVariant& value, void* result);

}  // namespace automation::detail

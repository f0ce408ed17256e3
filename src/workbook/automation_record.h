// The automation layer's shared state and its per-thread error record.
//
// Every public operation runs its body through Recorded(), which keeps the thread's nesting level.
// Layer functions call one another (GetValueV -> InvokeV -> InternalInvokeV -> ...), and the
// innermost failure is the one that explains what went wrong, so only the first failure of a chain
// fills the record; the outermost operation then completes it with its own name.
#pragma once

#include <string_view>

#include "workbook/automation.h"

namespace automation::detail {

using OleStringView = std::basic_string_view<OLECHAR>;

// Module-level options, zero at load and written only at start-up.
inline Options layerOptions{};
// Decides whether the T specifier means wide (S) or narrow (s) text.
inline BOOL layerUnicodeMode = FALSE;

// What a failing function knows besides its HRESULT. The exception strings belong to this object
// until the record takes them over.
struct Failure {
    Failure() = default;
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
    ~Failure();

    BOOL fromInvoke = FALSE;
    UINT argumentIndex = 0;
    OleStringView member;
    EXCEPINFO exception{};
};

void EnterOperation();
// Leaves the level entered last and records `result` when it is a failure.
void LeaveOperation(const OLECHAR* functionName, HRESULT result, Failure& failure);

template <typename Body>
HRESULT Recorded(const OLECHAR* functionName, Body&& body) {
    Failure failure;
    EnterOperation();
    const HRESULT result = body(failure);
    LeaveOperation(functionName, result, failure);
    return result;
}

// IDispatch::Invoke in the user's locale. A failure is marked as coming from Invoke, with the
// argument in error and, for DISP_E_EXCEPTION, the exception (filled in first when deferred).
HRESULT InvokeDispatch(IDispatch* object, DISPID member, WORD flags, DISPPARAMS& parameters,
                       VARIANT* result, Failure& failure);

// Frees this thread's record; the next failure allocates a new one.
void FreeThreadRecord();

}  // namespace automation::detail

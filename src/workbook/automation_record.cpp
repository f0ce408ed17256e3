#include "workbook/automation_record.h"

#include <algorithm>
#include <cstring>

namespace automation {
namespace detail {
namespace {

// The record lives in thread-local storage so that every thread of the host keeps its own; the
// slot is taken once for the whole library.
DWORD RecordSlot() {
    static const DWORD slot = TlsAlloc();
    return slot;
}

thread_local int nestingLevel = 0;

void FreeExceptionStrings(EXCEPINFO& exception) {
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrHelpFile);
    exception.bstrDescription = exception.bstrSource = exception.bstrHelpFile = nullptr;
}

void ClearRecord(ErrorRecord& record) {
    SysFreeString(record.description);
    SysFreeString(record.source);
    SysFreeString(record.helpFile);
    std::memset(&record, 0, sizeof record);
}

void DeleteRecord(ErrorRecord* record) {
    ClearRecord(*record);
    HeapFree(GetProcessHeap(), 0, record);
}

// A thread that ends without shutting the layer down still gives its record back. Only the
// memory is freed here: thread-local storage may already be gone when the thread ends.
struct RecordOfEndingThread {
    ErrorRecord* record = nullptr;
    ~RecordOfEndingThread() {
        if (record != nullptr) DeleteRecord(record);
    }
};
thread_local RecordOfEndingThread recordOfThisThread;

ErrorRecord* ThreadRecord() {
    const DWORD slot = RecordSlot();
    return slot == TLS_OUT_OF_INDEXES ? nullptr : static_cast<ErrorRecord*>(TlsGetValue(slot));
}

ErrorRecord* ThreadRecordCreated() {
    ErrorRecord* record = ThreadRecord();
    if (record != nullptr || RecordSlot() == TLS_OUT_OF_INDEXES) return record;
    record = static_cast<ErrorRecord*>(
        HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, sizeof(ErrorRecord)));
    if (record != nullptr && !TlsSetValue(RecordSlot(), record)) {
        HeapFree(GetProcessHeap(), 0, record);
        record = nullptr;
    }
    recordOfThisThread.record = record;
    return record;
}

template <std::size_t N>
void CopyTruncated(WCHAR (&target)[N], OleStringView text) {
    const std::size_t length = std::min(text.size(), N - 1);
    std::copy_n(text.data(), length, target);
    target[length] = 0;
}

void FillFirstFailure(ErrorRecord& record, const OLECHAR* functionName, HRESULT result,
                      Failure& failure) {
    record.code = result;
    record.fromInvoke = failure.fromInvoke;
    record.argumentIndex = failure.argumentIndex;
    CopyTruncated(record.errorFunction, functionName);
    CopyTruncated(record.member, failure.member);
    EXCEPINFO& exception = failure.exception;
    record.description = exception.bstrDescription;
    record.source = exception.bstrSource;
    record.helpFile = exception.bstrHelpFile;
    record.helpContext = exception.dwHelpContext;
    record.exceptionCode = exception.scode != 0 ? exception.scode : exception.wCode;
    exception.bstrDescription = exception.bstrSource = exception.bstrHelpFile = nullptr;
}

}  // namespace

Failure::~Failure() {
    FreeExceptionStrings(exception);
}

void EnterOperation() {
    ++nestingLevel;
}

void LeaveOperation(const OLECHAR* functionName, HRESULT result, Failure& failure) {
    --nestingLevel;
    if (SUCCEEDED(result) || layerOptions.noErrorRecord) return;
    ErrorRecord* record = ThreadRecordCreated();
    if (record == nullptr) return;
    if (record->complete) ClearRecord(*record);
    // A failure cannot have the code 0, so a non-zero code means an inner function of this chain
    // has already told what went wrong.
    if (record->code == 0) FillFirstFailure(*record, functionName, result, failure);
    if (nestingLevel > 0) return;
    record->complete = TRUE;
    CopyTruncated(record->functionName, functionName);
    if (layerOptions.showErrors) ShowError(record);
    if (layerOptions.errorCallback != nullptr) layerOptions.errorCallback(record);
}

HRESULT InvokeDispatch(IDispatch* object, DISPID member, WORD flags, DISPPARAMS& parameters,
                       VARIANT* result, Failure& failure) {
    UINT argumentError = 0;
    const HRESULT hr = object->Invoke(member, IID_NULL, LOCALE_USER_DEFAULT, flags, &parameters,
                                      result, &failure.exception, &argumentError);
    if (FAILED(hr)) {
        failure.fromInvoke = TRUE;
        failure.argumentIndex = argumentError;
    }
    if (hr == DISP_E_EXCEPTION && failure.exception.pfnDeferredFillIn != nullptr) {
        failure.exception.pfnDeferredFillIn(&failure.exception);
    }
    return hr;
}

void FreeThreadRecord() {
    ErrorRecord* record = ThreadRecord();
    if (record == nullptr) return;
    DeleteRecord(record);
    TlsSetValue(RecordSlot(), nullptr);
    recordOfThisThread.record = nullptr;
}

}  // namespace detail

const ErrorRecord* LastError() {
    return detail::ThreadRecord();
}

HRESULT ToggleErrors(BOOL show) {
    detail::layerOptions.showErrors = show;
    if (show) detail::layerOptions.noErrorRecord = FALSE;
    return S_OK;
}

HRESULT SetErrorOptions(const Options* options) {
    return detail::Recorded(OLESTR("SetErrorOptions"), [&](detail::Failure&) {
        if (options == nullptr) return E_INVALIDARG;
        detail::layerOptions = *options;
        return S_OK;
    });
}

HRESULT GetErrorOptions(Options* options) {
    return detail::Recorded(OLESTR("GetErrorOptions"), [&](detail::Failure&) {
        if (options == nullptr) return E_INVALIDARG;
        *options = detail::layerOptions;
        return S_OK;
    });
}

}  // namespace automation

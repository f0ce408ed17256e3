// Late-bound calls on automation objects, written as member paths with printf-like specifiers:
//
//     GetValue(OLESTR("%e"), &width, sheet, OLESTR(".Columns(%d).ColumnWidth"), 3);
//     PutValue(sheet, OLESTR(".Cells(%u,%u)=%S"), row, column, text);
//
// The path is split at every "." (parentheses are not looked at, so a literal containing a dot must
// be passed through a specifier). Each component but the last is fetched as an object; the last is
// invoked with the caller's invoke kind. Argument specifiers: d (int32), u (uint32), e (double),
// b (int, non-zero = true), v (VARIANT*), B (BSTR, not freed), S (wide text), s (narrow text in
// the system code page), T (S or s by the mode given to AutomationInit), o (IDispatch*),
// O (IUnknown*), p (intptr_t), D (date serial double), t (time_t), W (SYSTEMTIME*),
// f (FILETIME*), m (nothing: an omitted optional argument).
//
// Result specifiers of GetValue: d u e b D W f t B S s T o O p v, with the same meanings; text
// results are allocated (S, s, T, B: free with SysFreeString / FreeAutomationText), objects are new
// references. A failed call leaves the output as the caller initialised it.
//
// Every operation returns an HRESULT and, on failure, fills this thread's error record.
#pragma once

#include <cstdarg>
#include <ctime>

#include "com/com.h"

namespace automation {

inline constexpr int kMaxPathLength = 512;
inline constexpr int kMaxArguments = 25;

struct ErrorRecord {
    HRESULT code;
    BOOL fromInvoke;          // the failure came from IDispatch::Invoke itself
    UINT argumentIndex;       // as IDispatch::Invoke reports it: counted from the last argument
    WCHAR functionName[64];   // the public operation that was called
    WCHAR errorFunction[64];  // the layer function in which the failure arose
    WCHAR member[256];
    BSTR description;
    BSTR source;
    BSTR helpFile;
    DWORD helpContext;
    SCODE exceptionCode;
    BOOL complete;
};

using ErrorCallback = void (*)(const ErrorRecord* record);

struct Options {
    HWND ownerWindow;
    LPCWSTR title;
    BOOL showErrors;
    BOOL noErrorRecord;
    ErrorCallback errorCallback;
};

HRESULT AutomationInit(BOOL initCom, BOOL unicode);
HRESULT AutomationShutdown(BOOL uninitCom);
HRESULT ToggleErrors(BOOL show);
HRESULT SetErrorOptions(const Options* options);
HRESULT GetErrorOptions(Options* options);

HRESULT CreateObject(LPCOLESTR progId, IDispatch** object);
HRESULT CreateObjectEx(LPCOLESTR progId, REFIID riid, DWORD context, void** object);
HRESULT GetObject(LPCOLESTR pathName, LPCOLESTR progId, IDispatch** object);
HRESULT GetObjectEx(LPCOLESTR pathName, LPCOLESTR progId, REFIID riid, void** object);

HRESULT CallMethod(IDispatch* object, LPCOLESTR path, ...);
HRESULT CallMethodV(IDispatch* object, LPCOLESTR path, va_list arguments);
HRESULT PutValue(IDispatch* object, LPCOLESTR path, ...);
HRESULT PutValueV(IDispatch* object, LPCOLESTR path, va_list arguments);
HRESULT PutRef(IDispatch* object, LPCOLESTR path, ...);
HRESULT PutRefV(IDispatch* object, LPCOLESTR path, va_list arguments);
HRESULT GetValue(LPCOLESTR resultSpec, void* result, IDispatch* object, LPCOLESTR path, ...);
HRESULT GetValueV(LPCOLESTR resultSpec, void* result, IDispatch* object, LPCOLESTR path,
                  va_list arguments);
// The general form: `result` (an empty VARIANT, or null) receives the last member's value
// converted to `resultType`; VT_EMPTY keeps the value as the member returned it.
HRESULT Invoke(int invokeKind, VARTYPE resultType, VARIANT* result, IDispatch* object,
               LPCOLESTR path, ...);
HRESULT InvokeV(int invokeKind, VARTYPE resultType, VARIANT* result, IDispatch* object,
                LPCOLESTR path, va_list arguments);

HRESULT EnumBegin(IEnumVARIANT** enumerator, IDispatch* object, LPCOLESTR path, ...);
HRESULT EnumBeginV(IEnumVARIANT** enumerator, IDispatch* object, LPCOLESTR path, va_list arguments);
// S_FALSE when the enumeration is over.
HRESULT EnumNextObject(IEnumVARIANT* enumerator, IDispatch** object);
HRESULT EnumNextVariant(IEnumVARIANT* enumerator, VARIANT* item);

// Converts `value` in place to `type` as a member's result is converted for GetValue: with the
// invariant locale and booleans as "True"/"False". A failed conversion leaves the value as it was.
HRESULT ConvertResult(VARIANT* value, VARTYPE type);

// This thread's error record, null before the first recorded failure.
const ErrorRecord* LastError();
HRESULT FormatError(const ErrorRecord* record, LPWSTR buffer, int size, BOOL fixedFont);
HRESULT ShowError(const ErrorRecord* record);

// Frees a narrow text returned by the "s" (or narrow "T") result specifier.
void FreeAutomationText(char* text);

}  // namespace automation

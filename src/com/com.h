// The part of COM and OLE Automation that the engine and the in-memory host use.
//
// On Windows this is the system's own headers and libraries (ole32, oleaut32). Elsewhere the same
// names, types, layouts and semantics are provided by this folder, so that everything above it
// compiles unchanged for both builds. Wide text is UTF-16 on both: OLECHAR is wchar_t on Windows
// and char16_t elsewhere; write wide literals with OLESTR("...").
#pragma once

#ifdef _WIN32

// windows.h first: the OLE headers build on its definitions.
// clang-format off
#include <windows.h>
#include <ole2.h>
#include <oleauto.h>
// clang-format on
// wingdi.h maps GetObject to GetObjectW; the automation layer and the workbook holders have members
// of that name and never call the GDI function.
#undef GetObject

#else  // portable subset

#include <cstdarg>
#include <cstddef>
#include <cstdint>

using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using INT = int;
using UINT = unsigned int;
using BOOL = int;
using LPBOOL = BOOL*;
using LONGLONG = std::int64_t;
using ULONGLONG = std::uint64_t;
using LONG_PTR = std::intptr_t;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using FLOAT = float;
using DOUBLE = double;
using CHAR = char;
using PVOID = void*;
using LPVOID = void*;
using LPCVOID = const void*;
using HANDLE = void*;
using HWND = struct HWND__*;
using HRESULT = LONG;
using SCODE = LONG;
using LCID = DWORD;
using DISPID = LONG;
using MEMBERID = DISPID;
using VARTYPE = unsigned short;
using VARIANT_BOOL = short;
using DATE = double;
using WCHAR = char16_t;
using OLECHAR = WCHAR;
using LPOLESTR = OLECHAR*;
using LPCOLESTR = const OLECHAR*;
using BSTR = OLECHAR*;
using LPWSTR = WCHAR*;
using LPCWSTR = const WCHAR*;
using LPSTR = char*;
using LPCSTR = const char*;

#define OLESTR(str) u##str
#define STDMETHODCALLTYPE
#define WINAPI

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

// HRESULT codes the layer, the host and the engine use.
#define MAKE_HRESULT_CONST(value) static_cast<HRESULT>(static_cast<std::uint32_t>(value))
inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = MAKE_HRESULT_CONST(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = MAKE_HRESULT_CONST(0x80004002);
inline constexpr HRESULT E_POINTER = MAKE_HRESULT_CONST(0x80004003);
inline constexpr HRESULT E_FAIL = MAKE_HRESULT_CONST(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = MAKE_HRESULT_CONST(0x8000FFFF);
inline constexpr HRESULT E_OUTOFMEMORY = MAKE_HRESULT_CONST(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = MAKE_HRESULT_CONST(0x80070057);
inline constexpr HRESULT DISP_E_UNKNOWNINTERFACE = MAKE_HRESULT_CONST(0x80020001);
inline constexpr HRESULT DISP_E_MEMBERNOTFOUND = MAKE_HRESULT_CONST(0x80020003);
inline constexpr HRESULT DISP_E_PARAMNOTFOUND = MAKE_HRESULT_CONST(0x80020004);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = MAKE_HRESULT_CONST(0x80020005);
inline constexpr HRESULT DISP_E_UNKNOWNNAME = MAKE_HRESULT_CONST(0x80020006);
inline constexpr HRESULT DISP_E_NONAMEDARGS = MAKE_HRESULT_CONST(0x80020007);
inline constexpr HRESULT DISP_E_BADVARTYPE = MAKE_HRESULT_CONST(0x80020008);
inline constexpr HRESULT DISP_E_EXCEPTION = MAKE_HRESULT_CONST(0x80020009);
inline constexpr HRESULT DISP_E_OVERFLOW = MAKE_HRESULT_CONST(0x8002000A);
inline constexpr HRESULT DISP_E_BADINDEX = MAKE_HRESULT_CONST(0x8002000B);
inline constexpr HRESULT DISP_E_ARRAYISLOCKED = MAKE_HRESULT_CONST(0x8002000D);
inline constexpr HRESULT DISP_E_BADPARAMCOUNT = MAKE_HRESULT_CONST(0x8002000E);
inline constexpr HRESULT DISP_E_PARAMNOTOPTIONAL = MAKE_HRESULT_CONST(0x8002000F);
inline constexpr HRESULT DISP_E_DIVBYZERO = MAKE_HRESULT_CONST(0x80020012);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = MAKE_HRESULT_CONST(0x80040154);
inline constexpr HRESULT MK_E_UNAVAILABLE = MAKE_HRESULT_CONST(0x800401E3);
inline constexpr HRESULT MK_E_SYNTAX = MAKE_HRESULT_CONST(0x800401E4);
inline constexpr HRESULT CO_E_CLASSSTRING = MAKE_HRESULT_CONST(0x800401F3);
#undef MAKE_HRESULT_CONST

#define SUCCEEDED(hr) (static_cast<HRESULT>(hr) >= 0)
#define FAILED(hr) (static_cast<HRESULT>(hr) < 0)

// Variant types.
enum VARENUM : VARTYPE {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_R4 = 4,
    VT_R8 = 5,
    VT_CY = 6,
    VT_DATE = 7,
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_DECIMAL = 14,
    VT_I1 = 16,
    VT_UI1 = 17,
    VT_UI2 = 18,
    VT_UI4 = 19,
    VT_I8 = 20,
    VT_UI8 = 21,
    VT_INT = 22,
    VT_UINT = 23,
    VT_ARRAY = 0x2000,
    VT_BYREF = 0x4000,
};

inline constexpr VARIANT_BOOL VARIANT_TRUE = -1;
inline constexpr VARIANT_BOOL VARIANT_FALSE = 0;

// VariantChangeType flags.
inline constexpr USHORT VARIANT_NOVALUEPROP = 0x1;
inline constexpr USHORT VARIANT_ALPHABOOL = 0x2;
inline constexpr USHORT VARIANT_NOUSEROVERRIDE = 0x4;
inline constexpr USHORT VARIANT_LOCALBOOL = 0x10;

// Invoke kinds and dispatch identifiers.
inline constexpr WORD DISPATCH_METHOD = 0x1;
inline constexpr WORD DISPATCH_PROPERTYGET = 0x2;
inline constexpr WORD DISPATCH_PROPERTYPUT = 0x4;
inline constexpr WORD DISPATCH_PROPERTYPUTREF = 0x8;
inline constexpr DISPID DISPID_UNKNOWN = -1;
inline constexpr DISPID DISPID_VALUE = 0;
inline constexpr DISPID DISPID_PROPERTYPUT = -3;
inline constexpr DISPID DISPID_NEWENUM = -4;

inline constexpr LCID LOCALE_SYSTEM_DEFAULT = 0x0800;
inline constexpr LCID LOCALE_USER_DEFAULT = 0x0400;
inline constexpr LCID LOCALE_INVARIANT = 0x007F;

struct GUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];
};
using IID = GUID;
using CLSID = GUID;
using LPCLSID = CLSID*;
using REFGUID = const GUID&;
using REFIID = const IID&;
using REFCLSID = const CLSID&;

bool operator==(REFGUID a, REFGUID b);
inline bool IsEqualGUID(REFGUID a, REFGUID b) {
    return a == b;
}
inline bool IsEqualIID(REFIID a, REFIID b) {
    return a == b;
}

extern const IID IID_NULL;
extern const IID IID_IUnknown;
extern const IID IID_IDispatch;
extern const IID IID_IEnumVARIANT;

struct ITypeInfo;
struct IDispatch;
struct IUnknown;

struct CY {
    LONGLONG int64;
};

struct DECIMAL {
    USHORT wReserved;
    BYTE scale;
    BYTE sign;
    ULONG Hi32;
    ULONGLONG Lo64;
};

// Arrays of automation values. The bounds are kept last dimension first, as the system keeps them;
// the functions below take and give them first dimension first. Elements lie with the first index
// varying fastest.
struct SAFEARRAYBOUND {
    ULONG cElements;
    LONG lLbound;
};
using LPSAFEARRAYBOUND = SAFEARRAYBOUND*;

struct SAFEARRAY {
    USHORT cDims;
    USHORT fFeatures;
    ULONG cbElements;
    ULONG cLocks;
    PVOID pvData;
    SAFEARRAYBOUND rgsabound[1];
};
using LPSAFEARRAY = SAFEARRAY*;

inline constexpr USHORT FADF_HAVEVARTYPE = 0x80;
inline constexpr USHORT FADF_BSTR = 0x100;
inline constexpr USHORT FADF_UNKNOWN = 0x200;
inline constexpr USHORT FADF_DISPATCH = 0x400;
inline constexpr USHORT FADF_VARIANT = 0x800;

struct tagVARIANT;
using VARIANT = tagVARIANT;
using VARIANTARG = tagVARIANT;
using LPVARIANT = VARIANT*;

// Same layout as the Windows VARIANT: 24 bytes on 64-bit, the value at offset 8.
struct tagVARIANT {
    union {
        struct {
            VARTYPE vt;
            WORD wReserved1;
            WORD wReserved2;
            WORD wReserved3;
            union {
                LONGLONG llVal;
                LONG lVal;
                BYTE bVal;
                SHORT iVal;
                FLOAT fltVal;
                DOUBLE dblVal;
                VARIANT_BOOL boolVal;
                SCODE scode;
                CY cyVal;
                DATE date;
                BSTR bstrVal;
                IUnknown* punkVal;
                IDispatch* pdispVal;
                VARIANT* pvarVal;
                SAFEARRAY* parray;
                SAFEARRAY** pparray;
                PVOID byref;
                CHAR cVal;
                USHORT uiVal;
                ULONG ulVal;
                ULONGLONG ullVal;
                INT intVal;
                UINT uintVal;
                struct {
                    PVOID pvRecord;
                    PVOID pRecInfo;
                } brecVal;
            };
        };
        DECIMAL decVal;
    };
};

#define V_VT(v) ((v)->vt)
#define V_I4(v) ((v)->lVal)
#define V_UI4(v) ((v)->ulVal)
#define V_I8(v) ((v)->llVal)
#define V_R8(v) ((v)->dblVal)
#define V_DATE(v) ((v)->date)
#define V_BOOL(v) ((v)->boolVal)
#define V_BSTR(v) ((v)->bstrVal)
#define V_DISPATCH(v) ((v)->pdispVal)
#define V_UNKNOWN(v) ((v)->punkVal)
#define V_ERROR(v) ((v)->scode)
#define V_VARIANTREF(v) ((v)->pvarVal)
#define V_ARRAY(v) ((v)->parray)
#define V_ISARRAY(v) (((v)->vt & VT_ARRAY) != 0)

struct EXCEPINFO {
    WORD wCode;
    WORD wReserved;
    BSTR bstrSource;
    BSTR bstrDescription;
    BSTR bstrHelpFile;
    DWORD dwHelpContext;
    PVOID pvReserved;
    HRESULT(STDMETHODCALLTYPE* pfnDeferredFillIn)(EXCEPINFO*);
    SCODE scode;
};

struct DISPPARAMS {
    VARIANTARG* rgvarg;
    DISPID* rgdispidNamedArgs;
    UINT cArgs;
    UINT cNamedArgs;
};

struct IUnknown {
    virtual HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** object) = 0;
    virtual ULONG STDMETHODCALLTYPE AddRef() = 0;
    virtual ULONG STDMETHODCALLTYPE Release() = 0;
};
using LPUNKNOWN = IUnknown*;

struct IDispatch : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID lcid, ITypeInfo** info) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID riid, LPOLESTR* names, UINT count,
                                                    LCID lcid, DISPID* dispIds) = 0;
    virtual HRESULT STDMETHODCALLTYPE Invoke(DISPID dispId, REFIID riid, LCID lcid, WORD flags,
                                             DISPPARAMS* params, VARIANT* result,
                                             EXCEPINFO* exception, UINT* argError) = 0;
};
using LPDISPATCH = IDispatch*;

struct IEnumVARIANT : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Next(ULONG count, VARIANT* items, ULONG* fetched) = 0;
    virtual HRESULT STDMETHODCALLTYPE Skip(ULONG count) = 0;
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE Clone(IEnumVARIANT** copy) = 0;
};

// Automation strings: UTF-16, length-prefixed (32-bit byte count before the text), NUL-ended.
BSTR SysAllocString(const OLECHAR* text);
BSTR SysAllocStringLen(const OLECHAR* text, UINT length);
void SysFreeString(BSTR text);
UINT SysStringLen(BSTR text);
UINT SysStringByteLen(BSTR text);

// Variants. VariantChangeType converts as the Windows runtime does for the invariant locale:
// numbers, booleans ("True"/"False" with VARIANT_ALPHABOOL, else "-1"/"0"), dates and strings in
// both directions; a failed conversion leaves the destination untouched.
void VariantInit(VARIANTARG* variant);
HRESULT VariantClear(VARIANTARG* variant);
// The sources are not const, as in the mingw-w64 headers of the Windows build, so that code
// passing a const variant fails on both builds alike.
HRESULT VariantCopy(VARIANTARG* dest, VARIANTARG* source);
HRESULT VariantChangeType(VARIANTARG* dest, VARIANTARG* source, USHORT flags, VARTYPE type);
HRESULT VariantChangeTypeEx(VARIANTARG* dest, VARIANTARG* source, LCID lcid, USHORT flags,
                            VARTYPE type);

// Arrays. Index vectors give the first dimension first (for a block of cells: row, then column);
// a dimension argument counts from 1. Arrays of VT_VARIANT, VT_BSTR and interfaces own their
// elements: putting copies, getting gives a copy, destroying clears them all.
SAFEARRAY* SafeArrayCreate(VARTYPE type, UINT dimensions, SAFEARRAYBOUND* bounds);
HRESULT SafeArrayDestroy(SAFEARRAY* array);
HRESULT SafeArrayCopy(SAFEARRAY* source, SAFEARRAY** copy);
UINT SafeArrayGetDim(SAFEARRAY* array);
UINT SafeArrayGetElemsize(SAFEARRAY* array);
HRESULT SafeArrayGetVartype(SAFEARRAY* array, VARTYPE* type);
HRESULT SafeArrayGetLBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayGetUBound(SAFEARRAY* array, UINT dimension, LONG* bound);
HRESULT SafeArrayLock(SAFEARRAY* array);
HRESULT SafeArrayUnlock(SAFEARRAY* array);
HRESULT SafeArrayAccessData(SAFEARRAY* array, void** data);
HRESULT SafeArrayUnaccessData(SAFEARRAY* array);
HRESULT SafeArrayPtrOfIndex(SAFEARRAY* array, LONG* indices, void** element);
HRESULT SafeArrayGetElement(SAFEARRAY* array, LONG* indices, void* value);
HRESULT SafeArrayPutElement(SAFEARRAY* array, LONG* indices, void* value);

// Dates.
struct SYSTEMTIME {
    WORD wYear;
    WORD wMonth;
    WORD wDayOfWeek;
    WORD wDay;
    WORD wHour;
    WORD wMinute;
    WORD wSecond;
    WORD wMilliseconds;
};
using LPSYSTEMTIME = SYSTEMTIME*;

struct FILETIME {
    DWORD dwLowDateTime;
    DWORD dwHighDateTime;
};

INT SystemTimeToVariantTime(LPSYSTEMTIME systemTime, DOUBLE* variantTime);
INT VariantTimeToSystemTime(DOUBLE variantTime, LPSYSTEMTIME systemTime);
BOOL FileTimeToSystemTime(const FILETIME* fileTime, LPSYSTEMTIME systemTime);
BOOL SystemTimeToFileTime(const SYSTEMTIME* systemTime, FILETIME* fileTime);

// COM start-up and object activation. Without a registry there are no classes to activate: the
// activation calls answer as Windows does for an unknown class or a missing running object.
inline constexpr DWORD CLSCTX_INPROC_SERVER = 0x1;
inline constexpr DWORD CLSCTX_LOCAL_SERVER = 0x4;
inline constexpr DWORD CLSCTX_SERVER = 0x15;
struct BIND_OPTS;
HRESULT CoInitialize(LPVOID reserved);
void CoUninitialize();
HRESULT CLSIDFromProgID(LPCOLESTR progId, LPCLSID clsid);
HRESULT CLSIDFromString(LPCOLESTR text, LPCLSID clsid);
HRESULT GetActiveObject(REFCLSID clsid, PVOID reserved, IUnknown** object);
HRESULT CoGetObject(LPCWSTR name, BIND_OPTS* options, REFIID riid, void** object);
HRESULT CoCreateInstance(REFCLSID clsid, LPUNKNOWN outer, DWORD context, REFIID riid,
                         LPVOID* object);

// Text conversion. Only UTF-8 exists here: CP_ACP and CP_UTF8 both mean UTF-8.
inline constexpr UINT CP_ACP = 0;
inline constexpr UINT CP_UTF8 = 65001;
int MultiByteToWideChar(UINT codePage, DWORD flags, LPCSTR text, int length, LPWSTR wide,
                        int wideLength);
int WideCharToMultiByte(UINT codePage, DWORD flags, LPCWSTR wide, int wideLength, LPSTR text,
                        int length, LPCSTR defaultChar, LPBOOL usedDefault);

// Thread-local storage and the process heap.
inline constexpr DWORD TLS_OUT_OF_INDEXES = 0xFFFFFFFF;
DWORD TlsAlloc();
LPVOID TlsGetValue(DWORD index);
BOOL TlsSetValue(DWORD index, LPVOID value);
BOOL TlsFree(DWORD index);

inline constexpr DWORD HEAP_ZERO_MEMORY = 0x8;
HANDLE GetProcessHeap();
LPVOID HeapAlloc(HANDLE heap, DWORD flags, std::size_t bytes);
BOOL HeapFree(HANDLE heap, DWORD flags, LPVOID memory);

// System messages. FormatMessageA knows the texts of the codes above; a message box is written to
// standard error, since there is no window system to show it in.
inline constexpr DWORD FORMAT_MESSAGE_IGNORE_INSERTS = 0x200;
inline constexpr DWORD FORMAT_MESSAGE_FROM_SYSTEM = 0x1000;
inline constexpr WORD LANG_NEUTRAL = 0x00;
inline constexpr WORD SUBLANG_DEFAULT = 0x01;
#define MAKELANGID(primary, sub) ((static_cast<WORD>(sub) << 10) | static_cast<WORD>(primary))
DWORD FormatMessageA(DWORD flags, LPCVOID source, DWORD messageId, DWORD languageId, LPSTR buffer,
                     DWORD size, va_list* arguments);

inline constexpr UINT MB_OK = 0x0;
inline constexpr UINT MB_ICONERROR = 0x10;
inline constexpr UINT MB_ICONWARNING = 0x30;
inline constexpr UINT MB_ICONINFORMATION = 0x40;
inline constexpr UINT MB_SETFOREGROUND = 0x10000;
int MessageBoxW(HWND owner, LPCWSTR text, LPCWSTR caption, UINT type);

#endif  // _WIN32

// COM start-up and object activation. There is no registry and no running object table here:
// every activation answers as Windows does for an unknown class or a missing object.
#ifndef _WIN32

#include "com/com.h"

namespace {

// How many times COM was initialised on this thread and not yet uninitialised.
thread_local int comInitCount = 0;

}  // namespace

HRESULT CoInitialize(LPVOID) {
    return comInitCount++ == 0 ? S_OK : S_FALSE;
}

void CoUninitialize() {
    if (comInitCount > 0) --comInitCount;
}

HRESULT CLSIDFromProgID(LPCOLESTR, LPCLSID clsid) {
    *clsid = IID_NULL;
    return CO_E_CLASSSTRING;
}

HRESULT GetActiveObject(REFCLSID, PVOID, IUnknown** object) {
    *object = nullptr;
    return MK_E_UNAVAILABLE;
}

HRESULT CoGetObject(LPCWSTR, BIND_OPTS*, REFIID, void** object) {
    *object = nullptr;
    return MK_E_SYNTAX;
}

HRESULT CoCreateInstance(REFCLSID, LPUNKNOWN, DWORD, REFIID, LPVOID* object) {
    *object = nullptr;
    return REGDB_E_CLASSNOTREG;
}

#endif  // _WIN32

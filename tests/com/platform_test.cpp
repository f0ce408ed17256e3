#include <gtest/gtest.h>

#include <string>

#include "com/com.h"

namespace {

TEST(Guid, WellKnownInterfacesHaveTheirRealValues) {
    CLSID parsed{};
    ASSERT_EQ(CLSIDFromString(OLESTR("{00020400-0000-0000-C000-000000000046}"), &parsed), S_OK);
    EXPECT_TRUE(parsed == IID_IDispatch);
    ASSERT_EQ(CLSIDFromString(OLESTR("{00000000-0000-0000-c000-000000000046}"), &parsed), S_OK);
    EXPECT_TRUE(parsed == IID_IUnknown);
    ASSERT_EQ(CLSIDFromString(OLESTR("{00020404-0000-0000-C000-000000000046}"), &parsed), S_OK);
    EXPECT_TRUE(parsed == IID_IEnumVARIANT);
    EXPECT_FALSE(IID_IDispatch == IID_IUnknown);
}

TEST(Guid, MalformedTextIsAnInvalidClassString) {
    CLSID parsed;
    EXPECT_EQ(CLSIDFromString(OLESTR("{00020400-0000-0000-C000-00000000004}"), &parsed),
              CO_E_CLASSSTRING);
    EXPECT_EQ(CLSIDFromString(OLESTR("00020400-0000-0000-C000-000000000046"), &parsed),
              CO_E_CLASSSTRING);
}

TEST(Com, InitialisesOncePerThreadAndFindsNoUnknownClass) {
    const HRESULT first = CoInitialize(nullptr);
    EXPECT_TRUE(first == S_OK || first == S_FALSE);
    EXPECT_EQ(CoInitialize(nullptr), S_FALSE);
    CoUninitialize();
    CLSID clsid;
    EXPECT_EQ(CLSIDFromProgID(OLESTR("Vantora.NoSuchClass"), &clsid), CO_E_CLASSSTRING);
    IUnknown* running = reinterpret_cast<IUnknown*>(1);
    const HRESULT active = GetActiveObject(IID_IDispatch, nullptr, &running);
#ifdef _WIN32
    // The running object table lives in a system service, which a fresh Wine prefix may not have
    // started: then the call fails for that reason instead.
    EXPECT_TRUE(active == MK_E_UNAVAILABLE ||
                active == HRESULT_FROM_WIN32(RPC_S_SERVER_UNAVAILABLE))
        << std::hex << active;
#else
    EXPECT_EQ(active, MK_E_UNAVAILABLE);
#endif
    EXPECT_EQ(running, nullptr);
    void* created = reinterpret_cast<void*>(1);
    EXPECT_EQ(CoCreateInstance(IID_IDispatch, nullptr, CLSCTX_SERVER, IID_IDispatch, &created),
              REGDB_E_CLASSNOTREG);
    EXPECT_EQ(created, nullptr);
    CoUninitialize();
}

#ifndef _WIN32
// Wine's message table differs from Windows' (and lacks the dispatch codes), so the texts are
// checked on the portable build only.
std::string SystemMessage(HRESULT code, DWORD size = 256) {
    char buffer[256] = "untouched";
    const DWORD length = FormatMessageA(
        FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr,
        static_cast<DWORD>(code), MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), buffer, size, nullptr);
    return length == 0 ? "(none)" : std::string(buffer, length);
}

TEST(SystemMessages, AreTheWindowsTextsWithTheirLineBreak) {
    EXPECT_EQ(SystemMessage(E_INVALIDARG), "The parameter is incorrect.\r\n");
    EXPECT_EQ(SystemMessage(DISP_E_UNKNOWNNAME), "Unknown name.\r\n");
    EXPECT_EQ(SystemMessage(DISP_E_EXCEPTION), "Exception occurred.\r\n");
    EXPECT_EQ(SystemMessage(DISP_E_TYPEMISMATCH), "Type mismatch.\r\n");
    EXPECT_EQ(SystemMessage(E_FAIL), "Unspecified error\r\n");
    EXPECT_EQ(SystemMessage(static_cast<HRESULT>(0x80041234u)), "(none)");
    EXPECT_EQ(SystemMessage(E_INVALIDARG, 10), "(none)");  // too small for the text
}

TEST(ObjectActivation, ThereIsNoObjectToBind) {
    void* bound = reinterpret_cast<void*>(1);
    EXPECT_EQ(CoGetObject(OLESTR("C:\\project.xlsm"), nullptr, IID_IDispatch, &bound), MK_E_SYNTAX);
    EXPECT_EQ(bound, nullptr);
}
#endif

}  // namespace

// The automation contract every host object keeps: interfaces, reference counts, names matched
// without regard to case, property puts, argument coercion, refusals, enumeration, and the
// call counter and member log.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/host_calls.h"

namespace {

using hosttest::Get;
using hosttest::Number;
using hosttest::Object;
using hosttest::Put;
using hosttest::Text;

constexpr const char* kBook = R"json({"sheets":[{"name":"WBS","codeName":"wsWBS"},
                                            {"name":"Settings","codeName":"wsSettings"}]})json";

class DispatchTest : public hosttest::HostTest {
  protected:
    DispatchTest() { Load(kBook); }

    DISPID IdOf(IDispatch* object, const OLECHAR* name) {
        LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
        DISPID id = 12345;
        lastNameResult = object->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &id);
        return id;
    }

    // A raw Invoke with positional arguments given first-to-last.
    HRESULT Invoke(IDispatch* object, const OLECHAR* name, WORD flags, std::vector<VARIANT> args,
                   VARIANT* result, EXCEPINFO* exception = nullptr, UINT* argError = nullptr) {
        std::vector<VARIANT> reversed(args.rbegin(), args.rend());
        DISPID named = DISPID_PROPERTYPUT;
        DISPPARAMS params{reversed.data(), nullptr, static_cast<UINT>(reversed.size()), 0};
        if (flags == DISPATCH_PROPERTYPUT) {
            params.rgdispidNamedArgs = &named;
            params.cNamedArgs = 1;
        }
        return object->Invoke(IdOf(object, name), IID_NULL, LOCALE_USER_DEFAULT, flags, &params,
                              result, exception, argError);
    }

    static VARIANT Int(LONG value) {
        VARIANT v;
        VariantInit(&v);
        v.vt = VT_I4;
        v.lVal = value;
        return v;
    }

    HRESULT lastNameResult = S_OK;
};

TEST_F(DispatchTest, AnswersOnlyItsInterfacesAndCountsReferences) {
    Object sheet = Sheet("WBS");
    IUnknown* unknown = nullptr;
    ASSERT_EQ(sheet->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(&unknown)), S_OK);
    IEnumVARIANT* enumerator = nullptr;
    EXPECT_EQ(sheet->QueryInterface(IID_IEnumVARIANT, reinterpret_cast<void**>(&enumerator)),
              E_NOINTERFACE);
    EXPECT_EQ(enumerator, nullptr);
    EXPECT_EQ(sheet->AddRef(), 3u);
    EXPECT_EQ(sheet->Release(), 2u);
    unknown->Release();
    UINT count = 7;
    EXPECT_EQ(sheet->GetTypeInfoCount(&count), S_OK);
    EXPECT_EQ(count, 0u);
}

TEST_F(DispatchTest, MatchesMemberNamesWithoutRegardToCase) {
    Object sheet = Sheet("WBS");
    EXPECT_EQ(IdOf(sheet.get(), OLESTR("codeName")), IdOf(sheet.get(), OLESTR("CODENAME")));
    EXPECT_EQ(Text(sheet.get(), OLESTR(".codeName")), "wsWBS");
    Object font = Get(sheet.get(), OLESTR(".Cells(%u,%u).font"), 1u, 1u);
    EXPECT_TRUE(font);

    EXPECT_EQ(IdOf(sheet.get(), OLESTR("NoSuchMember")), DISPID_UNKNOWN);
    EXPECT_EQ(lastNameResult, DISP_E_UNKNOWNNAME);
    EXPECT_TRUE(FAILED(Put(sheet.get(), OLESTR(".Colour=%d"), 3)));
    EXPECT_EQ(hosttest::LastCode(), DISP_E_UNKNOWNNAME);
}

TEST_F(DispatchTest, PutsNeedTheNamedPropertyPutArgument) {
    Object cell = Get(Sheet("WBS").get(), OLESTR(".Cells(%u,%u)"), 2u, 3u);
    VARIANT value = Int(42);
    DISPPARAMS unnamed{&value, nullptr, 1, 0};
    const DISPID id = IdOf(cell.get(), OLESTR("Value"));
    EXPECT_EQ(
        cell->Invoke(id, IID_NULL, 0, DISPATCH_PROPERTYPUT, &unnamed, nullptr, nullptr, nullptr),
        DISP_E_PARAMNOTFOUND);
    ASSERT_EQ(Invoke(cell.get(), OLESTR("Value"), DISPATCH_PROPERTYPUT, {Int(42)}, nullptr), S_OK);
    EXPECT_EQ(Number(cell.get(), OLESTR(".Value")), 42);
    // Row is read-only.
    EXPECT_EQ(Invoke(cell.get(), OLESTR("Row"), DISPATCH_PROPERTYPUT, {Int(5)}, nullptr),
              DISP_E_MEMBERNOTFOUND);
}

TEST_F(DispatchTest, CoercesArgumentsAndNamesTheOneThatDoesNotFit) {
    Object sheet = Sheet("WBS");
    // Numbers passed as text work as the real host's do.
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Cells(%s,%s).Row"), "7", "2"), 7);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Cells(%e,%u).Column"), 3.0, 4u), 4);

    VARIANT text;
    VariantInit(&text);
    text.vt = VT_BSTR;
    text.bstrVal = SysAllocString(OLESTR("seven"));
    VARIANT result;
    VariantInit(&result);
    UINT argError = 99;
    EXPECT_EQ(Invoke(sheet.get(), OLESTR("Cells"), DISPATCH_METHOD | DISPATCH_PROPERTYGET,
                     {text, Int(2)}, &result, nullptr, &argError),
              DISP_E_TYPEMISMATCH);
    EXPECT_EQ(argError, 1u);  // rgvarg index of the first argument
    VariantClear(&text);
    EXPECT_EQ(
        Invoke(sheet.get(), OLESTR("Range"), DISPATCH_METHOD | DISPATCH_PROPERTYGET, {}, &result),
        DISP_E_BADPARAMCOUNT);
}

TEST_F(DispatchTest, RefusesWithTheHostsExceptionText) {
    Object sheet = Sheet("WBS");
    EXPECT_FALSE(Get(sheet.get(), OLESTR(".Cells(%u,%u)"), 0u, 1u));
    EXPECT_EQ(hosttest::LastCode(), DISP_E_EXCEPTION);
    EXPECT_EQ(hosttest::LastDescription(), "Application-defined or object-defined error");
    EXPECT_FALSE(Get(sheet.get(), OLESTR(".Cells(%u,%u)"), 1u, 16385u));
    EXPECT_FALSE(Get(sheet.get(), OLESTR(".Range(%s)"), "NotAName"));
    EXPECT_EQ(hosttest::LastDescription(), "Method 'Range' of object '_Worksheet' failed");

    VARIANT result;
    VariantInit(&result);
    EXCEPINFO exception{};
    VARIANT zero = Int(0);
    EXPECT_EQ(Invoke(sheet.get(), OLESTR("Cells"), DISPATCH_PROPERTYGET, {zero, zero}, &result,
                     &exception),
              DISP_E_EXCEPTION);
    EXPECT_EQ(exception.scode, sheethost::kHostError);
    EXPECT_EQ(result.vt, VT_EMPTY);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrSource);
}

TEST_F(DispatchTest, MissingSheetsAreOutOfRange) {
    EXPECT_FALSE(Get(workbook.get(), OLESTR(".Sheets(%s)"), "Missing"));
    EXPECT_EQ(hosttest::LastCode(), DISP_E_BADINDEX);
    EXPECT_FALSE(Get(workbook.get(), OLESTR(".Worksheets(%d)"), 3));
    EXPECT_EQ(Text(workbook.get(), OLESTR(".Worksheets(%d).Name"), 2), "Settings");
    EXPECT_EQ(Text(workbook.get(), OLESTR(".worksheets(%s).Name"), "settings"), "Settings");
}

TEST_F(DispatchTest, PuttingAnObjectMemberPutsItsDefaultValue) {
    Object sheet = Sheet("WBS");
    ASSERT_EQ(Put(sheet.get(), OLESTR(".Cells(%u,%u)=%s"), 3u, 2u, "Design"), S_OK);
    EXPECT_EQ(Text(sheet.get(), OLESTR(".Range(%s).Value"), "B3"), "Design");
    ASSERT_EQ(Put(sheet.get(), OLESTR(".Range(%s)=%e"), "C3", 2.5), S_OK);
    EXPECT_EQ(Number(sheet.get(), OLESTR(".Cells(%u,%u)"), 3u, 3u), 2.5);
}

TEST_F(DispatchTest, EnumeratesWorksheetsLikeTheEngineSearchesThem) {
    IEnumVARIANT* enumerator = nullptr;
    ASSERT_EQ(automation::EnumBegin(&enumerator, workbook.get(), OLESTR(".Worksheets")), S_OK);
    std::vector<std::string> codeNames;
    IDispatch* item = nullptr;
    while (automation::EnumNextObject(enumerator, &item) == S_OK) {
        codeNames.push_back(Text(item, OLESTR(".codeName")));
        item->Release();
    }
    enumerator->Release();
    EXPECT_EQ(codeNames, (std::vector<std::string>{"wsWBS", "wsSettings"}));
}

TEST_F(DispatchTest, CountsCallsAndLogsMemberPaths) {
    Object sheet = Sheet("WBS");
    std::vector<std::string> log;
    sheethost::SetMemberLog(&log);
    sheethost::ResetCallCount();
    Put(sheet.get(), OLESTR(".Cells(%u,%u)=%s"), 3u, 2u, "x");
    Get(sheet.get(), OLESTR(".Cells(%u,%u)"), 0u, 2u);
    Number(sheet.get(), OLESTR(".Rows(%d).EntireRow.Hidden"), 4);
    sheethost::SetMemberLog(nullptr);
    EXPECT_EQ(sheethost::CallCount(), 5);
    EXPECT_EQ(log, (std::vector<std::string>{
                       "Worksheet.Cells(3,2)=\"x\"",
                       "Worksheet.Cells(0,2) -> 0x80020009",
                       "Worksheet.Rows(4)",
                       "Range.EntireRow",
                       "Range.Hidden",
                   }));
}

TEST_F(DispatchTest, ObjectsOutliveADeletedModelAndReportWhatIsStillHeld) {
    Object cell = Object::Adopt(
        sheethost::NewRangeObject(book, book->sheets.front(), {sheethost::Area{2, 2, 2, 2}}));
    const auto report = sheethost::LiveObjectReport();
    EXPECT_NE(std::find(report.begin(), report.end(), "Range WBS!$B$2 (1 references)"),
              report.end());
    book->sheets.erase(book->sheets.begin());
    EXPECT_EQ(Put(cell.get(), OLESTR(".Value=%d"), 5), S_OK);
}

TEST_F(DispatchTest, ReportsExactlyTheObjectsStillHeldWhateverOrderTheOthersWentIn) {
    const long before = sheethost::LiveObjectCount();
    const auto range = [&](int row) {
        return Object::Adopt(sheethost::NewRangeObject(book, book->sheets.front(),
                                                       {sheethost::Area{row, 2, row, 2}}));
    };
    Object oldest = range(2);
    Object middle = range(3);
    Object newest = range(4);
    Object last = range(5);
    middle = Object();
    last = Object();
    EXPECT_EQ(sheethost::LiveObjectCount(), before + 2);
    const auto held = [](const char* description) {
        const auto report = sheethost::LiveObjectReport();
        return std::count(report.begin(), report.end(), description);
    };
    EXPECT_EQ(held("Range WBS!$B$2 (1 references)"), 1);
    EXPECT_EQ(held("Range WBS!$B$3 (1 references)"), 0);
    EXPECT_EQ(held("Range WBS!$B$4 (1 references)"), 1);
    EXPECT_EQ(held("Range WBS!$B$5 (1 references)"), 0);
    oldest = Object();
    Object another = range(6);  // linked in after the oldest left
    newest = Object();
    EXPECT_EQ(sheethost::LiveObjectCount(), before + 1);
    EXPECT_EQ(held("Range WBS!$B$6 (1 references)"), 1);
    EXPECT_EQ(held("Range WBS!$B$4 (1 references)"), 0);
}

}  // namespace

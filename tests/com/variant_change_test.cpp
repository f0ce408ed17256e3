// Conversion expectations written once: natively they check our conversions, on Windows those
// of the system runtime.
#include <gtest/gtest.h>

#include "com/com.h"
#include "variant_testing.h"

namespace {

std::string ConvertBool(VARIANT_BOOL value, VARTYPE type, USHORT flags = 0) {
    ScopedVariant source;
    source.value.vt = VT_BOOL;
    source.value.boolVal = value;
    return Convert(source.value, type, flags);
}

TEST(ChangeType, DoublesToTextKeepFifteenSignificantDigits) {
    EXPECT_EQ(ConvertDouble(0.5, VT_BSTR), "0.5");
    EXPECT_EQ(ConvertDouble(-2.5, VT_BSTR), "-2.5");
    EXPECT_EQ(ConvertDouble(-0.0, VT_BSTR), "0");
    EXPECT_EQ(ConvertDouble(1.0 / 3, VT_BSTR), "0.333333333333333");
    EXPECT_EQ(ConvertDouble(123456789012345.6, VT_BSTR), "123456789012346");
    EXPECT_EQ(ConvertDouble(1234567890123456.0, VT_BSTR), "1.23456789012346E+15");
    EXPECT_EQ(ConvertDouble(999999999999999.9, VT_BSTR), "1E+15");
    EXPECT_EQ(ConvertDouble(1e20, VT_BSTR), "1E+20");
    EXPECT_EQ(ConvertDouble(0.0001, VT_BSTR), "0.0001");
    EXPECT_EQ(ConvertDouble(1e-5, VT_BSTR), "1E-05");
    EXPECT_EQ(ConvertDouble(-1e-300, VT_BSTR), "-1E-300");
}

TEST(ChangeType, OtherNumbersToText) {
    ScopedVariant single;
    single.value.vt = VT_R4;
    single.value.fltVal = 16777216.0f;
    EXPECT_EQ(Convert(single.value, VT_BSTR), "1.677722E+07");
    single.value.fltVal = 0.1f;
    EXPECT_EQ(Convert(single.value, VT_BSTR), "0.1");
    ScopedVariant whole;
    whole.value.vt = VT_UI4;
    whole.value.ulVal = 4294967295u;
    EXPECT_EQ(Convert(whole.value, VT_BSTR), "4294967295");
    whole.value.vt = VT_I8;
    whole.value.llVal = -9223372036854775807LL - 1;
    EXPECT_EQ(Convert(whole.value, VT_BSTR), "-9223372036854775808");
}

TEST(ChangeType, TextToNumbersAcceptsBlanksSignsSeparatorsAndExponents) {
    EXPECT_EQ(ConvertText("  12  ", VT_I4), "12");
    EXPECT_EQ(ConvertText("\t1\r\n", VT_I4), "1");
    EXPECT_EQ(ConvertText("+5", VT_I4), "5");
    EXPECT_EQ(ConvertText("5-", VT_I4), "-5");
    EXPECT_EQ(ConvertText("- 5", VT_I4), "-5");
    EXPECT_EQ(ConvertText("(5)", VT_R8), "-5");
    EXPECT_EQ(ConvertText("1,000.5", VT_R8), "1000.5");
    EXPECT_EQ(ConvertText("5,", VT_I4), "5");
    EXPECT_EQ(ConvertText(".5", VT_R8), "0.5");
    EXPECT_EQ(ConvertText("1.5e1", VT_I4), "15");
    EXPECT_EQ(ConvertText("1E+3", VT_R8), "1000");
    EXPECT_EQ(ConvertText("1e-400", VT_R8), "0");
    EXPECT_EQ(ConvertText("&H10", VT_I4), "16");
    EXPECT_EQ(ConvertText("&O17", VT_I4), "15");
    EXPECT_EQ(ConvertText("&HFFFF", VT_I2), "-1");
}

TEST(ChangeType, TextThatIsNoNumberIsATypeMismatch) {
    for (const char* text : {"", " ", "abc", "12abc", ",5", ".", "1e", "e5", "--5", "(5", "&H",
                             "&O8", "1.5.2", "True"}) {
        EXPECT_EQ(ConvertText(text, VT_I4), "TYPEMISMATCH") << text;
    }
    EXPECT_EQ(ConvertText("1e400", VT_R8), "OVERFLOW");
    EXPECT_EQ(ConvertText("&HFFFFFFFF", VT_R8), "OVERFLOW");
}

TEST(ChangeType, RoundsHalfToEven) {
    const std::pair<double, const char*> cases[] = {
        {0.5, "0"}, {1.5, "2"}, {2.5, "2"}, {3.5, "4"}, {-0.5, "0"}, {-1.5, "-2"}, {-2.5, "-2"}};
    for (const auto& [number, expected] : cases) EXPECT_EQ(ConvertDouble(number, VT_I4), expected);
    EXPECT_EQ(ConvertText("2.5", VT_I4), "2");
    EXPECT_EQ(ConvertText("-2.5", VT_I4), "-2");
    EXPECT_EQ(ConvertText("2.50000001", VT_I4), "3");
    EXPECT_EQ(ConvertText("0.1", VT_I4), "0");
}

TEST(ChangeType, OverflowsAtTheEdgesOfEachIntegerType) {
    EXPECT_EQ(ConvertDouble(2147483647.4, VT_I4), "2147483647");
    EXPECT_EQ(ConvertDouble(2147483647.5, VT_I4), "OVERFLOW");
    EXPECT_EQ(ConvertDouble(-2147483648.5, VT_I4), "-2147483648");
    EXPECT_EQ(ConvertDouble(-2147483648.6, VT_I4), "OVERFLOW");
    EXPECT_EQ(ConvertDouble(32767.5, VT_I2), "OVERFLOW");
    EXPECT_EQ(ConvertDouble(-32768.5, VT_I2), "-32768");
    EXPECT_EQ(ConvertDouble(-0.5, VT_UI4), "0");
    EXPECT_EQ(ConvertDouble(-0.6, VT_UI4), "OVERFLOW");
    EXPECT_EQ(ConvertDouble(4294967295.5, VT_UI4), "OVERFLOW");
    EXPECT_EQ(ConvertDouble(4.7e18, VT_I8), "OVERFLOW");
    EXPECT_EQ(ConvertText("32767", VT_I2), "32767");
    EXPECT_EQ(ConvertText("32768", VT_I2), "OVERFLOW");
    EXPECT_EQ(ConvertText("-32769", VT_I2), "OVERFLOW");
    EXPECT_EQ(ConvertText("-1", VT_UI4), "OVERFLOW");
    EXPECT_EQ(ConvertText("9223372036854775807", VT_I8), "9223372036854775807");
    EXPECT_EQ(ConvertText("9223372036854775808", VT_I8), "OVERFLOW");
    ScopedVariant wide;
    wide.value.vt = VT_I4;
    wide.value.lVal = 32768;
    EXPECT_EQ(Convert(wide.value, VT_I2), "OVERFLOW");
}

TEST(ChangeType, BooleansAreMinusOneAndZero) {
    EXPECT_EQ(ConvertBool(VARIANT_TRUE, VT_BSTR), "-1");
    EXPECT_EQ(ConvertBool(VARIANT_FALSE, VT_BSTR), "0");
    EXPECT_EQ(ConvertBool(VARIANT_TRUE, VT_BSTR, VARIANT_ALPHABOOL), "True");
    EXPECT_EQ(ConvertBool(VARIANT_FALSE, VT_BSTR, VARIANT_ALPHABOOL), "False");
    EXPECT_EQ(ConvertBool(VARIANT_TRUE, VT_I4), "-1");
    EXPECT_EQ(ConvertBool(VARIANT_TRUE, VT_R8), "-1");
    // Unsigned types receive the bits of -1.
    EXPECT_EQ(ConvertBool(VARIANT_TRUE, VT_UI1), "255");
    EXPECT_EQ(ConvertDouble(0.0, VT_BOOL), "0");
    EXPECT_EQ(ConvertDouble(0.1, VT_BOOL), "-1");
}

TEST(ChangeType, TextToBooleanTakesTheWordsInAnyCaseOrANumber) {
    for (const char* text : {"True", "true", "TRUE", "#TRUE#", "-1", "2.5", "&H10"})
        EXPECT_EQ(ConvertText(text, VT_BOOL), "-1") << text;
    for (const char* text : {"False", "fAlSe", "#FALSE#", "0", " 0 "})
        EXPECT_EQ(ConvertText(text, VT_BOOL), "0") << text;
    for (const char* text : {" True", "yes", ""})
        EXPECT_EQ(ConvertText(text, VT_BOOL), "TYPEMISMATCH") << text;
}

TEST(ChangeType, DatesToTextInTheInvariantLocale) {
    ScopedVariant date;
    date.value.vt = VT_DATE;
    const std::pair<double, const char*> cases[] = {{45000.0, "03/15/2023"},
                                                    {45000.5, "03/15/2023 12:00:00"},
                                                    {0.0, "00:00:00"},
                                                    {0.25, "06:00:00"},
                                                    {0.1, "02:24:00"},
                                                    {-1.0, "12/29/1899"},
                                                    {-1.25, "12/29/1899 06:00:00"},
                                                    {45000.999999, "03/16/2023 00:00:00"},
                                                    {-657434.0, "01/01/100"},
                                                    {2958465.99999, "12/31/9999 23:59:59"}};
    for (const auto& [serial, expected] : cases) {
        date.value.date = serial;
        EXPECT_EQ(Convert(date.value, VT_BSTR), expected) << serial;
    }
    date.value.date = 2958466.0;
    EXPECT_EQ(Convert(date.value, VT_BSTR), "INVALIDARG");
}

TEST(ChangeType, TextToDates) {
    const std::pair<const char*, const char*> cases[] = {
        {"2023-03-15", "45000"},
        {"3/15/2023", "45000"},
        {"03/15/2023 14:30", "45000.604166666672"},
        {"14:30 3/15/2023", "45000.604166666672"},
        {"March 15, 2023", "45000"},
        {"15-Mar-2023", "45000"},
        {"Wednesday, March 15, 2023", "45000"},
        {"13/12/2023", "45273"},  // not a month first, so day first
        {"12:30:15", "0.52100694444444451"},
        {"14.30", "0.60416666666666674"},
        {"2:30 PM", "0.60416666666666674"},
        {"12:00 AM", "0"},
        {"1899-12-29 06:00", "-1.25"},
        {"1/2/49", "54425"},  // two-digit years run from 1950 to 2049
        {"1/2/50", "18265"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(ConvertText(text, VT_DATE), expected) << text;
    for (const char* text : {"2023-02-30", "25:00", "12:60", "45000", "abc", "-3/15/2023",
                             "3//15/2023", "1.5.2023", ""})
        EXPECT_EQ(ConvertText(text, VT_DATE), "TYPEMISMATCH") << text;
}

TEST(ChangeType, NumbersToDatesStayInTheDateRange) {
    EXPECT_EQ(ConvertDouble(-1.25, VT_DATE), "-1.25");
    EXPECT_EQ(ConvertDouble(2958465.5, VT_DATE), "2958465.5");
    EXPECT_EQ(ConvertDouble(2958466.0, VT_DATE), "OVERFLOW");
    EXPECT_EQ(ConvertDouble(-657435.0, VT_DATE), "OVERFLOW");
}

TEST(ChangeType, EmptyNullAndErrorValues) {
    ScopedVariant empty;
    EXPECT_EQ(Convert(empty.value, VT_I4), "0");
    EXPECT_EQ(Convert(empty.value, VT_R8), "0");
    EXPECT_EQ(Convert(empty.value, VT_BOOL), "0");
    EXPECT_EQ(Convert(empty.value, VT_BSTR), "");
    ScopedVariant null;
    null.value.vt = VT_NULL;
    EXPECT_EQ(Convert(null.value, VT_NULL), "(null)");
    EXPECT_EQ(Convert(null.value, VT_I4), "TYPEMISMATCH");
    EXPECT_EQ(Convert(null.value, VT_BSTR), "TYPEMISMATCH");
    ScopedVariant error;
    error.value.vt = VT_ERROR;
    error.value.scode = DISP_E_PARAMNOTFOUND;
    EXPECT_EQ(Convert(error.value, VT_I4), "TYPEMISMATCH");
    EXPECT_EQ(Convert(error.value, VT_BSTR), "TYPEMISMATCH");
}

TEST(ChangeType, AFailedConversionLeavesTheDestinationAsItWas) {
    ScopedVariant source, destination;
    SetText(source, "abc");
    SetText(destination, "kept");
    const BSTR kept = destination.value.bstrVal;
    EXPECT_EQ(VariantChangeType(&destination.value, &source.value, 0, VT_I4), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(destination.value.vt, VT_BSTR);
    EXPECT_EQ(destination.value.bstrVal, kept);
    EXPECT_EQ(Describe(destination.value), "kept");
}

TEST(ChangeType, ConvertsInPlace) {
    ScopedVariant value;
    SetText(value, "42");
    ASSERT_EQ(VariantChangeType(&value.value, &value.value, 0, VT_I4), S_OK);
    EXPECT_EQ(value.value.vt, VT_I4);
    EXPECT_EQ(value.value.lVal, 42);
    ASSERT_EQ(VariantChangeType(&value.value, &value.value, 0, VT_BSTR), S_OK);
    EXPECT_EQ(Describe(value.value), "42");
    SetText(value, "x");
    EXPECT_EQ(VariantChangeType(&value.value, &value.value, 0, VT_R8), DISP_E_TYPEMISMATCH);
    EXPECT_EQ(Describe(value.value), "x");
}

TEST(ChangeType, ReplacingADestinationReleasesItsObject) {
    CountingObject object;
    object.defaultValue.value.vt = VT_I4;
    object.defaultValue.value.lVal = 7;
    ScopedVariant value;
    value.value.vt = VT_DISPATCH;
    value.value.pdispVal = &object;
    object.AddRef();
    ASSERT_EQ(VariantChangeType(&value.value, &value.value, 0, VT_I4), S_OK);
    EXPECT_EQ(value.value.lVal, 7);
    EXPECT_EQ(object.references, 1u);
}

TEST(ChangeType, ObjectsGiveTheirDefaultValue) {
    CountingObject object;
    object.defaultValue.value.vt = VT_R8;
    object.defaultValue.value.dblVal = 2.5;
    ScopedVariant source;
    source.value.vt = VT_DISPATCH;
    source.value.pdispVal = &object;
    EXPECT_EQ(Convert(source.value, VT_BSTR), "2.5");
    EXPECT_EQ(Convert(source.value, VT_I4), "2");
    EXPECT_EQ(object.defaultValueReads, 2);
    EXPECT_EQ(Convert(source.value, VT_I4, VARIANT_NOVALUEPROP), "TYPEMISMATCH");
    EXPECT_EQ(Convert(source.value, VT_ERROR), "TYPEMISMATCH");
    EXPECT_EQ(object.defaultValueReads, 2);
    EXPECT_EQ(object.references, 1u);
    source.value.vt = VT_EMPTY;
}

TEST(ChangeType, DefaultValuesThatCannotBeHad) {
    CountingObject object;
    ScopedVariant source;
    source.value.vt = VT_DISPATCH;
    source.value.pdispVal = &object;
    EXPECT_EQ(Convert(source.value, VT_I4), "TYPEMISMATCH");  // no default member
    // The default value is converted without the caller's flags, as the runtime does.
    object.defaultValue.value.vt = VT_BOOL;
    object.defaultValue.value.boolVal = VARIANT_TRUE;
    EXPECT_EQ(Convert(source.value, VT_BSTR, VARIANT_ALPHABOOL), "-1");
    source.value.pdispVal = nullptr;
    EXPECT_EQ(Convert(source.value, VT_I4), "BADVARTYPE");
    source.value.vt = VT_EMPTY;
}

TEST(ChangeType, BetweenObjectTypesTheInterfaceIsQueried) {
    CountingObject object;
    ScopedVariant source, result;
    source.value.vt = VT_DISPATCH;
    source.value.pdispVal = &object;
    ASSERT_EQ(VariantChangeType(&result.value, &source.value, 0, VT_UNKNOWN), S_OK);
    EXPECT_EQ(result.value.vt, VT_UNKNOWN);
    EXPECT_EQ(object.references, 2u);
    VariantClear(&result.value);
    EXPECT_EQ(object.references, 1u);
    source.value.vt = VT_EMPTY;
}

TEST(ChangeType, ReadsThroughAReference) {
    LONG number = 5;
    VARIANT reference;
    reference.vt = VT_I4 | VT_BYREF;
    reference.byref = &number;
    EXPECT_EQ(Convert(reference, VT_BSTR), "5");
}

}  // namespace

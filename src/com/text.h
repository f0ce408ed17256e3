// UTF-8 <-> UTF-16 conversion for code above the COM layer. The engine keeps its text in UTF-8;
// the host and the automation layer speak UTF-16.
#pragma once

#include <string>
#include <string_view>

#include "com/com.h"

using WideString = std::basic_string<OLECHAR>;
using WideStringView = std::basic_string_view<OLECHAR>;

WideString Widen(std::string_view utf8);
std::string Narrow(WideStringView wide);
// The text of an automation string; a null BSTR is the empty text.
std::string NarrowBstr(BSTR text);

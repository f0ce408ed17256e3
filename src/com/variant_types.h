// Helpers shared by the portable variant functions.
#pragma once

#ifndef _WIN32

#include <cstddef>

#include "com/com.h"

// Whether `type` names a value this subset can hold: a plain scalar, string or object type, or a
// reference to one, or an array of any of these but an empty or a null.
bool IsValidVariantType(VARTYPE type);

// The bytes one value of `type` takes, as an array element or behind a reference; 0 for a type
// that has no stored value (VT_EMPTY, VT_NULL, references and arrays).
std::size_t ValueSize(VARTYPE type);

#endif  // _WIN32

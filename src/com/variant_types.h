// Helpers shared by the portable variant functions.
#pragma once

#ifndef _WIN32

#include "com/com.h"

// Whether `type` names a value this subset can hold: a plain scalar, string or object type, or a
// reference to one, or an array of any of these but an empty or a null.
bool IsValidVariantType(VARTYPE type);

#endif  // _WIN32

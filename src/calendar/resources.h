// The resources of the resource sheet: who does the work. Scheduling moves each resource's
// next-free time as it places the resource's tasks one after another.
#pragma once

#include <string>

#include "calendar/bstr.h"

struct ResourceRecord {
    std::string name;  // column B
    Bstr keyText;      // column C: what task rows name in their resource cell
    // Scheduling's working values, all 0 when the record is made.
    double releaseDate = 0.0;  // after this the resource is not available; 0 = none
    double nextFree = 0.0;     // end of the resource's last placed task; 0 = free
    double rate = 0.0;         // cost per unit of planned value; 0 = none
};

// Empties the resource list and fills it from the resource sheet, from row 4 down to the first
// row whose key cell (column C) is empty.
void LoadResources();
// Empties the resource list, freeing its records.
void FreeResources();
// The first resource whose key text equals `key` exactly, or null.
ResourceRecord* FindResource(const Bstr& key);
ResourceRecord* FirstResource();

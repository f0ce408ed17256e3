#include "calendar/resources.h"

#include "core/engine_state.h"
#include "core/strdict.h"
#include "settings/settings.h"
#include "values/values.h"
#include "workbook/workbook.h"

namespace {

// Rows above this are the resource sheet's headings.
constexpr std::int64_t kFirstResourceRow = 4;
constexpr std::int64_t kNameColumn = 2;
constexpr std::int64_t kKeyColumn = 3;

// Keyed by the hexadecimal bytes of each resource's key text, in sheet order.
StrDict<ResourceRecord>& Resources() {
    // Never destroyed: unloading the library without kpQuit must not free what the host
    // may already have freed. kpQuit empties it.
    static auto* const resources = new StrDict<ResourceRecord>(Ownership::kOwnsRecords);
    return *resources;
}

}  // namespace

void LoadResources() {
    FreeResources();
    const XlObject sheet = EngineResourceSheet();
    const std::int64_t rateColumn = EngineSettings().resourceRateColNo;
    for (std::int64_t row = kFirstResourceRow;; ++row) {
        const WideString key = sheet.Cell(row, kKeyColumn).GetWide("Value");
        if (key.empty()) break;
        auto* resource = new ResourceRecord;
        resource->name = sheet.Cell(row, kNameColumn).GetValue();
        // The rate column is optional: without it every rate stays 0 (no rate).
        if (rateColumn > 0) resource->rate = values::Val(sheet.Cell(row, rateColumn).GetValue());
        BstrSet(resource->keyText, key);
        Resources().Add(BstrToHex(resource->keyText), resource);
    }
}

void FreeResources() {
    Resources().Clear(true);
}

ResourceRecord* FindResource(const Bstr& key) {
    return Resources().Find(BstrToHex(key));
}

ResourceRecord* FirstResource() {
    return Resources().ItemAt(1);
}

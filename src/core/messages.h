// Messages to the user. Each finding is shown at once, one box per finding, and the command carries
// on afterwards. A host that cannot show windows (tests, the command line, batch runs) sets a
// receiver, which then gets every message instead of a message box.
#pragma once

#include <string_view>

#include "com/com.h"

// Receives the message text (UTF-16, NUL-terminated) and the box's icon (MB_ICONWARNING, ...).
using MessageReceiver = void (*)(const OLECHAR* text, UINT icon);

// The title of every message box the engine shows.
inline constexpr const char kMessageTitle[] = "Vantora Chart";

// A null receiver restores message boxes.
void SetMessageReceiver(MessageReceiver receiver);

// Shows `text` (UTF-8) with `icon`: to the receiver when one is set, else as a message box with the
// title above.
void ShowMessage(std::string_view text, UINT icon);

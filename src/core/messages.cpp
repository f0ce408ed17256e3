#include "core/messages.h"

#include "com/text.h"

namespace {

MessageReceiver messageReceiver = nullptr;

}  // namespace

void SetMessageReceiver(MessageReceiver receiver) {
    messageReceiver = receiver;
}

void ShowMessage(std::string_view text, UINT icon) {
    const WideString wide = Widen(text);
    if (messageReceiver != nullptr) {
        messageReceiver(wide.c_str(), icon);
        return;
    }
    const WideString title = Widen(kMessageTitle);
    MessageBoxW(nullptr, wide.c_str(), title.c_str(), MB_OK | icon);
}

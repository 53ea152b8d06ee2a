// bad_value.cpp: telling the person that a field's value is bad.

#include "platform/common/input_rules.h"
#include "platform/desktop.h"

namespace hexlane::platform {

void report_bad_value(const InputRule* rule) {
    const bool tells = rule != nullptr && rule->message != nullptr;
    if (!tells || rule->beeps) {
        message_beep(BoxIcon::EXCLAMATION);
    }
    if (!tells) {
        return;
    }
    const char* title = rule->message_title != nullptr ? rule->message_title : "";
    message_box(rule->message, title, BoxIcon::EXCLAMATION, BUTTONS_OK);
}

}  // namespace hexlane::platform

#include "shell/boxes.h"

#include "platform/text.h"
#include "shell/window.h"

namespace hexlane {

using namespace platform;

int show_box(const BoxText& box, const char* first, const char* second) {
    char text[4 * PATH_SIZE] = "";
    const char* arguments[] = {first, second};
    int used = 0;
    const char* from = box.text;
    while (*from != '\0') {
        if (from[0] == '%' && from[1] == 's' && used < 2) {
            append_text(text, sizeof text, arguments[used++]);
            from += 2;
        } else {
            const char piece[2] = {*from++, '\0'};
            append_text(text, sizeof text, piece);
        }
    }
    set_caret_visible(false);
    const int answer = message_box(text, box.title, box.icon, box.buttons);
    set_caret_visible(true);
    return answer;
}

}  // namespace hexlane

// modal.cpp: the stack of what is up, and message boxes and file dialogs on it. Views are in views.cpp.

#include "platform/scripted/modal.h"

#include "platform/common/file_questions.h"
#include "platform/common/input_rules.h"
#include "platform/scripted/message_queue.h"
#include "platform/scripted/record.h"
#include "platform/scripted/test_hooks.h"

#include <algorithm>

namespace hexlane::platform {

namespace {

bool (*person)() = nullptr;
LongAct* long_acts = nullptr;  // the innermost first
std::vector<ShownBox> boxes;   // kept for unit tests only

const char* icon_name(BoxIcon icon) {
    switch (icon) {
    case BoxIcon::STOP:
        return "stop";
    case BoxIcon::QUESTION:
        return "question";
    case BoxIcon::EXCLAMATION:
        return "exclamation";
    case BoxIcon::INFORMATION:
        return "information";
    case BoxIcon::NONE:
        break;
    }
    return "none";
}

std::vector<std::string> button_labels(const std::string& buttons) {
    std::vector<std::string> labels;
    for (std::size_t at = 0;;) {
        const std::size_t bar = buttons.find('|', at);
        char plain[128];
        plain_label(buttons.substr(at, bar - at).c_str(), plain, sizeof plain);
        labels.push_back(plain);
        if (bar == std::string::npos) {
            return labels;
        }
        at = bar + 1;
    }
}

// Long acts further out have been stopped by the modal that opened during them.
void interrupt_long_act() {
    if (long_acts != nullptr && !long_acts->stopped) {
        long_acts->stopped = true;
        if (long_acts->done < long_acts->total) {
            record_line("stopped after " + std::to_string(long_acts->done));
        }
    }
}

int run_file_dialog(FileDialog* dialog, bool saves) {
    const std::string kind = saves ? "file-dialog save" : "file-dialog open";
    record_line(kind + " " + quoted(dialog->title) + " filter " + std::to_string(dialog->filter_index) +
                " dir " + quoted(dialog->start_folder));
    Modal modal;
    modal.kind = ModalKind::FILE_DIALOG;
    modal.name = kind + " " + quoted(dialog->title);
    modal.dialog = dialog;
    modal.saves = saves;
    run_modal(&modal);
    return modal.result;
}

}  // namespace

void set_person(bool (*act)()) {
    person = act;
}

bool person_acts() {
    return person != nullptr && person();
}

Modal* top_modal() {
    return desktop.modals.empty() ? nullptr : desktop.modals.back();
}

void run_modal(Modal* modal) {
    if (desktop.modals.empty()) {
        main_window_loses_focus();
    }
    desktop.modals.push_back(modal);
    desktop.modal_openings++;
    // What is held over a pane is let go over the modal, and nobody hears of it.
    desktop.person.shift = desktop.person.ctrl = desktop.person.button_down = false;
    desktop.person.keys_down.clear();
    interrupt_long_act();
    if (modal->kind == ModalKind::VIEW) {
        deliver(modal->view, WM_INITDIALOG, 0, 0);
    }
    for (serve_messages(); !modal->done; serve_messages()) {
        if (!person_acts()) {
            stop_run("nothing answers " + modal->name);
        }
    }
    std::erase(desktop.modals, modal);
    if (!modal->closing_line.empty()) {
        record_line(modal->closing_line);
    }
    main_window_gains_focus();
}

void begin_long_act(LongAct* act, int64_t total) {
    *act = {0, total, false, long_acts};
    long_acts = act;
}

void end_long_act(LongAct* act) {
    long_acts = act->outer;
}

int message_box(const char* text, const char* title, BoxIcon icon, const char* buttons) {
    record_line("message " + quoted(text) + " title " + quoted(title) + " icon " + icon_name(icon) +
                " buttons " + quoted(buttons));
    Modal modal;
    modal.kind = ModalKind::BOX;
    modal.name = "message " + quoted(text);
    modal.buttons = button_labels(buttons);
    const std::size_t number = boxes.size();
    if (!record_is_printed()) {
        boxes.push_back({text, title, icon, buttons, ""});
    }
    run_modal(&modal);
    if (number < boxes.size()) {
        boxes[number].pressed = modal.buttons[static_cast<std::size_t>(modal.result)];
    }
    return modal.result;
}

const std::vector<ShownBox>& shown_boxes() {
    return boxes;
}

void forget_shown_boxes() {
    boxes.clear();
}

int choose_open_file(FileDialog* dialog) {
    return run_file_dialog(dialog, false);
}

int choose_save_file(FileDialog* dialog) {
    return run_file_dialog(dialog, true);
}

}  // namespace hexlane::platform

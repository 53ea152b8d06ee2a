// menu.cpp: menu bar, popups and entries as Qt widgets, and what the pointer over them tells the program.

#include "platform/qt/menu.h"

#include <map>

#include <QApplication>
#include <QMenu>
#include <QProxyStyle>
#include <QStyleOption>
#include <QTimer>

#include "platform/qt/dispatch.h"

namespace hexlane::platform {

namespace {

struct Entry {
    QAction* action;
    const char* hint;
    bool checked;  // the program's word; a click changes nothing by itself
};

// The bar of any desktop's style, with a right end and with Alt to get into it.
class BarStyle final : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        switch (hint) {
        case SH_DrawMenuBarSeparator:  // what stands behind a separator goes to the right end
        case SH_MenuBar_AltKeyNavigation:
        case SH_Menu_AllowActiveAndDisabled:  // grayed entries show their hints too
            return 1;
        default:
            return QProxyStyle::styleHint(hint, option, widget, data);
        }
    }

    // Some styles show only an open popup; after Alt the keys' place must be seen as well.
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (element != CE_MenuBarItem || item == nullptr || !(item->state & State_Selected)) {
            QProxyStyle::drawControl(element, option, painter, widget);
            return;
        }
        QStyleOptionMenuItem chosen(*item);
        chosen.state |= State_Sunken;
        QProxyStyle::drawControl(element, &chosen, painter, widget);
    }
};

QMenuBar* menu_bar = nullptr;
WindowHandle menu_window = NO_WINDOW;
std::map<int, Entry> entries;
std::map<int, const char*> popup_hints;
int selected_id = 0;  // what the last WM_MENUSELECT told

Entry* find_entry(int id) {
    const auto found = entries.find(id);
    return found == entries.end() ? nullptr : &found->second;
}

void tell_selected(int id) {
    if (id != selected_id) {
        selected_id = id;
        call_window(menu_window, WM_MENUSELECT, id, 0);
    }
}

// From one popup to its neighbour the menu is never closed in between.
void tell_closed_soon() {
    QTimer::singleShot(0, menu_bar, [] {
        if (QApplication::activePopupWidget() == nullptr) {
            tell_selected(0);
        }
    });
}

void choose(int id) {
    if (const Entry* entry = find_entry(id)) {
        entry->action->setChecked(entry->checked);
        tell_selected(0);
        post_message(menu_window, WM_COMMAND, id, 0);
    }
}

void show_checked(Entry* entry, bool checked) {
    entry->checked = checked;
    entry->action->setCheckable(true);
    entry->action->setChecked(checked);
}

void add_entry(QMenu* menu, const MenuEntry& spec) {
    if (spec.id == 0) {
        menu->addSeparator();
        return;
    }
    QAction* action = menu->addAction(QString::fromUtf8(spec.text));
    action->setMenuRole(QAction::NoRole);
    action->setEnabled(!spec.grayed);
    Entry& entry = entries[spec.id];
    entry = {action, spec.hint, false};
    if (spec.checked) {
        show_checked(&entry, true);
    }
    const int id = spec.id;
    QObject::connect(action, &QAction::hovered, menu, [id] { tell_selected(id); });
    QObject::connect(action, &QAction::triggered, menu, [id] { choose(id); });
}

QMenu* add_popup(QMenuBar* bar, const MenuPopup& spec, QStyle* style) {
    if (spec.at_right) {
        bar->addSeparator();
    }
    QMenu* menu = bar->addMenu(QString::fromUtf8(spec.text));
    menu->setStyle(style);
    popup_hints[spec.id] = spec.hint;
    const int id = spec.id;
    QObject::connect(menu, &QMenu::aboutToShow, menu, [id] { tell_selected(id); });
    QObject::connect(menu, &QMenu::aboutToHide, menu, tell_closed_soon);
    return menu;
}

}  // namespace

void build_menu(QMenuBar* bar, const MainWindowSpec& spec, WindowHandle window) {
    menu_bar = bar;
    menu_window = window;
    auto* style = new BarStyle;
    style->setParent(bar);
    bar->setStyle(style);
    bar->setNativeMenuBar(false);
    bar->setAccessibleName(QStringLiteral("Menu"));
    std::map<int, QMenu*> menus;
    for (int i = 0; i < spec.popup_count; i++) {
        menus[spec.popups[i].id] = add_popup(bar, spec.popups[i], style);
    }
    for (int i = 0; i < spec.entry_count; i++) {
        add_entry(menus.at(spec.entries[i].popup), spec.entries[i]);
    }
}

bool menu_entry_enabled(int id) {
    const Entry* entry = find_entry(id);
    return entry == nullptr || entry->action->isEnabled();
}

const char* menu_hint(int id) {
    const auto popup = popup_hints.find(id);
    if (popup != popup_hints.end()) {
        return popup->second != nullptr ? popup->second : "";
    }
    const Entry* entry = find_entry(id);
    return entry != nullptr && entry->hint != nullptr ? entry->hint : "";
}

void open_first_menu() {
    if (menu_bar != nullptr && !menu_bar->actions().isEmpty()) {
        menu_bar->setActiveAction(menu_bar->actions().constFirst());
    }
}

void forget_menu() {
    entries.clear();
    popup_hints.clear();
    menu_bar = nullptr;
    selected_id = 0;
}

void set_menu_enabled(int id, bool enabled) {
    if (Entry* entry = find_entry(id)) {
        entry->action->setEnabled(enabled);
    }
}

void set_menu_checked(int id, bool checked) {
    if (Entry* entry = find_entry(id)) {
        show_checked(entry, checked);
    }
}

void set_menu_text(int id, const char* text) {
    if (Entry* entry = find_entry(id)) {
        entry->action->setText(QString::fromUtf8(text));
    }
}

}  // namespace hexlane::platform

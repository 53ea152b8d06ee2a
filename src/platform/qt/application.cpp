// application.cpp: QApplication, and the parts of it that must be settled before the first window.

#include "platform/qt/application.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <QApplication>
#include <QIcon>
#include <QLibrary>
#include <QSettings>
#include <QSocketNotifier>

#include "platform/desktop.h"
#include "platform/posix/instance_server.h"
#include "platform/qt/dispatch.h"
#include "platform/qt/main_window.h"

namespace hexlane::platform {

namespace {

std::unique_ptr<QApplication> application;
std::unique_ptr<QSocketNotifier> instance_watch;

bool environment_has(const char* name) {
    return !qEnvironmentVariableIsEmpty(name);
}

// Qt gives up by a fatal message when it finds no display; only this handler can turn that into a plain
// answer. The reason stands in the first warning of its platform part.
void tell_start_failure(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    static QString reason;
    if (reason.isEmpty() && type == QtWarningMsg && QByteArray(context.category).startsWith("qt.qpa")) {
        reason = text;
    }
    if (type == QtFatalMsg) {
        std::fprintf(stderr, "hexlane: no display can be used: %s\n",
                     qPrintable(reason.isEmpty() ? text : reason));
        std::_Exit(1);
    }
}

// Qt would keep a file of its own about the file dialogs; a place that cannot exist keeps it from that.
void refuse_toolkit_settings() {
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
}

QIcon program_icon() {
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        icon.addFile(QStringLiteral(":/hexlane/icon/hexlane-%1.png").arg(size));
    }
    return icon;
}

void serve_request(InstanceRequest request) {
    MainWindow* window = main_window();
    if (window == nullptr) {
        return;
    }
    if (request == InstanceRequest::OPEN) {
        call_window(window->handle, HANDOVER_MESSAGE, 0, 0);
        return;
    }
    show_window(window->handle, ShowWindow::RESTORED);
    raise_window(window->handle);
}

}  // namespace

int start_desktop(char* program) {
    if (!environment_has("QT_QPA_PLATFORM")) {
        if (!environment_has("DISPLAY") && !environment_has("WAYLAND_DISPLAY")) {
            std::fprintf(stderr, "hexlane: no display: neither DISPLAY nor WAYLAND_DISPLAY is set\n");
            return 0;
        }
        if (environment_has("DISPLAY")) {
            qputenv("QT_QPA_PLATFORM", environment_has("WAYLAND_DISPLAY") ? "xcb;wayland" : "xcb");
        }
    }
    static int argument_count = 1;
    static char* arguments[] = {program, nullptr};
    refuse_toolkit_settings();
    QtMessageHandler previous = qInstallMessageHandler(tell_start_failure);
    application = std::make_unique<QApplication>(argument_count, arguments);
    qInstallMessageHandler(previous);

    // Numbers in files and on the wire have a point in every language.
    std::setlocale(LC_NUMERIC, "C");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName(QStringLiteral("hexlane"));
    QApplication::setDesktopFileName(QStringLiteral("hexlane"));
    QApplication::setWindowIcon(program_icon());
    make_dispatcher();
    return 1;
}

void end_desktop() {
    instance_watch.reset();
    application.reset();
}

void watch_instance_socket() {
    const int socket = instance_socket();
    if (socket < 0 || instance_watch != nullptr) {
        return;
    }
    set_instance_handler(serve_request);
    instance_watch = std::make_unique<QSocketNotifier>(socket, QSocketNotifier::Read);
    QObject::connect(instance_watch.get(), &QSocketNotifier::activated, [] { serve_instance(); });
}

// On Wayland Qt has no such call; there a long run's counts may come late.
void flush_display() {
    auto* x11 = application->nativeInterface<QNativeInterface::QX11Application>();
    using FlushCall = int (*)(void*);
    static const auto flush = reinterpret_cast<FlushCall>(QLibrary::resolve("xcb", 1, "xcb_flush"));
    if (x11 != nullptr && x11->connection() != nullptr && flush != nullptr) {
        flush(x11->connection());
    }
}

}  // namespace hexlane::platform

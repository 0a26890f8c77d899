// tavrelon-password-field TOOLKIT FILE: a window with one password field of "gtk3", "gtk4" or "qt". What it holds goes
// into FILE. GTK is loaded at run time: its libraries come with the editors of the tests, what to build against does
// not.
#include <dlfcn.h>

#include <QApplication>
#include <QFile>
#include <QLineEdit>
#include <cstdlib>
#include <string_view>

namespace {

void save(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        qWarning("%s cannot be written", qPrintable(path));
}

/// A function of the libraries that were loaded.
template <typename Result, typename... Arguments>
Result call(const char* name, Arguments... arguments) {
    auto* const function = dlsym(RTLD_DEFAULT, name);
    if (!function) {
        qWarning("there is no %s", name);
        std::exit(1);
    }
    return reinterpret_cast<Result (*)(Arguments...)>(function)(arguments...);
}

void load(const char* library) {
    if (dlopen(library, RTLD_NOW | RTLD_GLOBAL))
        return;
    qWarning("%s", dlerror());
    std::exit(1);
}

QString path;

void entryChanged(void* entry, void* /*data*/) {
    save(path, call<const char*>("gtk_entry_get_text", entry));
}
void editableChanged(void* entry, void* /*data*/) {
    save(path, call<const char*>("gtk_editable_get_text", entry));
}

void follow(void* entry, void (*handler)(void*, void*)) {
    call<unsigned long>("g_signal_connect_data", entry, "changed", handler, static_cast<void*>(nullptr),
                        static_cast<void*>(nullptr), 0);
}

[[noreturn]] void runGtk3() {
    load("libgtk-3.so.0");
    call<void>("gtk_init", static_cast<int*>(nullptr), static_cast<char***>(nullptr));
    auto* const window = call<void*>("gtk_window_new", 0);
    auto* const entry = call<void*>("gtk_entry_new");
    call<void>("gtk_entry_set_visibility", entry, 0);
    call<void>("gtk_window_set_title", window, "password");
    call<void>("gtk_container_add", window, entry);
    follow(entry, entryChanged);
    call<void>("gtk_widget_show_all", window);
    call<void>("gtk_main");
    std::exit(0);
}

[[noreturn]] void runGtk4() {
    load("libgtk-4.so.1");
    call<void>("gtk_init");
    auto* const window = call<void*>("gtk_window_new");
    auto* const entry = call<void*>("gtk_password_entry_new");
    call<void>("gtk_window_set_title", window, "password");
    call<void>("gtk_window_set_child", window, entry);
    follow(entry, editableChanged);
    call<void>("gtk_window_present", window);
    call<int>("gtk_widget_grab_focus", entry);
    for (;;)
        call<int>("g_main_context_iteration", static_cast<void*>(nullptr), 1);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        qWarning("tavrelon-password-field takes a toolkit and the name of a file");
        return 2;
    }
    const std::string_view toolkit = argv[1];
    path = QString::fromLocal8Bit(argv[2]);
    if (toolkit == "gtk3")
        runGtk3();
    if (toolkit == "gtk4")
        runGtk4();
    const QApplication application(argc, argv);
    QLineEdit field;
    field.setEchoMode(QLineEdit::Password);
    field.setWindowTitle(QStringLiteral("password"));
    QObject::connect(&field, &QLineEdit::textChanged, [](const QString& text) { save(path, text.toUtf8()); });
    field.show();
    return QApplication::exec();
}

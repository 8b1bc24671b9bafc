#include "layout_rules.h"

#include <algorithm>

namespace zorvel::layout {

namespace {

template <class T>
bool contains(const std::vector<T>& list, std::string_view value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

bool isClassOfQt(std::string_view header) {
    return header.size() > 1 && header[0] == 'Q' && header.find('.') == std::string_view::npos;
}

bool matches(const std::string& pattern, std::string_view header) {
    if (!pattern.ends_with('*')) return header == pattern;
    return header.starts_with(pattern.substr(0, pattern.size() - 1));
}

}  // namespace

const std::vector<FolderRule>& folderRules() {
    static const std::vector<FolderRule> rules = {
        {"base", {}, {"utf8proc"}},
        {"metrics", {"base"}, {}},
        {"interchange", {"base", "metrics"}, {}},
        {"store", {"base"}, {"SQLite"}},
        {"model", {"base", "metrics", "interchange", "store"}, {}},
        {"platform", {"base", "store", "model"}, {"QtCore", "QtGui"}},
        {"ui/kit",
         {"base", "metrics", "model", "platform"},
         {"QtCore", "QtGui", "QtWidgets", "QtDBus"}},
        {"ui/analysis",
         {"base", "metrics", "interchange", "model", "platform", "ui/kit"},
         {"QtCore", "QtGui", "QtWidgets", "QtSvg"}},
        {"ui/main",
         {"base", "metrics", "store", "model", "platform", "ui/kit", "ui/analysis"},
         {"QtCore", "QtGui", "QtWidgets"}},
        {"app",
         {"base", "metrics", "interchange", "store", "model", "platform", "ui/kit", "ui/analysis",
          "ui/main"},
         {"QtCore", "QtGui", "QtWidgets", "QtPrintSupport"}},
        {"cli", {"base", "metrics", "interchange", "store", "model"}, {"CLI11", "nlohmann-json"}},
    };
    return rules;
}

const std::vector<LibraryRule>& libraryRules() {
    static const std::vector<LibraryRule> rules = {
        {"utf8proc", {"utf8proc.h"}, {"utf8proc"}, "base/text.h compares and normalises text"},
        {"SQLite",
         {"sqlite3.h", "SQLiteCpp/*"},
         {"SQLiteCpp", "SQLite::SQLite3", "sqlite3"},
         "SQL lives in store: use its records"},
        {"CLI11", {"CLI/*"}, {"CLI11::CLI11"}, "arguments are read in cli"},
        {"nlohmann-json",
         {"nlohmann/*"},
         {"nlohmann_json::nlohmann_json"},
         "JSON is written in cli, from plain values"},
        {"QtCore", {}, {"Qt6::Core"}, "text is UTF-8 in std::string here, QString at the widget"},
        {"QtGui", {}, {"Qt6::Gui"}, "what paints belongs to platform or ui"},
        {"QtWidgets", {}, {"Qt6::Widgets"}, "widgets belong to ui"},
        {"QtSvg", {"QSvg*"}, {"Qt6::Svg"}, "ui/analysis writes its plots as SVG"},
        {"QtPrintSupport",
         {"QPrint*"},
         {"Qt6::PrintSupport"},
         "app asks for the printer; what paints takes a QPagedPaintDevice"},
        {"QtDBus", {"QDBus*"}, {"Qt6::DBus"}, "ui/kit asks the desktop what it prefers"},
    };
    return rules;
}

const std::vector<BannedHeader>& bannedHeaders() {
    static const std::vector<BannedHeader> headers = {
        {"QtCore", "include the single class: <QString>"},
        {"QtGui", "include the single class: <QPainter>"},
        {"QtWidgets", "include the single class: <QWidget>; the module costs seconds a file"},
        {"QtTest", "tests belong to tests/"},
        {"QtConcurrent", "platform/job_queue.h runs work off the main thread"},
        {"QtPrintSupport", "include the single class: <QPrinter>"},
        {"QtSql", "SQL lives in store, over SQLite itself"},
        {"QSql", "SQL lives in store, over SQLite itself"},
        {"QThreadPool", "platform/job_queue.h runs work off the main thread"},
        {"QUndo", "undo belongs to the object context in store"},
        {"gtest/", "tests belong to tests/"},
        {"benchmark/", "benchmarks belong to bench/"},
    };
    return headers;
}

const std::vector<KeptWord>& keptWords() {
    const std::string plain = "text may come from a file: show it as plain text";
    static const std::vector<KeptWord> words = {
        {"Qt::RichText", {"app/about.cpp", "app/edit_commands.cpp", "ui/kit/popover.cpp"}, plain},
        {"Qt::MarkdownText", {}, plain},
        {"Qt::AutoText", {"ui/kit/look_style.cpp"}, plain},
        {"setHtml", {}, plain},
        {"setWhatsThis", {}, plain},
        {"QTextBrowser", {}, plain},
        {"QTextEdit", {}, plain},
        {"QSplashScreen", {}, plain},
        {"QSettings", {"platform/settings.cpp"}, "platform/settings.h never waits for a disk"},
    };
    return words;
}

const FolderRule* ruleOfFolder(std::string_view folder) {
    for (const FolderRule& rule : folderRules()) {
        if (rule.folder == folder) return &rule;
    }
    return nullptr;
}

// Which module of Qt a class is in shows when it is compiled; here any of them counts as QtCore.
const LibraryRule* libraryOfHeader(std::string_view header) {
    const LibraryRule* core = nullptr;
    for (const LibraryRule& rule : libraryRules()) {
        if (rule.name == "QtCore" && isClassOfQt(header)) core = &rule;
        for (const std::string& pattern : rule.headers) {
            if (matches(pattern, header)) return &rule;
        }
    }
    return core;
}

const LibraryRule* libraryOfTarget(std::string_view target) {
    for (const LibraryRule& rule : libraryRules()) {
        if (contains(rule.targets, target)) return &rule;
    }
    return nullptr;
}

bool mayUse(const FolderRule& rule, const LibraryRule& library) {
    return contains(rule.libraries, library.name);
}

std::string targetOfFolder(std::string_view folder) {
    std::string target = "zorvel_" + std::string(folder);
    std::replace(target.begin(), target.end(), '/', '_');
    return target;
}

}  // namespace zorvel::layout

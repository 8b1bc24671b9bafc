// The tree obeys the layout, and the check finds each way of breaking it.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "cmake_commands.h"
#include "layout_check.h"
#include "layout_rules.h"

namespace zorvel::layout {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

using Files = std::vector<std::pair<std::string, std::string>>;

// A tree of the given files below a temporary folder, gone with the object.
class Tree {
  public:
    explicit Tree(const Files& files) : root_(fs::path(::testing::TempDir()) / uniqueName()) {
        for (const auto& [path, text] : files) {
            fs::create_directories((root_ / path).parent_path());
            std::ofstream(root_ / path) << text;
        }
    }
    ~Tree() { fs::remove_all(root_); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    [[nodiscard]] const fs::path& root() const { return root_; }

  private:
    static std::string uniqueName() {
        const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
        static int count = 0;
        return std::string("layout-") + test->name() + "-" + std::to_string(++count);
    }

    fs::path root_;
};

void expectNone(const std::vector<Finding>& findings) {
    for (const Finding& finding : findings) ADD_FAILURE() << finding;
}

TEST(Layout, IncludesOfThisTree) {
    expectNone(checkIncludes(ZORVEL_SOURCE_DIR));
}

TEST(Layout, LinksOfThisTree) {
    expectNone(checkLinks(ZORVEL_SOURCE_DIR));
}

TEST(Layout, HeadersOfThisTree) {
    expectNone(checkHeaders(ZORVEL_SOURCE_DIR));
}

TEST(Layout, WordsOfThisTree) {
    expectNone(checkWords(ZORVEL_SOURCE_DIR));
}

TEST(Layout, RowsNameOnlyFoldersBelowThem) {
    for (const FolderRule& rule : folderRules()) {
        for (const std::string& folder : rule.folders) {
            const FolderRule* used = ruleOfFolder(folder);
            ASSERT_NE(used, nullptr) << folder;
            EXPECT_LT(used, &rule) << rule.folder << " uses " << folder;
        }
    }
}

TEST(Layout, FindsForbiddenIncludes) {
    struct Row {
        const char* path;
        const char* include;
        const char* message;
    };
    const std::vector<Row> rows = {
        {"src/base/a.cpp", "#include \"metrics/sqs.h\"", "it may use nothing"},
        {"src/metrics/a.h", "#include \"store/object_context.h\"", "it may use base"},
        {"src/store/a.cpp", "#include \"model/import.h\"", "store may not include"},
        {"src/cli/a.cpp", "#include \"platform/job_queue.h\"", "cli may not include"},
        {"src/ui/kit/a.h", "#include \"ui/main/window.h\"", "ui/kit may not include"},
        {"src/model/a.cpp", "#include \"../store/object_context.h\"", "write the path from src/"},
        {"src/model/a.cpp", "#include \"b.h\"", "\"model/b.h\""},
        {"src/metrics/a.cpp", "#include <QString>", "std::string"},
        {"src/model/a.cpp", "#include <sqlite3.h>", "SQL lives in store"},
        {"src/cli/a.cpp", "#include <SQLiteCpp/Database.h>", "SQL lives in store"},
        {"src/model/a.cpp", "  #  include   <utf8proc.h>  // spaced", "base/text.h"},
        {"src/store/a.cpp", "#include<nlohmann/json.hpp>", "JSON is written in cli"},
        {"src/ui/main/a.cpp", "#include <QtWidgets>", "<QWidget>"},
        {"src/ui/main/a.cpp", "#include <QtWidgets/QWidget>", "<QWidget>"},
        {"src/platform/a.cpp", "#include <QtCore>", "<QString>"},
        {"src/platform/a.cpp", "#include <QDBusConnection>", "asks the desktop"},
        {"src/ui/kit/a.cpp", "#include <QPrinter>", "QPagedPaintDevice"},
        {"src/app/a.cpp", "#include <QSqlDatabase>", "SQL lives in store"},
        {"src/odd/a.cpp", "#include <vector>", "no row"},
        {"src/ui/main/deeper/a.cpp", "", "no row"},
    };
    for (const Row& row : rows) {
        const Tree tree({{row.path, std::string("// A file.\n") + row.include + "\n"}});
        const auto findings = checkIncludes(tree.root());
        ASSERT_EQ(findings.size(), 1U) << row.path << ": " << row.include;
        EXPECT_THAT(findings[0].message, HasSubstr(row.message));
        EXPECT_EQ(findings[0].path, row.path);
    }
}

TEST(Layout, AcceptsWhatTheRowsAllow) {
    const Tree tree({
        {"src/base/a.cpp", "#include <utf8proc.h>\n#include <vector>\n#include \"base/a.h\"\n"},
        {"src/store/a.cpp", "#include <sqlite3.h>\n// #include <QString>\n"},
        {"src/metrics/CMakeLists.txt", "zorvel_library(metrics metrics LINKS zorvel_base)\n"},
        {"src/store/CMakeLists.txt", "zorvel_library(store store PRIVATE_LINKS SQLiteCpp)\n"},
        {"src/metrics/a.cpp", "#include \"base/text.h\"\n#include <sys/random.h>\n"},
        {"src/ui/main/a.cpp", "#include <QWidget>\n#include <QtMath>\n#include \"ui_window.h\"\n"},
        {"src/cli/a.cpp", "#include <CLI/CLI.hpp>\n#include <nlohmann/json.hpp>\n"},
    });
    expectNone(checkIncludes(tree.root()));
    expectNone(checkLinks(tree.root()));
}

TEST(Layout, FindsForbiddenLinks) {
    struct Row {
        const char* folder;
        const char* list;
        const char* message;
    };
    const std::vector<Row> rows = {
        {"metrics", "zorvel_library(metrics metrics\n  LINKS zorvel_store)",
         "may not link zorvel_store"},
        {"base", "zorvel_library(base base LINKS Threads::Threads zorvel_metrics)", "nothing"},
        {"model", "target_link_libraries(zorvel_model PRIVATE SQLiteCpp)", "SQL lives in store"},
        {"platform", "zorvel_library(platform platform LINKS Qt6::Widgets)", "belong to ui"},
        {"cli", "target_link_libraries(zorvel-cli PRIVATE \"Qt6::Core\")", "std::string"},
        {"app", "target_link_libraries(zorvel PRIVATE Qt6::Sql)", "are enough"},
        {"ui/kit", "target_link_libraries(zorvel_ui_kit PRIVATE Qt6::PrintSupport)",
         "app asks for the printer"},
    };
    for (const Row& row : rows) {
        const std::string path = std::string("src/") + row.folder + "/CMakeLists.txt";
        const Tree tree({{path, std::string("# zorvel_library(none)\n") + row.list + "\n"}});
        const auto findings = checkLinks(tree.root());
        ASSERT_EQ(findings.size(), 1U) << row.list;
        EXPECT_THAT(findings[0].message, HasSubstr(row.message));
        EXPECT_EQ(findings[0].line, 2);
    }
}

TEST(Layout, FindsHeadersWithoutOpening) {
    const Tree tree({{"src/base/good.h", "// What for.\n#pragma once\n"},
                     {"src/base/mute.h", "#pragma once\nint a();\n"},
                     {"src/base/twice.h", "// What for.\nint a();\n"}});
    const auto findings = checkHeaders(tree.root());
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].path, "src/base/mute.h");
    EXPECT_EQ(findings[1].path, "src/base/twice.h");
}

TEST(Layout, FindsWordsOfOtherFiles) {
    const Tree tree({{"src/app/a.cpp", "// Qt::RichText\nlabel.setTextFormat(Qt::RichText);\n"},
                     {"src/app/about.cpp", "label.setTextFormat(Qt::RichText);\n"},
                     {"src/ui/main/a.ui", "<set>https://a</set><enum>Qt::RichText</enum>\n"}});
    const auto findings = checkWords(tree.root());
    ASSERT_EQ(findings.size(), 2U);
    EXPECT_EQ(findings[0].line, 2);
    EXPECT_EQ(findings[1].path, "src/ui/main/a.ui");
}

TEST(CMakeCommands, WordsQuotesCommentsAndLines) {
    const auto commands =
        cmakeCommands("# a(b)\nset(x \"1 # 2\")\n\nif(NOT (y))\n  f(a;b # c\n d)");
    ASSERT_EQ(commands.size(), 3U);
    EXPECT_EQ(commands[0].name, "set");
    EXPECT_THAT(commands[0].words, ElementsAre("x", "1", "#", "2"));
    EXPECT_THAT(commands[1].words, ElementsAre("NOT", "y"));
    EXPECT_EQ(commands[2].name, "f");
    EXPECT_EQ(commands[2].line, 5);
    EXPECT_THAT(commands[2].words, ElementsAre("a", "b", "d"));
}

}  // namespace
}  // namespace zorvel::layout

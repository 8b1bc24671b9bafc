// The page that describes the project file says what is true, and its examples run.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "store/project_format.h"
#include "tests/store/project_file_support.h"

namespace zorvel {
namespace {

class ProjectFormatPage : public ProjectFileTest {
  protected:
    void SetUp() override {
        ProjectFileTest::SetUp();
        std::ifstream file(ZORVEL_SOURCE_DIR "/docs/file-format.md");
        std::ostringstream text;
        text << file.rdbuf();
        page_ = text.str();
        ASSERT_FALSE(page_.empty());
    }

    // The one block of that language.
    [[nodiscard]] std::string block(const std::string& language) const {
        const std::string fence = "```" + language + "\n";
        const std::size_t start = page_.find(fence);
        if (start == std::string::npos) return "";
        const std::size_t body = start + fence.size();
        return page_.substr(body, page_.find("```", body) - body);
    }

    static std::string outputOf(const std::string& command) {
        std::string output;
        FILE* const pipe = popen(command.c_str(), "r");
        if (!pipe) return "";
        for (int c = 0; (c = std::fgetc(pipe)) != EOF;) output += static_cast<char>(c);
        return pclose(pipe) == 0 ? output : output + "(failed)";
    }

    std::string page_;
};

TEST_F(ProjectFormatPage, ShowsTheTables) {
    std::string tables;
    for (const char* table : projectTables) tables += std::string(table) + " ";
    std::string shown = block("sql");
    std::replace(shown.begin(), shown.end(), '\n', ' ');
    for (std::size_t i = 0; (i = shown.find("  ")) != std::string::npos;) shown.erase(i, 1);
    EXPECT_EQ(shown, tables);
    EXPECT_NE(page_.find(std::to_string(projectApplicationId)), std::string::npos);
    EXPECT_NE(page_.find("`user_version` | " + std::to_string(projectVersion)),
              std::string::npos);
}

struct Example {
    const char* language;
    const char* program;
    const char* trial;  // fails where the program, or a package, is missing
};

class ProjectFormatExamples : public ProjectFormatPage,
                              public testing::WithParamInterface<Example> {
  protected:
    void makeExample() {
        const std::string fir = "Abies alba";
        context_.insertCensus({SharedText("North"), 51.5, -0.25, {}, {}},
                              {{fir, 12, true}, {std::nullopt, 3, true}, {"Quercus", 5, false}});
        const Census east = context_.insertCensus({SharedText("East"), 1, 2, {}, {}}, {});
        context_.insertCensus({SharedText("South"), 3, 4, {}, {}}, {{fir, 0, true},
                                                                    {"\xC3\x89"
                                                                     "chinops",
                                                                     9'000'000'000, true}});
        context_.setName(context_.insertTaxon(east), fir);
        created(path("example.zorvel"), context_);
    }
    [[nodiscard]] std::string expected() const {
        std::ostringstream species;
        std::ostringstream counts;
        for (const BlockPointer& block : context_.blocks()) {
            const std::string census = block->attributes.name->str();
            block->forEachTaxon([&](const TaxonRecord& taxon) {
                const TaxonValues& values = taxon.values;
                species << census << '\t' << (values.name ? values.name->str() : "") << '\t'
                        << values.abundance << '\t' << (values.include ? 1 : 0) << '\n';
                if (census == "North" && values.include) counts << values.abundance << '\n';
            });
        }
        return species.str() + counts.str();
    }

    ObjectContext context_;
};

TEST_P(ProjectFormatExamples, PrintWhatTheProjectHolds) {
    const Example& example = GetParam();
    const std::string script = block(example.language);
    ASSERT_FALSE(script.empty());
    if (std::system((std::string(example.trial) + " >/dev/null 2>&1").c_str()) != 0) {
        GTEST_SKIP() << example.program << " is not installed";
    }
    makeExample();
    put("script", script);
    EXPECT_EQ(outputOf("cd " + folder_.string() + " && " + example.program + " script"),
              expected());
}

INSTANTIATE_TEST_SUITE_P(
    Languages, ProjectFormatExamples,
    testing::Values(Example{"sh", "sh", "sqlite3 --version"},
                    Example{"python", "python3", "python3 -c 'import sqlite3'"},
                    Example{"r", "Rscript", "Rscript -e 'library(DBI); library(RSQLite)'"}),
    [](const auto& row) { return std::string(row.param.language); });

}  // namespace
}  // namespace zorvel

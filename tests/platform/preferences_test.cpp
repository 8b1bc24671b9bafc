#include "platform/preferences.h"

#include <gtest/gtest.h>

#include <QByteArray>
#include <string>
#include <vector>

#include "base/console.h"
#include "platform/settings.h"

namespace zorvel {
namespace {

class PreferencesTest : public ::testing::Test {
  protected:
    void SetUp() override {
        clearSettings();
        Preferences().initializePreferences();
        setConsoleSink([this](std::string_view line) { console.emplace_back(line); });
    }
    void TearDown() override { setConsoleSink({}); }

    std::vector<std::string> console;
};

TEST_F(PreferencesTest, AFreshUserGetsTheDefaultsAndStoresNothing) {
    EXPECT_EQ(Preferences().rarefactionSize(), 50);
    EXPECT_EQ(Preferences().sqsQuota(), 0.8);
    EXPECT_EQ(Preferences().confidence(), 0.95);
    EXPECT_EQ(Preferences().plotColor(), QColor(255, 0, 0, 255));
    for (const char* key : {"rarefactionSize", "sqsQuota", "confidence", "plotColor"}) {
        EXPECT_FALSE(setting(key).isValid()) << key;
    }
    EXPECT_TRUE(console.empty());
}

TEST_F(PreferencesTest, NumbersAreStoredWithinTheirLimits) {
    const std::pair<std::int64_t, std::int64_t> sizes[] = {
        {0, 1}, {-7, 1}, {1, 1}, {9007199254740993, 9007199254740993}, {INT64_MAX, INT64_MAX}};
    for (const auto& [given, stored] : sizes) {
        Preferences().setRarefactionSize(given);
        EXPECT_EQ(Preferences().rarefactionSize(), stored) << given;
    }
    const std::pair<double, double> quotas[] = {{-0.5, 0.1}, {1.5, 0.99},  {0, 0},
                                                {1.0, 1.0},  {0.05, 0.05}, {1.0000001, 0.99}};
    for (const auto& [given, stored] : quotas) {
        Preferences().setSqsQuota(given);
        EXPECT_EQ(Preferences().sqsQuota(), stored) << given;
    }
    Preferences().setPlotColor(QColor(1, 2, 3, 4));
    EXPECT_EQ(Preferences().plotColor(), QColor(1, 2, 3, 4));
}

TEST_F(PreferencesTest, AnEntryThatIsNoNumberReadsAsZero) {
    storeSetting("rarefactionSize", "many");
    storeSetting("sqsQuota", "most");
    EXPECT_EQ(Preferences().rarefactionSize(), 0);
    EXPECT_EQ(Preferences().sqsQuota(), 0.0);
}

TEST_F(PreferencesTest, AnImageBeyondTheLimitsReadsAsTheDefault) {
    const PlotImage chosen{true, 8.5, 600, false};
    Preferences().setPlotImage(chosen);
    EXPECT_EQ(Preferences().plotImage(), chosen);
    for (const char* entry : {"nan", "-1", "1e9", "wide"}) {
        for (const char* key : {"imageWidth", "imageResolution", "imageFormat"}) {
            storeSetting(key, entry);
        }
        EXPECT_EQ(Preferences().plotImage(), (PlotImage{false, 16, 300, false})) << entry;
    }
}

TEST_F(PreferencesTest, APlotThatCannotBeChosenReadsAsTheDefault) {
    Preferences().setDiversityPlot({2, 0});
    EXPECT_EQ(Preferences().diversityPlot(), (DiversityPlot{2, 0}));
    for (const char* entry : {"-1", "3", "many"}) {
        storeSetting("diversityOrder", entry);
        EXPECT_EQ(Preferences().diversityPlot(), (DiversityPlot{0, 0})) << entry;
    }
}

TEST_F(PreferencesTest, EntriesThatAreNoColourReadAsRed) {
    const struct {
        QVariant entry;
        bool warns;
    } rows[] = {
        {QVariant("blue"), false},
        {QVariant(QByteArray("{\"rgba64\":[1,2,3]}")), false},
        {QVariant(QByteArray("{\"rgba64\":[1,2,3,65536]}")), false},
        {QVariant(QByteArray("[1,2,3,4]")), false},
        {QVariant(QByteArray("\x01\x02")), true},
        {QVariant(QByteArray("{\"rgba64\":[1,2")), true},
    };
    for (const auto& row : rows) {
        console.clear();
        storeSetting("plotColor", row.entry);
        EXPECT_EQ(Preferences().plotColor(), QColor(255, 0, 0)) << row.entry.toByteArray().data();
        const std::vector<std::string> expected(
            row.warns ? 1 : 0, "WARNING: Could not read plot color from preferences");
        EXPECT_EQ(console, expected) << row.entry.toByteArray().data();
    }
}

}  // namespace
}  // namespace zorvel

#include "tables/stage_names.h"

#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "tables/words.h"

namespace zorvel {
namespace {

// Columns of one name but for the endings.
struct StageGroup {
    std::vector<std::size_t> columns;
    std::set<std::string> endings;
    bool areLong = false;
    bool isLettered = false;  // there is also an A or a B

    [[nodiscard]] bool isOfStages() const { return endings.size() > 1 && (areLong || !isLettered); }
};

// "M + F".
std::string joinedEndings(const TableHeader& header, const StageGroup& group) {
    std::set<std::string> known;
    std::string joined;
    for (const std::size_t column : group.columns) {
        const std::string name = header.name(column);
        if (known.insert(name).second) joined += (joined.empty() ? "" : " + ") + name;
    }
    return joined;
}

}  // namespace

std::map<std::size_t, std::string> namesWithoutStages(const TableHeader& header,
                                                      const TableReading& reading) {
    std::map<std::string, StageGroup> groups;
    std::vector<std::pair<std::size_t, std::string>> others;
    for (const std::size_t column : reading.columnsOf(ColumnRole::count)) {
        std::string name = header.name(column);
        const auto stem = withoutStage(name);
        if (!stem) {
            if (!name.empty()) others.emplace_back(column, std::move(name));
            continue;
        }
        StageGroup& group = groups[std::string(*stem)];
        group.columns.push_back(column);
        group.endings.insert(name.substr(stem->size()));
        group.areLong |= name.size() > stem->size() + 2;
    }
    std::map<std::size_t, std::string> names;
    if (groups.empty()) return names;
    for (const auto& [column, name] : others) {
        const auto same = groups.find(name);
        if (same != groups.end()) {
            same->second.columns.push_back(column);
            same->second.endings.insert(std::string());
        }
        const std::size_t start = name.find_last_of(" _.-") + 1;
        if (start + 1 != name.size()) continue;
        const auto lettered = groups.find(name.substr(0, start > 0 ? start - 1 : 0));
        if (lettered != groups.end()) lettered->second.isLettered = true;
    }
    const bool isOfSheet = reading.layout == TableLayout::speciesRows && !reading.sheet.empty();
    for (const auto& [stem, group] : groups) {
        if (!group.isOfStages()) continue;
        std::string name = stem;
        if (stem.empty()) name = isOfSheet ? reading.sheet : joinedEndings(header, group);
        for (const std::size_t column : group.columns) names.emplace(column, name);
    }
    return names;
}

}  // namespace zorvel

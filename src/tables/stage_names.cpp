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
};

// What header rows tell of the census of a column, by which it is another than that of its name.
std::string attributesOf(const TableHeader& header, const TableReading& reading,
                         std::size_t column) {
    std::string attributes;
    if (reading.sameCensus == SameRule::sum) return attributes;
    for (std::size_t i = 0; i < header.height(); ++i) {
        if (!tellsCensusesApart(reading.headerRows[i])) continue;
        attributes.append(header.cell(i, column)).append(1, '\n');
    }
    return attributes;
}

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
    using Key = std::pair<std::string, std::string>;  // name and attributes
    std::map<Key, StageGroup> groups;
    std::vector<std::pair<std::size_t, Key>> others;
    std::set<std::string> lettered;  // before an A or a B
    for (const std::size_t column : reading.columnsOf(ColumnRole::count)) {
        const std::string name = header.name(column);
        if (name.empty()) continue;
        Key key{name, attributesOf(header, reading, column)};
        const auto stem = withoutStage(name);
        if (!stem) {
            const std::size_t start = name.find_last_of(" _.-") + 1;
            if (start + 1 == name.size())
                lettered.insert(name.substr(0, start > 0 ? start - 1 : 0));
            others.emplace_back(column, std::move(key));
            continue;
        }
        key.first = *stem;
        StageGroup& group = groups[key];
        group.columns.push_back(column);
        group.endings.insert(name.substr(stem->size()));
        group.areLong |= name.size() > stem->size() + 2;
    }
    for (const auto& [column, key] : others) {
        const auto same = groups.find(key);
        if (same == groups.end()) continue;
        same->second.columns.push_back(column);
        same->second.endings.insert(std::string());
    }
    std::map<std::size_t, std::string> names;
    const bool isOfSheet = reading.layout == TableLayout::speciesRows && !reading.sheet.empty();
    for (const auto& [key, group] : groups) {
        const bool areLetters = !group.areLong && lettered.contains(key.first);
        if (group.endings.size() < 2 || areLetters) continue;
        std::string name = key.first;
        if (name.empty()) name = isOfSheet ? reading.sheet : joinedEndings(header, group);
        for (const std::size_t column : group.columns) names.emplace(column, name);
    }
    return names;
}

}  // namespace zorvel

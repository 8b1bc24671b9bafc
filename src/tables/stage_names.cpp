#include "tables/stage_names.h"

#include <set>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "tables/words.h"

namespace zorvel {
namespace {

// Names that are one but for the endings.
struct StageGroup {
    std::vector<const StageName*> names;
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
std::string joinedEndings(const StageGroup& group) {
    std::set<std::string> known;
    std::string joined;
    for (const StageName* each : group.names) {
        if (known.insert(each->name).second) joined += (joined.empty() ? "" : " + ") + each->name;
    }
    return joined;
}

}  // namespace

std::map<std::size_t, std::string> namesWithoutStages(const std::vector<StageName>& names,
                                                      const std::string& sheet) {
    using Key = std::pair<std::string, std::string>;  // name and attributes
    std::map<Key, StageGroup> groups;
    std::vector<const StageName*> others;
    std::set<std::string> lettered;  // before an A or a B
    for (const StageName& each : names) {
        const std::string& name = each.name;
        const auto stem = withoutStage(name);
        if (!stem) {
            const std::size_t start = name.find_last_of(" _.-") + 1;
            if (start + 1 == name.size())
                lettered.insert(name.substr(0, start > 0 ? start - 1 : 0));
            others.push_back(&each);
            continue;
        }
        StageGroup& group = groups[{std::string(*stem), each.attributes}];
        group.names.push_back(&each);
        group.endings.insert(name.substr(stem->size()));
        group.areLong |= name.size() > stem->size() + 2;
    }
    for (const StageName* each : others) {
        const auto same = groups.find({each->name, each->attributes});
        if (same == groups.end()) continue;
        same->second.names.push_back(each);
        same->second.endings.insert(std::string());
    }
    std::map<std::size_t, std::string> found;
    for (const auto& [key, group] : groups) {
        const bool areLetters = !group.areLong && lettered.contains(key.first);
        if (group.endings.size() < 2 || areLetters) continue;
        std::string name = key.first;
        if (name.empty()) name = sheet.empty() ? joinedEndings(group) : sheet;
        for (const StageName* each : group.names) found.emplace(each->place, name);
    }
    return found;
}

std::map<std::size_t, std::string> headersWithoutStages(const TableHeader& header,
                                                        const TableReading& reading) {
    std::vector<StageName> names;
    for (const std::size_t column : reading.columnsOf(ColumnRole::count)) {
        const std::string name = header.name(column);
        if (!name.empty()) names.push_back({column, name, attributesOf(header, reading, column)});
    }
    const bool isOfSheet = reading.layout == TableLayout::speciesRows;
    return namesWithoutStages(names, isOfSheet ? reading.sheet : std::string());
}

void RowReader::joinStages() {
    std::vector<StageName> names;
    for (std::size_t i = 0; i < gathered_.species.size(); ++i) {
        names.push_back({i, gathered_.species.name(i).str()});
    }
    std::map<const std::string*, std::size_t> joined;  // numbers of species by their old names
    for (const auto& [number, name] : namesWithoutStages(names)) {
        records_.notices.stageNames.push_back(terminalLine(names[number].name));
        joined.emplace(&gathered_.species.name(number).str(), gathered_.species.number(name));
    }
    for (MockCensus& census : gathered_.censuses) {
        std::map<std::size_t, std::size_t> places;  // of the species among the taxa
        std::vector<MockTaxon> taxa;
        for (MockTaxon& taxon : census.taxa) {
            if (const auto found = joined.find(&taxon.name.str()); found != joined.end()) {
                taxon.name = gathered_.species.name(found->second);
                const auto [place, isNew] = places.try_emplace(found->second, taxa.size());
                if (!isNew) {
                    addCount(taxa[place->second].abundance, taxon.abundance,
                             {records_.lastRow, 0, columns_.species});
                    continue;
                }
            }
            taxa.push_back(std::move(taxon));
        }
        census.taxa = std::move(taxa);
    }
}

}  // namespace zorvel

#include "tests/support/power_cut.h"

#include <algorithm>

namespace zorvel {
namespace {

constexpr std::size_t diskSector = 512;

bool chance(double share, std::mt19937& random) {
    return std::bernoulli_distribution(share)(random);
}

void overwrite(std::string& bytes, std::size_t offset, std::string_view with) {
    if (bytes.size() < offset + with.size()) bytes.resize(offset + with.size(), '\0');
    bytes.replace(offset, with.size(), with);
}

}  // namespace

void DiskRecorder::after(const FileCall& call) {
    switch (call.kind) {
        case CallKind::open:
            if (!call.creates) return;
            break;
        case CallKind::write:
        case CallKind::truncate:
        case CallKind::sync:
        case CallKind::remove:
        case CallKind::rename:
            break;
        default:
            return;
    }
    RecordedCall& recorded = calls_.emplace_back(RecordedCall{call, std::string(call.bytes)});
    recorded.call.bytes = {};
}

SimulatedDisk::SimulatedDisk(const FileImages& start) : names_(1) {
    for (const auto& [path, bytes] : start) {
        names_.front()[path] = std::make_shared<File>(File{bytes, {}});
    }
}

void SimulatedDisk::changeNames(const Names& names) {
    names_.push_back(names);
}

void SimulatedDisk::openFile(const FileCall& call) {
    if (names_.back().count(call.path) > 0) return;
    Names names = names_.back();
    names[call.path] = std::make_shared<File>();
    changeNames(names);
}

// Of a path that is no file, the folder is meant.
void SimulatedDisk::sync(const FileCall& call) {
    const auto found = names_.back().find(call.path);
    if (found != names_.back().end()) {
        File& file = *found->second;
        for (const Change& change : file.unsafe) apply(change, file.safe);
        file.unsafe.clear();
    }
    if (call.syncsFolder) names_.erase(names_.begin(), names_.end() - 1);
}

void SimulatedDisk::repeat(const RecordedCall& recorded) {
    const FileCall& call = recorded.call;
    Names names = names_.back();
    const auto found = names.find(call.path);
    switch (call.kind) {
        case CallKind::open:
            return openFile(call);
        case CallKind::sync:
            return sync(call);
        case CallKind::write:
        case CallKind::truncate:
            if (found == names.end()) return;
            found->second->unsafe.push_back({call.kind == CallKind::truncate,
                                             static_cast<std::size_t>(call.offset),
                                             recorded.bytes});
            return;
        case CallKind::rename:
            if (found != names.end()) names[call.newPath] = found->second;
            [[fallthrough]];
        case CallKind::remove:
            names.erase(call.path);
            changeNames(names);
            if (call.syncsFolder) names_.erase(names_.begin(), names_.end() - 1);
            return;
        default:
            return;
    }
}

void SimulatedDisk::apply(const Change& change, std::string& bytes) {
    if (change.truncates) {
        bytes.resize(change.offset, '\0');
    } else {
        overwrite(bytes, change.offset, change.bytes);
    }
}

void SimulatedDisk::applyTorn(const Change& change, std::string& bytes, std::mt19937& random) {
    std::size_t begin = 0;
    while (begin < change.bytes.size()) {
        const std::size_t offset = change.offset + begin;
        const std::size_t end =
            std::min(change.bytes.size(), begin + diskSector - offset % diskSector);
        if (chance(0.5, random)) {
            overwrite(bytes, offset, std::string_view(change.bytes).substr(begin, end - begin));
        }
        begin = end;
    }
}

// Each change with that chance; of the others a third is torn, and a third leaves the size alone.
std::string SimulatedDisk::survivor(const File& file, double share, std::mt19937& random) {
    std::string bytes = file.safe;
    for (const Change& change : file.unsafe) {
        if (chance(share, random)) {
            apply(change, bytes);
        } else if (share > 0 && !change.truncates) {
            const auto fate = random() % 3;
            const std::size_t end = change.offset + change.bytes.size();
            if (fate == 0) applyTorn(change, bytes, random);
            if (fate == 1) bytes.resize(std::max(bytes.size(), end), '\0');
        }
    }
    return bytes;
}

FileImages SimulatedDisk::afterCut(std::mt19937& random) const {
    constexpr double shares[] = {0, 0.1, 0.5, 0.9, 1};
    FileImages images;
    const Names& names = names_[random() % names_.size()];
    for (const auto& [path, file] : names) {
        images[path] = survivor(*file, shares[random() % std::size(shares)], random);
    }
    return images;
}

}  // namespace zorvel

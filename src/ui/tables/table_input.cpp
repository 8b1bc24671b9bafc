#include "ui/tables/table_input.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <utility>

#include "tables/guess.h"

namespace zorvel {

std::size_t TableBytes::read(char* bytes, std::size_t size) {
    if (text_ != nullptr) {
        const std::size_t count = text_->copy(bytes, size, std::min(place_, text_->size()));
        place_ += count;
        return count;
    }
    ssize_t count = 0;
    do {
        count = pread(descriptor_, bytes, size, static_cast<off_t>(place_));
    } while (count < 0 && errno == EINTR);
    if (count < 0) problem_ = systemProblem("cannot be read", errno);
    if (count <= 0) return 0;
    place_ += static_cast<std::size_t>(count);
    return static_cast<std::size_t>(count);
}

Result<std::shared_ptr<const TableInput>> TableInput::open(const std::string& path) {
    Result<OpenFile> file = openRegularFile(path);
    if (!file) return file.problem();
    return std::shared_ptr<const TableInput>(new TableInput(std::move(file).value(), {}));
}

std::shared_ptr<const TableInput> TableInput::ofText(std::string text) {
    return std::shared_ptr<const TableInput>(new TableInput(OpenFile(-1), std::move(text)));
}

Result<TableStart> startOf(const TableInput& input) {
    // One byte more tells whether the table goes on.
    constexpr std::size_t most = TableSample::mostBytes + 1;
    TableStart start;
    TableBytes bytes = input.bytes();
    std::size_t used = 0;
    for (std::size_t count = 1; count > 0 && used < most; used += count) {
        start.bytes.resize(std::min(most, used + (1U << 18U)));
        count = bytes.read(start.bytes.data() + used, start.bytes.size() - used);
    }
    if (bytes.problem()) return *bytes.problem();
    start.whole = used < most;
    start.bytes.resize(std::min(used, TableSample::mostBytes));
    return start;
}

}  // namespace zorvel

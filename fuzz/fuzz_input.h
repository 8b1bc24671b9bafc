// What the fuzz targets share.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace zorvel {

inline std::string_view fuzzText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

// A broken promise ends the run, so that the input is kept.
inline void promise(bool kept) {
    if (!kept) std::abort();
}

// Of every parser but that of the species list: records, or a reason why there are none.
template <class Result>
void promiseRecordsOrReason(const Result& result) {
    promise(result.value.has_value() == result.consoleLines.empty());
}

}  // namespace zorvel

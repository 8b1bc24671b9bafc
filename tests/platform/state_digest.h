// A short word for all that a project holds, the same in every process.
#pragma once

#include <cstdint>
#include <iomanip>
#include <sstream>
#include <string>

#include "store/object_context.h"

namespace zorvel {

inline std::string stateDigest(const ObjectContext& context) {
    std::ostringstream text;
    text << std::setprecision(17);
    const auto write = [&](const std::optional<SharedText>& name) {
        text << (name ? "=" + name->str() : "-") << '\n';
    };
    for (const Census& census : context.censuses()) {
        text << "census " << census.id() << ' ' << census.latitude() << '\n';
        write(census.name());
        write(census.notes());
        for (const Zorvel& taxon : census.taxa()) {
            text << taxon.id() << ' ' << taxon.abundance() << ' ' << taxon.include() << '\n';
            write(taxon.name());
        }
    }
    // Fowler, Noll and Vo's hash, variant 1a.
    std::uint64_t hash = 14695981039346656037u;
    for (const char byte : text.str()) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 1099511628211u;
    }
    std::ostringstream word;
    word << std::hex << hash;
    return word.str();
}

}  // namespace zorvel

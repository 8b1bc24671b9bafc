#include "model/equal_names.h"

#include <cstddef>

#include "model/name_table.h"

namespace zorvel {

std::vector<bool> equalNames(const std::vector<const std::string*>& names) {
    NameTable table;
    std::vector<std::size_t> numbers(names.size());
    std::vector<std::size_t> uses;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!names[i]) continue;
        numbers[i] = table.add(*names[i]);
        if (numbers[i] == uses.size()) uses.push_back(0);
        ++uses[numbers[i]];
    }
    std::vector<bool> marks(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) marks[i] = names[i] && uses[numbers[i]] > 1;
    return marks;
}

}  // namespace zorvel

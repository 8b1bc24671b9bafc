// Which records of a list share their name with another one: the counts matrix and the project-wide
// values take them for one, which a person should know. For one operation on one thread.
#pragma once

#include <string>
#include <vector>

namespace zorvel {

// One mark a name: true where another entry is the same name (canonically equivalent). A null entry
// has no name and is never marked: records without a name are merged with none.
std::vector<bool> equalNames(const std::vector<const std::string*>& names);

}  // namespace zorvel

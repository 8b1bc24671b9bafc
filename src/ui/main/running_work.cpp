#include "ui/main/running_work.h"

#include <algorithm>
#include <utility>

namespace zorvel {

QList<RunningWork::Work>::iterator RunningWork::find(const QString& name) {
    return std::find_if(works_.begin(), works_.end(),
                        [&name](const Work& work) { return work.name == name; });
}

void RunningWork::start(const QString& name, const QString& text, std::function<void()> cancel) {
    const auto found = find(name);
    if (found == works_.end()) {
        works_.append({name, text, std::move(cancel)});
    } else {
        *found = {name, text, std::move(cancel)};
    }
}

bool RunningWork::hasOther(const QString& name) const {
    return std::any_of(works_.begin(), works_.end(),
                       [&name](const Work& work) { return work.name != name; });
}

void RunningWork::stop(const QString& name) {
    const auto found = find(name);
    if (found != works_.end()) works_.erase(found);
}

}  // namespace zorvel

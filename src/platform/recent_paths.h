// The files that were opened or saved last, kept between runs in the settings. Main thread.
#pragma once

#include <QString>
#include <QStringList>

namespace zorvel {

class RecentPaths {
  public:
    static constexpr int kept = 10;

    // Newest first, absolute; those that are no longer there are left out.
    [[nodiscard]] QStringList list() const;
    void add(const QString& path);
    void clear();
};

}  // namespace zorvel

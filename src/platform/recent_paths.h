// The files that were opened or saved last, kept between runs in the settings. Main thread, which
// does not look at the files themselves: a disk may take its time.
#pragma once

#include <QString>
#include <QStringList>

namespace zorvel {

class RecentPaths {
  public:
    static constexpr int kept = 10;

    // Newest first, absolute; without those known to be missing.
    [[nodiscard]] QStringList list() const;
    void add(const QString& path);
    void clear();

    [[nodiscard]] QStringList stored() const;
    // What a look at the stored ones has found.
    void setMissing(const QStringList& paths) { missing_ = paths; }

  private:
    QStringList missing_;
};

// Those of the paths at which there is nothing. Waits for the disk. Any thread.
QStringList missingAmong(QStringList paths);

}  // namespace zorvel

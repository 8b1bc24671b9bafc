// A copy of a project whose own file cannot be written, in the folder of untitled projects. It
// opens at the next start of the program, unless it is dropped before. Main thread.
#pragma once

#include <QObject>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/project_writes.h"

namespace zorvel {

struct SaveServices;

class AsideCopy : public QObject {
    Q_OBJECT
  public:
    explicit AsideCopy(const SaveServices& services) : services_(services) {}

    // Makes the copy or brings it up to date; then didChange() follows. Not to be called while the
    // copy is being written. name, path: of the project.
    void write(std::shared_ptr<const ObjectContext> state, std::uint64_t revision,
               const QString& name, const QString& path);
    [[nodiscard]] bool isWriting() const { return writing_; }
    [[nodiscard]] bool holds(std::uint64_t revision) const { return held_ == revision; }
    // There is a copy, of any revision.
    [[nodiscard]] bool exists() const { return held_.has_value(); }
    // Of the last write.
    [[nodiscard]] const std::optional<FileProblem>& problem() const { return problem_; }

    // Deletes the copy.
    void drop() { end(true); }
    // Closes it; it stays.
    void letGo() { end(false); }

  signals:
    void didChange();

  private:
    void finishWrite(std::uint64_t revision, const WriteOutcome& outcome);
    void end(bool remove);

    const SaveServices& services_;
    std::shared_ptr<FileHolder> holder_ = std::make_shared<FileHolder>();
    QString path_;
    std::optional<std::uint64_t> held_;
    std::optional<FileProblem> problem_;
    bool writing_ = false;
};

}  // namespace zorvel

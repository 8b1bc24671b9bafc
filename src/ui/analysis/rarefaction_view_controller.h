// One rarefaction curve with the commands that take it out of the program: the content of a window
// that outlives the project that the curve comes from. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <optional>
#include <vector>

#include "metrics/rarefaction.h"
#include "ui/kit/panels.h"

namespace zorvel {

class JobQueue;
class RarefactionView;

enum class RarefactionKind { individualBased, sampleBased };

class RarefactionViewController : public QWidget {
    Q_OBJECT
  public:
    // Queue and panels must outlive the controller.
    RarefactionViewController(RarefactionKind kind, JobQueue& jobs, const Panels& panels,
                              QWidget* parent = nullptr);
    ~RarefactionViewController() override;

    // The curve to show, in increasing sample size; before the window appears. subject: the name of
    // the census or project that it is of, shown and suggested as a file name.
    void setRarefactionData(std::vector<Rarefaction> data, const QString& subject);
    [[nodiscard]] const std::optional<std::vector<Rarefaction>>& rarefactionData() const {
        return rarefactionData_;
    }
    [[nodiscard]] RarefactionView& rarefactionView() { return *rarefactionView_; }

  private:
    RarefactionKind kind_;
    JobQueue& jobs_;
    Panels panels_;
    std::optional<std::vector<Rarefaction>> rarefactionData_;
    RarefactionView* rarefactionView_ = nullptr;
};

}  // namespace zorvel

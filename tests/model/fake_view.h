// A main view without a window: it keeps what it was told.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "model/diversity_document.h"

namespace zorvel {

class FakeView : public MainView {
  public:
    TaxonFormatter& taxonFormatter() override { return formatter; }
    void addCensusRow() override { commands += "+C"; }
    void deleteCensusRows() override { commands += "-C"; }
    void addSpeciesRow() override { commands += "+S"; }
    void deleteSpeciesRows() override { commands += "-S"; }
    ProgressId startImportProgress(const std::string& text, std::function<void()> cancel) override {
        running[++lastProgress] = {std::string(text), std::move(cancel)};
        return lastProgress;
    }
    void stopProgress(ProgressId progress) override { running.erase(progress); }

    TaxonFormatter formatter;
    std::string commands;
    std::map<ProgressId, std::pair<std::string, std::function<void()>>> running;
    ProgressId lastProgress = 0;
};

}  // namespace zorvel

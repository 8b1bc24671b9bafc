// What a project asks of its window. The desktop's main view is one; a project without a window has
// none. Main thread.
#pragma once

#include <functional>
#include <string_view>

#include "model/taxon_formatter.h"

namespace zorvel {

class MainView {
  public:
    MainView() = default;
    MainView(const MainView&) = delete;
    MainView& operator=(const MainView&) = delete;
    virtual ~MainView() = default;

    // Of the cells with species names.
    virtual TaxonFormatter& taxonFormatter() = 0;

    virtual void addCensusRow() = 0;
    virtual void deleteCensusRows() = 0;
    virtual void addSpeciesRow() = 0;
    virtual void deleteSpeciesRows() = 0;

    // Shows the text while something runs in the background; cancel() may be null. stopProgress()
    // takes the number that the start returned.
    using ProgressId = int;
    virtual ProgressId startProgress(std::string_view text, std::function<void()> cancel) = 0;
    virtual void stopProgress(ProgressId progress) = 0;
};

}  // namespace zorvel

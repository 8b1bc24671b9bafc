// The details of the selected census: where, when, and notes. Each change is an edit of its own. A
// text that cannot be stored stays in its field with the reason below it; if another census is
// shown, textRefused() reports it. Main thread.
#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "store/object_context.h"

namespace Ui {
class DetailsView;
}

namespace zorvel {

class DetailsField;

class DetailsView : public QWidget {
    Q_OBJECT
  public:
    explicit DetailsView(QWidget* parent = nullptr);
    ~DetailsView() override;

    // Whose censuses are shown; must outlive the view or the next call. Call it before
    // showCensus().
    void setContext(ObjectContext& context) { context_ = &context; }

    // Another census, the same one after a change, or none. What was typed for another is stored
    // first, or reported.
    void showCensus(const std::optional<Census>& census);

    // Stores what was typed, as far as possible. False if something cannot be stored: its field
    // shows the reason.
    bool commit();
    // The same in a copy of the context; the fields stay as they are.
    void storeDrafts(ObjectContext& copy) const;
    // The first field with a text that cannot be stored takes the focus, and is reported.
    void tellProblems();

  signals:
    void textTyped();
    // A detail was not stored: its name, the typed text, and a sentence that says why.
    void textRefused(const QString& detail, const QString& text, const QString& reason);

  private:
    struct Line;
    void addLine(DetailsField* field, const QString& name,
                 std::function<QString(const Census&)> shown,
                 std::function<QString(ObjectContext&, const Census&, const std::string&)> store);
    void setUpLines();
    void setUpNotes();
    void commitLine(Line& line);
    void commitNotes();
    void leaveCensus();
    void showNotesState();
    [[nodiscard]] std::optional<Census> census() const;

    std::unique_ptr<Ui::DetailsView> ui_;
    std::vector<std::unique_ptr<Line>> lines_;
    ObjectContext* context_ = nullptr;
    std::optional<RecordId> census_;
};

// The texts of the details, each the shortest that reads back as the stored value.
QString latitudeText(const Census& census);   // degrees
QString longitudeText(const Census& census);  // degrees
// In the computer's time zone; empty if there is none.
QString dateText(const Census& census);

}  // namespace zorvel

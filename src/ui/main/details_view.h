// The details of the selected census, to be read and typed: where, when, and what was noted. Each
// is an edit of its own. A text that cannot be stored stays in its field with the reason below it;
// when another census takes the place of this one, it is handed out with the reason instead. Main
// thread.
#pragma once

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

    // Whose censuses are shown; must outlive the view. Before anything is shown.
    void setContext(ObjectContext& context) { context_ = &context; }

    // Another census, the same one as it has become, or none. What was typed for another is stored
    // first, or handed out.
    void showCensus(const std::optional<Census>& census);

    // Stores what was typed, as far as it can be. False where something cannot: its field tells the
    // reason.
    bool commit();
    // The same in a copy of the context, and the fields stay as they are.
    void storeDrafts(ObjectContext& copy) const;
    // The first field that tells a reason takes the focus, and its text is handed out.
    void tellProblems();

  signals:
    void textTyped();
    // Not stored: which detail of which census, what was typed, and a sentence that says why.
    void textRefused(const QString& detail, const QString& text, const QString& reason);

  protected:
    void changeEvent(QEvent* event) override;

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
    void showColors();
    [[nodiscard]] std::optional<Census> census() const;

    std::unique_ptr<Ui::DetailsView> ui_;
    std::vector<std::unique_ptr<Line>> lines_;
    ObjectContext* context_ = nullptr;
    std::optional<RecordId> census_;
};

}  // namespace zorvel

// A value that is shown, not edited: it can be selected and copied, by mouse and keyboard, and can
// be marked as not of the record that its panel is about. Main thread.
#pragma once

#include <QLineEdit>

namespace zorvel {

class ValueField : public QLineEdit {
    Q_OBJECT
  public:
    explicit ValueField(QWidget* parent = nullptr);

    // Font size as a multiple of the panel's; a text that is too long for the field is set smaller.
    [[nodiscard]] double scale() const { return scale_; }
    void setScale(double scale);

    // Grey, with the reason as its tooltip and accessible description. An empty reason restores the
    // plain field.
    void setStale(const QString& reason);
    [[nodiscard]] bool isStale() const { return !reason_.isEmpty(); }

    // A soft bar in place of a value that is on its way. It disappears with the first text.
    void setPending(bool pending);
    [[nodiscard]] bool isPending() const { return pending_; }

    // A word in the quieter colour before the value, with what it means as tooltip and accessible
    // description. An empty word takes it away.
    void setMark(const QString& mark, const QString& meaning);
    [[nodiscard]] const QString& mark() const { return mark_; }

    // To the clipboard: what is selected, or else the whole value.
    void copyValue() const;

    // The tooltip of the plain field: what its value means.
    void setExplanation(const QString& explanation);

    // As wide as the text.
    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void fitFont();
    void showColor();
    void showDescription();
    void paintPending(QPainter& painter) const;

    double scale_ = 1;
    bool pending_ = false;
    QString reason_;  // of being stale
    bool adjusting_ = false;
    QString explanation_;
    QString mark_;
    QString markMeaning_;
};

}  // namespace zorvel

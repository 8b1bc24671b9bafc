// Lets the person at the screen choose a colour. An interface, so that a test can answer. Main
// thread.
#pragma once

#include <QColor>
#include <QString>
#include <functional>

class QWidget;

namespace zorvel {

class ColorPanel {
  public:
    // Of the colour chosen, which has an alpha. Not called where the panel was cancelled.
    using Chosen = std::function<void(const QColor&)>;

    ColorPanel() = default;
    ColorPanel(const ColorPanel&) = delete;
    ColorPanel& operator=(const ColorPanel&) = delete;
    virtual ~ColorPanel() = default;

    // Returns at once. The panel belongs to the parent and goes with it.
    virtual void chooseColor(QWidget* parent, const QString& title, const QColor& initial,
                             Chosen chosen) = 0;
};

// The desktop's panel, with a field for alpha, in front of the parent's window.
class DesktopColorPanel final : public ColorPanel {
  public:
    void chooseColor(QWidget* parent, const QString& title, const QColor& initial,
                     Chosen chosen) override;
};

}  // namespace zorvel

// A program with its application delegate, and what it would open outside of itself.
#pragma once

#include <QUrl>

#include "app/application_delegate.h"
#include "app/preferences_view_controller.h"
#include "ui/kit/panels.h"
#include "ui/window_fixture.h"

namespace zorvel {

// Keeps the function to be called, as a panel that is still open.
class FakeColorPanel : public ColorPanel {
  public:
    void chooseColor(QWidget* /*parent*/, const QString& title, const QColor& initial,
                     Chosen chosen) override {
        titles.append(title);
        shown = initial;
        choose = std::move(chosen);
    }
    QStringList titles;
    QColor shown;
    Chosen choose;
};

class FakeLinkOpener : public LinkOpener {
  public:
    void openURL(const QUrl& url) override { opened.append(QString::fromUtf8(url.toEncoded())); }
    QStringList opened;
};

class ApplicationTest : public WindowTest {
  protected:
    void SetUp() override {
        WindowTest::SetUp();
        startDelegate();
    }
    void TearDown() override {
        delegate.reset();
        WindowTest::TearDown();
    }
    void startDelegate() { delegate = std::make_unique<AppDelegate>(*windows, colors, links); }

    PreferencesWindowController& preferencesWindow() {
        if (delegate->preferencesWindowController() == nullptr) {
            throw std::runtime_error("no preferences window");
        }
        return *delegate->preferencesWindowController();
    }

    FakeColorPanel colors;
    FakeLinkOpener links;
    std::unique_ptr<AppDelegate> delegate;
};

}  // namespace zorvel

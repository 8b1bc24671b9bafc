// Opens web pages, files of help and new mails in the programs that the desktop has for them. An
// interface, so that a test can look at what would be opened. Main thread.
#pragma once

#include <QString>

class QUrl;

namespace zorvel {

class LinkOpener {
  public:
    LinkOpener() = default;
    LinkOpener(const LinkOpener&) = delete;
    LinkOpener& operator=(const LinkOpener&) = delete;
    virtual ~LinkOpener() = default;

    // Whether something opened it is not told.
    virtual void openURL(const QUrl& url) = 0;
};

class DesktopLinkOpener final : public LinkOpener {
  public:
    void openURL(const QUrl& url) override;
};

// text: a whole URL with its scheme, percent-encoded. Any other text opens nothing.
void openURLString(LinkOpener& links, const QString& text);

}  // namespace zorvel

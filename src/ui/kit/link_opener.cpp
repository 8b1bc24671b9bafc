#include "ui/kit/link_opener.h"

#include <QDesktopServices>
#include <QUrl>

namespace zorvel {

void DesktopLinkOpener::openURL(const QUrl& url) {
    QDesktopServices::openUrl(url);
}

void openURLString(LinkOpener& links, const QString& text) {
    const QUrl url(text, QUrl::StrictMode);
    if (url.isValid() && !url.isRelative()) links.openURL(url);
}

}  // namespace zorvel

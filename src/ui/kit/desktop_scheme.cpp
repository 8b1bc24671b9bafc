#include "ui/kit/desktop_scheme.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>

namespace zorvel {

namespace {
const char service[] = "org.freedesktop.portal.Desktop";
const char portalPath[] = "/org/freedesktop/portal/desktop";
const char interface[] = "org.freedesktop.portal.Settings";
const char appearance[] = "org.freedesktop.appearance";
const char colorScheme[] = "color-scheme";
}  // namespace

DesktopScheme::DesktopScheme(QObject* parent)
    : QObject(parent), fromPalette_(schemeOf(QGuiApplication::palette())), scheme_(fromPalette_) {
    askPortal();
}

void DesktopScheme::askPortal() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    bus.connect(service, portalPath, interface, "SettingChanged", this,
                SLOT(settingChanged(QString, QString, QDBusVariant)));
    QDBusMessage question = QDBusMessage::createMethodCall(service, portalPath, interface, "Read");
    question << appearance << colorScheme;
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (reply.isError()) return;
        QVariant value = reply.value().variant();  // wrapped twice by this call
        if (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
        take(value.toUInt());
    });
}

void DesktopScheme::settingChanged(const QString& group, const QString& key,
                                   const QDBusVariant& value) {
    if (group == appearance && key == colorScheme) take(value.variant().toUInt());
}

// 1: dark; 2: light; anything else: no preference.
void DesktopScheme::take(uint preference) {
    const ColorScheme wanted = preference == 1   ? ColorScheme::dark
                               : preference == 2 ? ColorScheme::light
                                                 : fromPalette_;
    if (wanted == scheme_) return;
    scheme_ = wanted;
    emit schemeDidChange();
}

}  // namespace zorvel

#include "app/look_choice.h"

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

#include "platform/settings.h"

namespace zorvel {

namespace {

const char lookKey[] = "look";

const char service[] = "org.freedesktop.portal.Desktop";
const char portalPath[] = "/org/freedesktop/portal/desktop";
const char interface[] = "org.freedesktop.portal.Settings";
const char appearance[] = "org.freedesktop.appearance";
const char colorScheme[] = "color-scheme";

const char* nameOf(LookChoice::Choice choice) {
    return choice == LookChoice::light ? "light" : choice == LookChoice::dark ? "dark" : "desktop";
}

}  // namespace

LookChoice::LookChoice(QApplication& application)
    : application_(application),
      fromPalette_(schemeOf(QApplication::palette())),
      desktop_(fromPalette_) {
    const QString stored = setting(lookKey).toString();
    for (const Choice choice : {light, dark}) {
        if (stored == nameOf(choice)) choice_ = choice;
    }
    askPortal();
    apply();
}

void LookChoice::choose(Choice choice) {
    if (choice == choice_) return;
    choice_ = choice;
    storeSetting(lookKey, nameOf(choice));
    apply();
    emit choiceDidChange();
}

void LookChoice::apply() {
    const ColorScheme scheme = choice_ == light  ? ColorScheme::light
                               : choice_ == dark ? ColorScheme::dark
                                                 : desktop_;
    applyLook(application_, scheme);
}

void LookChoice::askPortal() {
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

void LookChoice::settingChanged(const QString& group, const QString& key,
                                const QDBusVariant& value) {
    if (group == appearance && key == colorScheme) take(value.variant().toUInt());
}

// 1: dark; 2: light; anything else: no preference.
void LookChoice::take(uint preference) {
    const ColorScheme wanted = preference == 1   ? ColorScheme::dark
                               : preference == 2 ? ColorScheme::light
                                                 : fromPalette_;
    if (wanted == desktop_) return;
    desktop_ = wanted;
    apply();
}

}  // namespace zorvel

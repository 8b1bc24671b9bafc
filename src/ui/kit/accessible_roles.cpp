#include "ui/kit/accessible_roles.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include "ui/kit/message_strip.h"
#include "ui/kit/popover.h"

namespace zorvel {

namespace {

QAccessibleInterface* withRole(const QString& /*className*/, QObject* object) {
    if (auto* strip = qobject_cast<MessageStrip*>(object)) {
        return new QAccessibleWidget(strip, QAccessible::AlertMessage);
    }
    if (auto* popover = qobject_cast<Popover*>(object)) {
        return new QAccessibleWidget(popover, QAccessible::HelpBalloon);
    }
    return nullptr;
}

}  // namespace

void installAccessibleRoles() {
    QAccessible::installFactory(withRole);  // the same one twice counts once
}

}  // namespace zorvel

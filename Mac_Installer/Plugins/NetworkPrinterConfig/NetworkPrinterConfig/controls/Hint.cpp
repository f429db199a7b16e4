#include "NetworkPrinterConfig/controls/Hint.h"

#include <QAccessibleWidget>
#include <QToolTip>

namespace {

/// Screen readers announce notifications when they appear, but not labels.
QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
    auto* const hint = className == QStringLiteral("Hint") ? qobject_cast<Hint*>(object) : nullptr;
    return hint == nullptr ? nullptr : new QAccessibleWidget(hint, QAccessible::Notification);
}

}  // namespace

Hint::Hint(QWidget* parent) : QLabel(parent) {
    static const bool isInstalled = (QAccessible::installFactory(makeInterface), true);
    (void)isInstalled;
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    setFrameShape(QFrame::Box);
    setMargin(4);
    setPalette(QToolTip::palette());
    setForegroundRole(QPalette::ToolTipText);
    setBackgroundRole(QPalette::ToolTipBase);
    setAutoFillBackground(true);
    hide();
}

void Hint::appear(const QString& text, const QWidget& control) {
    hide();
    setText(text);
    setAccessibleName(text);
    const QRect place = control.geometry();
    setGeometry(place.left(), place.bottom() + 2, place.width(), heightForWidth(place.width()));
    raise();
    show();
}

#include "InstallerPlugins/ButtonActions.h"

#include <QAbstractButton>
#include <QAccessibleWidget>
#include <QApplication>
#include <QInputMethod>
#include <QPushButton>
#include <QRadioButton>
#include <QShortcutEvent>
#include <QStyle>
#include <QStyleOptionButton>

namespace {

class MnemonicFilter : public QObject {
  public:
    using QObject::QObject;

    bool eventFilter(QObject* watched, QEvent* event) override {
        auto* const button =
            event->type() == QEvent::Shortcut ? qobject_cast<QAbstractButton*>(watched) : nullptr;
        // An ambiguous mnemonic only moves the focus; leave that to Qt.
        if (button == nullptr || static_cast<QShortcutEvent*>(event)->isAmbiguous()) {
            return false;
        }
        if (isOperable(button)) {
            if (button->isCheckable()) {
                button->setFocus(Qt::ShortcutFocusReason);  // Like Qt: the arrow keys start from here.
            }
            QGuiApplication::inputMethod()->commit();  // Keep text that is being composed.
            button->click();
        }
        return true;
    }
};

/// Qt's accessible interface of a button, but with immediate actions.
class ButtonInterface : public QAccessibleWidget {
  public:
    explicit ButtonInterface(QAbstractButton* button)
        : QAccessibleWidget(button, qobject_cast<QRadioButton*>(button) != nullptr
                                        ? QAccessible::RadioButton
                                        : QAccessible::PushButton) {}

    [[nodiscard]] QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name && widget()->accessibleName().isEmpty()) {
            return button()->text().remove(QLatin1Char('&'));
        }
        if (kind == QAccessible::Accelerator) {
            return button()->shortcut().toString(QKeySequence::NativeText);
        }
        return QAccessibleWidget::text(kind);
    }

    /// For a radio button, only the area that can be clicked.
    [[nodiscard]] QRect rect() const override {
        if (role() != QAccessible::RadioButton || !widget()->isVisible()) {
            return QAccessibleWidget::rect();
        }
        QStyleOptionButton option;
        option.initFrom(widget());
        option.text = button()->text();
        const QRect part =
            widget()->style()->subElementRect(QStyle::SE_RadioButtonClickRect, &option, widget());
        return part.translated(widget()->mapToGlobal(QPoint()));
    }

    [[nodiscard]] QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.checkable = button()->isCheckable();
        state.checked = button()->isChecked();
        state.pressed = button()->isDown();
        const auto* const pushButton = qobject_cast<QPushButton*>(button());
        state.defaultButton = pushButton != nullptr && pushButton->isDefault();
        return state;
    }

    [[nodiscard]] QStringList actionNames() const override {
        const QStringList names = QAccessibleWidget::actionNames();
        return widget()->isEnabled() ? QStringList{mainAction()} + names : names;
    }

    /// Posts the action: it may open an alert, and the caller waits for the reply.
    void doAction(const QString& name) override {
        const auto act = [button = button(), name] {
            if (!isOperable(button)) {
                return;
            }
            if (name == toggleAction()) {
                button->toggle();
            } else if (name == pressAction()) {
                button->click();
            } else if (name == setFocusAction()) {
                button->setFocus(Qt::OtherFocusReason);
            }
        };
        if (isOperable(button())) {
            QMetaObject::invokeMethod(button(), act, Qt::QueuedConnection);
        }
    }

    [[nodiscard]] QStringList keyBindingsForAction(const QString& name) const override {
        const QString keys = text(QAccessible::Accelerator);
        return name == mainAction() && !keys.isEmpty() ? QStringList{keys} : QStringList();
    }

  private:
    [[nodiscard]] QAbstractButton* button() const { return static_cast<QAbstractButton*>(object()); }
    [[nodiscard]] const QString& mainAction() const {
        return button()->isCheckable() ? toggleAction() : pressAction();
    }
};

QAccessibleInterface* makeInterface(const QString& className, QObject* object) {
    const bool isButton =
        className == QStringLiteral("QPushButton") || className == QStringLiteral("QRadioButton");
    return isButton ? new ButtonInterface(static_cast<QAbstractButton*>(object)) : nullptr;
}

}  // namespace

bool isOperable(const QWidget* widget) {
    const QWidget* const modal = QApplication::activeModalWidget();
    return widget->isEnabled() && widget->isVisible() &&
           (modal == nullptr || modal == widget || modal->isAncestorOf(widget));
}

void makeButtonsImmediate() {
    // Not per button: with an active accessibility bus, Qt requests the interface while the button is being
    // constructed.
    QCoreApplication::instance()->installEventFilter(new MnemonicFilter(QCoreApplication::instance()));
    QAccessible::installFactory(makeInterface);
}

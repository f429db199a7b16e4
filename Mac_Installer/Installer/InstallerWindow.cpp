#include "Installer/InstallerWindow.h"

#include "Installer/PressGuard.h"
#include "Installer/StepList.h"

#include <QApplication>
#include <QFrame>
#include <QHBoxLayout>
#include <QIcon>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollArea>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

QLabel* makeHeading(QWidget* parent) {
    auto* const heading = new QLabel(parent);
    heading->setObjectName(QStringLiteral("heading"));
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    font.setBold(true);
    heading->setFont(font);
    return heading;
}

/// Holds a page, and scrolls it where the screen has no room for it.
class Scroller : public QScrollArea {
  public:
    Scroller(QWidget* page, QWidget* parent) : QScrollArea(parent) {
        setFrameShape(NoFrame);
        setWidgetResizable(true);
        setFocusPolicy(Qt::NoFocus);
        setWidget(page);
        // Keep the window's background behind the page.
        viewport()->setAutoFillBackground(false);
        page->setAutoFillBackground(false);
        // Longer lines are hard to read.
        page->setMaximumWidth(
            std::max(90 * fontMetrics().averageCharWidth(), page->minimumSizeHint().width()));
    }

    /// The whole page's, unlike QScrollArea's. Its texts wrap, so its height follows from its width.
    [[nodiscard]] QSize sizeHint() const override {
        if (widget() == nullptr) {
            return QScrollArea::sizeHint();
        }
        const int width = std::min(widget()->sizeHint().width(), widget()->maximumWidth());
        return {width, std::max(widget()->heightForWidth(width), widget()->sizeHint().height())};
    }
};

}  // namespace

InstallerWindow::InstallerWindow(const std::vector<InstallerPane*>& pages, QWidget* parent)
    : QDialog(parent, Qt::Window),
      pages_(pages.begin(), pages.end()),
      presses_(new PressGuard(this)),
      steps_(new StepList(pages, this)),
      heading_(makeHeading(this)),
      stack_(new QStackedWidget(this)),
      back_(new QPushButton(tr("Go &Back"), this)),
      next_(new QPushButton(this)) {
    Q_INIT_RESOURCE(installer);
    setWindowIcon(QIcon(QStringLiteral(":/installer/quazel-installer.svg")));
    setWindowTitle(tr("Install the Tovik KV Printer Driver"));
    back_->setObjectName(QStringLiteral("back"));
    next_->setObjectName(QStringLiteral("next"));
    next_->setDefault(true);

    auto* const buttons = new QHBoxLayout;
    buttons->setSpacing(8);
    buttons->addStretch();
    buttons->addWidget(back_);
    buttons->addWidget(next_);

    auto* const page = new QVBoxLayout;
    page->setSpacing(14);
    page->addWidget(heading_);
    page->addWidget(stack_, 1);
    page->addLayout(buttons);

    auto* const columns = new QHBoxLayout(this);
    columns->setContentsMargins(16, 16, 16, 16);
    columns->setSpacing(20);
    columns->addWidget(steps_);
    columns->addLayout(page, 1);

    for (const InstallerPane* const pane : pages) {
        stack_->addWidget(new Scroller(pane->contentWidget(), stack_));
        connect(pane, &InstallerPane::buttonsChanged, this, &InstallerWindow::updateButtons);
    }
    connect(back_, &QPushButton::clicked, this, [this] { takeClick(back_, InstallerDirectionBackward); });
    connect(next_, &QPushButton::clicked, this, [this] { takeClick(next_, InstallerDirectionForward); });
    connect(qApp, &QApplication::focusChanged, this, &InstallerWindow::scrollTo);
    enter(0, InstallerDirectionForward);

    const QSize frame(16, 48);  // Estimate: the window manager's frame is unknown before show().
    const QSize comfortable = sizeHint().expandedTo({720, 540});
    resize(comfortable.boundedTo(screen()->availableSize() - frame));
}

InstallerWindow::~InstallerWindow() {
    hide();  // It is still shown after a signal, and stopping a page's search may take a second.
}

/// Not QDialog's, which places the window itself, on a small screen with the title bar beyond the edge.
void InstallerWindow::showEvent(QShowEvent* /*event*/) {
    setAttribute(Qt::WA_KeyboardFocusChange);  // Show the focus before the first Tab.
}

void InstallerWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QDialog::keyPressEvent(event);
    }
}

void InstallerWindow::takeClick(const QPushButton* button, InstallerDirection direction) {
    // Qt may deliver a click after a page has disabled the button.
    if (!button->isEnabled() || leaving_ || !presses_->takePress()) {
        return;
    }
    const bool isForward = direction == InstallerDirectionForward;
    if (isForward && isLast()) {
        close();
        return;
    }
    const QScopedValueRollback guard(leaving_, true);
    if (currentPage().shouldExitPane(direction)) {
        enter(isForward ? current_ + 1 : current_ - 1, direction);
    }
}

void InstallerWindow::enter(int step, InstallerDirection direction) {
    current_ = step;
    steps_->setCurrentStep(step);
    heading_->setText(currentPage().title());
    stack_->setCurrentIndex(step);
    next_->setText(isLast() ? tr("&Close") : tr("&Continue"));
    currentPage().didEnterPane(direction);
    updateButtons();
    focusFirstControl();
}

void InstallerWindow::updateButtons() {
    back_->setEnabled(current_ > 0 && currentPage().isPreviousEnabled());
    next_->setEnabled(currentPage().isNextEnabled());
}

/// Shows the control that has got the focus, not only by the Tab key as QScrollArea does.
void InstallerWindow::scrollTo(const QWidget* /*before*/, QWidget* control) {
    // While a button is down, scrolling would move the control from under the pointer, and the click would be
    // lost.
    if (control != nullptr && stack_->isAncestorOf(control) &&
        QGuiApplication::mouseButtons() == Qt::NoButton) {
        static_cast<Scroller*>(stack_->currentWidget())->ensureWidgetVisible(control, 0);
    }
}

/// Focuses the page's first control in the tab order, or the Continue button if there is none.
void InstallerWindow::focusFirstControl() {
    stack_->currentWidget()->setFocus();
    focusNextChild();
    if (!stack_->isAncestorOf(focusWidget())) {
        next_->setFocus();
    }
}

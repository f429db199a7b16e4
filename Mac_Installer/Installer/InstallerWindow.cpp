#include "Installer/InstallerWindow.h"

#include "Installer/PressGuard.h"
#include "Installer/StepList.h"

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

/// Puts a page in a scroll area, so that every control can be reached in a small window.
QScrollArea* makeScroller(QWidget* content, QWidget* parent) {
    auto* const scroller = new QScrollArea(parent);
    scroller->setFrameShape(QFrame::NoFrame);
    scroller->setWidgetResizable(true);
    scroller->setFocusPolicy(Qt::NoFocus);
    scroller->setWidget(content);
    // Keep the window's background behind the page.
    scroller->viewport()->setAutoFillBackground(false);
    content->setAutoFillBackground(false);
    return scroller;
}

}  // namespace

InstallerWindow::InstallerWindow(const std::vector<InstallerPane*>& pages, QWidget* parent)
    : QDialog(parent, Qt::Window),
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
    back_->setAutoDefault(false);

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

    for (InstallerPane* const pane : pages) {
        addStep(pane);
    }
    connectButton(back_, &InstallerWindow::goBack);
    connectButton(next_, &InstallerWindow::goForward);
    enter(0, InstallerDirectionForward);
}

InstallerWindow::~InstallerWindow() {
    hide();  // After a signal it is still shown, and stopping a page's search may take a second.
    // Pages refer to the widgets, so delete them first.
    for (InstallerPane* const page : pages_) {
        delete page;
    }
}

void InstallerWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QDialog::keyPressEvent(event);
    }
}

void InstallerWindow::resizeToScreen() {
    const QSize frame(16, 48);  // Estimate: the window manager's frame is unknown before show().
    const QSize comfortable = sizeHint().expandedTo({720, 540});
    resize(comfortable.boundedTo(screen()->availableSize() - frame));
}

void InstallerWindow::addStep(InstallerPane* page) {
    page->setParent(this);
    pages_.push_back(page);
    stack_->addWidget(makeScroller(page->contentWidget(), stack_));
    connect(page, &InstallerPane::buttonsChanged, this, &InstallerWindow::updateButtons);
}

void InstallerWindow::connectButton(QPushButton* button, void (InstallerWindow::*action)()) {
    connect(button, &QPushButton::clicked, this, [this, button, action] {
        // Qt may deliver a click after a page has disabled the button.
        if (button->isEnabled() && !leaving_ && presses_->takePress()) {
            (this->*action)();
        }
    });
}

InstallerPane* InstallerWindow::currentPage() const {
    return pages_[static_cast<std::size_t>(current_)];
}

bool InstallerWindow::isLast() const {
    return current_ + 1 == static_cast<int>(pages_.size());
}

void InstallerWindow::goForward() {
    if (isLast()) {
        close();
        return;
    }
    const QScopedValueRollback guard(leaving_, true);
    if (currentPage()->shouldExitPane(InstallerDirectionForward)) {
        enter(current_ + 1, InstallerDirectionForward);
    }
}

void InstallerWindow::goBack() {
    const QScopedValueRollback guard(leaving_, true);
    if (currentPage()->shouldExitPane(InstallerDirectionBackward)) {
        enter(current_ - 1, InstallerDirectionBackward);
    }
}

void InstallerWindow::enter(int step, InstallerDirection direction) {
    current_ = step;
    steps_->setCurrentStep(step);
    heading_->setText(currentPage()->title());
    stack_->setCurrentIndex(step);
    next_->setText(isLast() ? tr("&Close") : tr("&Continue"));
    currentPage()->didEnterPane(direction);
    updateButtons();
    focusFirstControl();
}

void InstallerWindow::updateButtons() {
    back_->setEnabled(current_ > 0 && currentPage()->isPreviousEnabled());
    next_->setEnabled(currentPage()->isNextEnabled());
    next_->setDefault(true);
}

/// Focuses the page's first control in the tab order, or the Continue button if there is none.
void InstallerWindow::focusFirstControl() {
    next_->setFocus();
    QWidget* const content = currentPage()->contentWidget();
    for (QWidget* control = content->nextInFocusChain(); control != content;
         control = control->nextInFocusChain()) {
        if (content->isAncestorOf(control) && (control->focusPolicy() & Qt::TabFocus) != 0 &&
            control->isEnabled() && control->isVisibleTo(this)) {
            control->setFocus(Qt::TabFocusReason);
            return;
        }
    }
}

#include "Installer/InstallerWindow.h"

#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QScopedValueRollback>
#include <QStackedWidget>
#include <QVBoxLayout>

namespace {

/// Marks where the person is. The steps can't be clicked: the pages decide what comes next.
QListWidget* makeStepList(QWidget* parent) {
    auto* const list = new QListWidget(parent);
    list->setObjectName(QStringLiteral("steps"));
    list->setAccessibleName(InstallerWindow::tr("Steps"));
    list->setFocusPolicy(Qt::NoFocus);
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setFrameShape(QFrame::NoFrame);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->viewport()->setAutoFillBackground(false);
    return list;
}

QLabel* makeHeading(QWidget* parent) {
    auto* const heading = new QLabel(parent);
    heading->setObjectName(QStringLiteral("heading"));
    QFont font = heading->font();
    font.setPointSizeF(font.pointSizeF() * 1.5);
    font.setBold(true);
    heading->setFont(font);
    return heading;
}

QFrame* makeLine(QWidget* parent) {
    auto* const line = new QFrame(parent);
    line->setFrameShape(QFrame::HLine);
    line->setFrameShadow(QFrame::Sunken);
    return line;
}

}  // namespace

InstallerWindow::InstallerWindow(const std::vector<InstallerPane*>& pages, QWidget* parent)
    : QDialog(parent, Qt::Window),
      steps_(makeStepList(this)),
      heading_(makeHeading(this)),
      stack_(new QStackedWidget(this)),
      back_(new QPushButton(tr("Go &Back"), this)),
      next_(new QPushButton(this)) {
    setWindowTitle(tr("Install the Tovik KV Printer Driver"));
    back_->setObjectName(QStringLiteral("back"));
    next_->setObjectName(QStringLiteral("next"));
    back_->setAutoDefault(false);

    auto* const buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(back_);
    buttons->addWidget(next_);

    auto* const grid = new QGridLayout(this);
    grid->setHorizontalSpacing(20);
    grid->setVerticalSpacing(12);
    grid->addWidget(steps_, 0, 0, 2, 1);
    grid->addWidget(heading_, 0, 1);
    grid->addWidget(stack_, 1, 1);
    grid->addWidget(makeLine(this), 2, 0, 1, 2);
    grid->addLayout(buttons, 3, 0, 1, 2);
    grid->setColumnStretch(1, 1);
    grid->setRowStretch(1, 1);

    for (InstallerPane* const page : pages) {
        addStep(page);
    }
    steps_->setFixedWidth(steps_->sizeHintForColumn(0) + fontMetrics().averageCharWidth() * 6);
    connect(back_, &QPushButton::clicked, this, &InstallerWindow::goBack);
    connect(next_, &QPushButton::clicked, this, &InstallerWindow::goForward);
    enter(0, InstallerDirectionForward);
}

InstallerWindow::~InstallerWindow() {
    // Before the widgets they talk to.
    for (InstallerPane* const page : pages_) {
        delete page;
    }
}

void InstallerWindow::keyPressEvent(QKeyEvent* event) {
    if (event->key() != Qt::Key_Escape) {
        QDialog::keyPressEvent(event);
    }
}

void InstallerWindow::addStep(InstallerPane* page) {
    page->setParent(this);
    pages_.push_back(page);
    stack_->addWidget(page->contentWidget());
    steps_->addItem(page->title());
    connect(page, &InstallerPane::nextEnabledChanged, this, &InstallerWindow::updateButtons);
    connect(page, &InstallerPane::previousEnabledChanged, this, &InstallerWindow::updateButtons);
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
    if (leaving_) {
        return;
    }
    const QScopedValueRollback guard(leaving_, true);
    if (currentPage()->shouldExitPane(InstallerDirectionForward)) {
        enter(current_ + 1, InstallerDirectionForward);
    }
}

void InstallerWindow::goBack() {
    if (current_ == 0 || leaving_) {
        return;
    }
    const QScopedValueRollback guard(leaving_, true);
    if (currentPage()->shouldExitPane(InstallerDirectionBackward)) {
        enter(current_ - 1, InstallerDirectionBackward);
    }
}

void InstallerWindow::enter(int step, InstallerDirection direction) {
    current_ = step;
    for (int row = 0; row < steps_->count(); ++row) {
        QFont font = steps_->font();
        font.setBold(row == step);
        steps_->item(row)->setFont(font);
    }
    steps_->setCurrentRow(step);
    heading_->setText(currentPage()->title());
    stack_->setCurrentWidget(currentPage()->contentWidget());
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

/// The first control of the page that takes the keyboard, or else the button that goes on.
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

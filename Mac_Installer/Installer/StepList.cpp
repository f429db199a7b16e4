#include "Installer/StepList.h"

#include "InstallerPlugins/InstallerPane.h"

#include <QGridLayout>
#include <QIcon>
#include <QLabel>

#include <utility>

namespace {

QPixmap picture(const QString& name, int width, int height) {
    return QIcon(QStringLiteral(":/installer/%1.svg").arg(name)).pixmap(width, height);
}

}  // namespace

StepList::StepList(const std::vector<InstallerPane*>& pages, QWidget* parent) : QFrame(parent) {
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::Base);
    setAccessibleName(tr("Steps"));
    auto* const grid = new QGridLayout(this);
    grid->setContentsMargins(16, 16, 16, 16);
    grid->setHorizontalSpacing(8);
    grid->setVerticalSpacing(fontMetrics().height() * 2 / 3);
    grid->setColumnStretch(1, 1);
    for (const InstallerPane* const page : pages) {
        auto* const label = labels_.emplace_back(new QLabel(page->title(), this));
        label->setTextFormat(Qt::PlainText);
        label->setForegroundRole(QPalette::Text);
        QFont bold = label->font();
        bold.setBold(true);
        label->setMinimumWidth(QFontMetrics(bold).horizontalAdvance(label->text()));  // As the current step.
        marks_ += new QLabel(this);
        const int row = grid->rowCount();
        grid->addWidget(marks_.last(), row, 0);
        grid->addWidget(label, row, 1);
    }
    auto* const banner = new QLabel(this);
    banner->setPixmap(picture(QStringLiteral("banner"), 150, 100));
    const int rest = grid->rowCount();
    grid->addWidget(banner, rest, 0, 1, 2, Qt::AlignHCenter | Qt::AlignBottom);
    grid->setRowStretch(rest, 1);
}

void StepList::setCurrentStep(int current) {
    for (int step = 0; step < labels_.size(); ++step) {
        const auto [mark, place] = step < current ? std::pair(QStringLiteral("step-done"), tr("done"))
                                   : step == current
                                       ? std::pair(QStringLiteral("step-current"), tr("current step"))
                                       : std::pair(QStringLiteral("step-ahead"), tr("still to come"));
        QLabel* const label = labels_[step];
        QFont font = label->font();
        font.setBold(step == current);
        label->setFont(font);
        label->setAccessibleName(tr("%1, %2").arg(label->text(), place));
        const int side = fontMetrics().height();
        marks_[step]->setPixmap(picture(mark, side, side));
    }
}

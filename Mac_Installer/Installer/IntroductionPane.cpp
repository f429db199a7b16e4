#include "Installer/IntroductionPane.h"

#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

namespace {

QLabel* makeText(const QString& text) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

}  // namespace

IntroductionPane::IntroductionPane(const QString& problem, QObject* parent) : InstallerPane(parent) {
    auto* const content = new QWidget;
    auto* const column = new QVBoxLayout(content);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(12);
    column->addWidget(makeText(tr("This assistant prepares your computer for a Tovik KV card printer.")));
    column->addWidget(
        makeText(tr("Switch the printer on and connect it, to this computer or to the network. The next step "
                    "asks how it is connected and looks for it.")));
    if (!problem.isNull()) {
        auto* const icon = new QLabel;
        icon->setPixmap(content->style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(32, 32));
        auto* const row = new QHBoxLayout;
        row->addWidget(icon, 0, Qt::AlignTop);
        row->addWidget(makeText(problem), 1);
        column->addLayout(row);
    }
    column->addStretch();
    setContentWidget(content);
}

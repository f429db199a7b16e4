#include "Installer/IntroductionPane.h"

#include <QLabel>
#include <QStyle>
#include <QVBoxLayout>

namespace {

QLabel* paragraph(const QString& text, QWidget* parent) {
    auto* const label = new QLabel(text, parent);
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
    column->addWidget(
        paragraph(tr("This assistant prepares your computer for a Tovik KV card printer."), content));
    column->addWidget(
        paragraph(tr("Switch the printer on and connect it, to this computer or to the network. The next "
                     "step asks how it is connected and looks for it."),
                  content));
    if (!problem.isNull()) {
        auto* const row = new QHBoxLayout;
        auto* const icon = new QLabel(content);
        icon->setPixmap(content->style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(32, 32));
        row->addWidget(icon, 0, Qt::AlignTop);
        auto* const text = paragraph(problem, content);
        text->setObjectName(QStringLiteral("problem"));
        row->addWidget(text, 1);
        column->addLayout(row);
    }
    column->addStretch();
    setContentWidget(content);
}

QString IntroductionPane::title() const {
    return tr("Introduction");
}

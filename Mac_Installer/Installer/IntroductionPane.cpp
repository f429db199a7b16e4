#include "Installer/IntroductionPane.h"

#include <QGridLayout>
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
    if (!problem.isNull()) {
        auto* const icon = new QLabel;
        icon->setPixmap(content->style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(32, 32));
        QLabel* const warning =
            makeText(tr("Your choice of a printer can't be saved, so no printer can be set up."));
        QFont bold = warning->font();
        bold.setBold(true);
        warning->setFont(bold);
        auto* const grid = new QGridLayout;
        grid->addWidget(icon, 0, 0, 2, 1, Qt::AlignTop);
        grid->addWidget(warning, 0, 1);
        grid->addWidget(makeText(problem), 1, 1);
        grid->setColumnStretch(1, 1);
        column->addLayout(grid);
    }
    column->addWidget(makeText(tr(
        "This installer finds your Tovik KV card printer on the network and sets up a print queue for it. It "
        "takes about a minute.")));
    column->addWidget(
        makeText(tr("You need:\n"
                    "•  the printer, switched on and connected to the network,\n"
                    "•  its IP address, if the search doesn't find it,\n"
                    "•  the package with the printer's driver,\n"
                    "•  an administrator's password, unless you may add printers.")));
    column->addWidget(makeText(
        tr("To add a printer that is connected directly to this computer, use the printer settings of your "
           "desktop.")));
    column->addStretch();
    setContentWidget(content);
}

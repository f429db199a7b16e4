// An empty window of the installer's size: what the toolkit costs by itself. With --text it has the
// installer's icon and one line of text, for which the toolkit reads the fonts and loads what draws the icon,
// once in a process.

#include <QApplication>
#include <QIcon>
#include <QLabel>
#include <QWidget>

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QWidget window;
    if (argc > 1) {
        window.setWindowIcon(QIcon(QStringLiteral(QUAZEL_ICON)));
        auto* const line = new QLabel(QStringLiteral("Continue"), &window);
        line->resize(window.size());
    }
    window.resize(720, 540);
    window.show();
    return QApplication::exec();
}

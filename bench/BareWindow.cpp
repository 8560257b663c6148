// A minimal Qt program: a window with a button.
#include <QApplication>
#include <QIcon>
#include <QMainWindow>
#include <QPushButton>

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.setCentralWidget(new QPushButton(QStringLiteral("Button")));
    if (argc == 2) { // path of an icon, to measure the time that an icon takes
        window.setWindowIcon(QIcon(QString::fromLocal8Bit(argv[1])));
    }
    window.resize(800, 600);
    window.show();
    return QApplication::exec();
}

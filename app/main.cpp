#include "app/MainWindow.h"
#include "app/ProcessSetup.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char* argv[])
{
    app::setUpProcess();
    QApplication application(argc, argv);
    MainWindow window;
    window.setWindowTitle(QStringLiteral("BELUN-DownLoad"));
    window.setWindowIcon(QIcon(QStringLiteral(":/Images/appicon.png")));
    window.show();
    return QApplication::exec();
}

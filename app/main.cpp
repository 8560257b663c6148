#include "app/MainWindow.h"
#include "app/ProcessSetup.h"

#include <QApplication>
#include <QIcon>

namespace {

/// Makes Qt scale the whole window with the pixel density of the screen, from Qt 5.14 on also by
/// fractional factors; at 96 dpi nothing changes. Otherwise only the fonts would grow, and texts
/// would be cut off.
void scaleToTheScreen()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0) // Qt 6 does this by default
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    QApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
#endif
}

} // namespace

int main(int argc, char* argv[])
{
    app::setUpProcess();
    scaleToTheScreen();
    QApplication application(argc, argv);
    MainWindow window;
    window.setWindowTitle(QStringLiteral("BELUN-DownLoad"));
    window.setWindowIcon(QIcon(QStringLiteral(":/Images/appicon.png")));
    window.show();
    return QApplication::exec();
}

// Works the program's own window from inside: linked with the program's main function, it takes
// one command per line from standard input and confirms each with a line "done".
//   click NAME    clicks the widget of that object name as soon as it is enabled
//   choose ROW    clicks a row of the file table
//   close         closes the window, as its close button does
#include <cstdio>
#include <string>

#include <unistd.h>

#include <QApplication>
#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QWidget>

namespace {

constexpr int enabledLimit = 5000; // milliseconds

QWidget* programWindow()
{
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (widget->objectName() == QLatin1String("MainWindow")) {
            return widget;
        }
    }
    qFatal("no window");
    return nullptr;
}

void obey(const QByteArray& line)
{
    const QByteArray command = line.split(' ').first();
    const QString argument = QString::fromUtf8(line.mid(command.size() + 1));
    QWidget* window = programWindow();
    if (command == "click") {
        auto* widget = window->findChild<QWidget*>(argument);
        if (!QTest::qWaitFor([widget] { return widget->isEnabled(); }, enabledLimit)) {
            qFatal("%s stays disabled", qPrintable(argument));
        }
        QTest::mouseClick(widget, Qt::LeftButton);
    } else if (command == "choose") {
        auto* table = window->findChild<QTableWidget*>();
        QTest::mouseClick(table->viewport(), Qt::LeftButton, Qt::NoModifier,
                          table->visualItemRect(table->item(argument.toInt(), 0)).center());
    } else if (command == "close") {
        window->close();
    } else {
        qFatal("unknown command: %s", line.constData());
    }
    std::puts("done");
    std::fflush(stdout);
}

void readCommands()
{
    static QByteArray pending;
    char buffer[256];
    const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
    if (count <= 0) {
        std::_Exit(EXIT_FAILURE); // the test has gone
    }
    pending.append(buffer, static_cast<int>(count));
    for (auto end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
        const QByteArray line = pending.left(end);
        pending.remove(0, end + 1);
        obey(line);
    }
}

void listenToTheTest()
{
    // Behind the window's making, when the event loop runs.
    QTimer::singleShot(0, qApp, [] {
        auto* input = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, qApp);
        QObject::connect(input, &QSocketNotifier::activated, qApp, [] { readCommands(); });
    });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(listenToTheTest)

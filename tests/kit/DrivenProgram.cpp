// Linked with the program's main function, this code operates the program's window from inside. It
// reads one command per line from the socket named by DRIVEN_PROGRAM_SOCKET and confirms each
// command with a line "done".
//   click NAME    clicks the widget with that object name as soon as it is enabled
//   choose ROW    clicks a row of the file table
//   text NAME     sends the text of the line edit with that object name before "done"
//   point         sends the decimal point of the process's locale before "done"
//   screen        sends the window's size, its logical dots per inch, and the number of screen
//                 pixels per window pixel before "done"
//   close         closes the window
#include <clocale>
#include <cstdio>
#include <cstring>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <QApplication>
#include <QByteArray>
#include <QLineEdit>
#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QTableWidget>
#include <QTest>
#include <QTimer>
#include <QWidget>

namespace {

constexpr int enabledLimit = 5000; // milliseconds

int test = -1; // the socket that is connected to the test

void answer(const QByteArray& line)
{
    const QByteArray bytes = line + '\n';
    if (::write(test, bytes.constData(), static_cast<std::size_t>(bytes.size())) != bytes.size()) {
        qFatal("cannot answer");
    }
}

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
    } else if (command == "text") {
        answer(window->findChild<QLineEdit*>(argument)->text().toUtf8());
    } else if (command == "point") {
        answer(std::localeconv()->decimal_point);
    } else if (command == "screen") {
        answer(QStringLiteral("%1 x %2, %3 dpi, scale %4")
                   .arg(window->width())
                   .arg(window->height())
                   .arg(window->logicalDpiX())
                   .arg(window->devicePixelRatioF(), 0, 'g', 12)
                   .toUtf8());
    } else if (command == "close") {
        window->close();
    } else {
        qFatal("unknown command: %s", line.constData());
    }
    answer("done");
}

void readCommands()
{
    static QByteArray pending;
    char buffer[256];
    const ssize_t count = ::read(test, buffer, sizeof buffer);
    if (count <= 0) {
        std::_Exit(EXIT_FAILURE); // the test has ended
    }
    pending.append(buffer, static_cast<int>(count));
    for (auto end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
        const QByteArray line = pending.left(end);
        pending.remove(0, end + 1);
        obey(line);
    }
}

void connectToTheTest(const QByteArray& path)
{
    test = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un place{};
    place.sun_family = AF_UNIX;
    std::strncpy(place.sun_path, path.constData(), sizeof place.sun_path - 1);
    if (::connect(test, reinterpret_cast<const sockaddr*>(&place), sizeof place) != 0) {
        qFatal("cannot connect to %s", path.constData());
    }
}

void listenToTheTest()
{
    // Runs after the window was created, once the event loop runs.
    QTimer::singleShot(0, qApp, [] {
        connectToTheTest(qgetenv("DRIVEN_PROGRAM_SOCKET"));
        auto* input = new QSocketNotifier(test, QSocketNotifier::Read, qApp);
        QObject::connect(input, &QSocketNotifier::activated, qApp, [] { readCommands(); });
    });
}

} // namespace

Q_COREAPP_STARTUP_FUNCTION(listenToTheTest)

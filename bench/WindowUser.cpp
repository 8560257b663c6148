#include "bench/WindowUser.h"

#include <QCoreApplication>
#include <QEvent>
#include <QEventLoop>
#include <QIcon>
#include <QLineEdit>
#include <QMetaObject>
#include <QTimer>

namespace {

/// An event filter that ends an event loop when the last download has finished. Between two files
/// the download button is enabled only briefly. Therefore each time the button has been enabled, a
/// queued call checks whether it still is.
class EndOfDownloads : public QObject
{
public:
    EndOfDownloads(QAbstractButton& button, QEventLoop& loop) : m_button(button), m_loop(loop)
    {
        m_button.installEventFilter(this);
    }

    bool eventFilter(QObject* /*receiver*/, QEvent* event) override
    {
        if (event->type() == QEvent::EnabledChange && m_button.isEnabled()) {
            QMetaObject::invokeMethod(
                this, [this] { endIfIdle(); }, Qt::QueuedConnection);
        }
        return false;
    }

private:
    void endIfIdle()
    {
        if (m_button.isEnabled()) {
            m_loop.quit();
        }
    }

    QAbstractButton& m_button;
    QEventLoop& m_loop;
};

} // namespace

WindowUser::WindowUser()
{
    m_window.setWindowTitle(QStringLiteral("BELUN-DownLoad"));
    m_window.setWindowIcon(QIcon(QStringLiteral(":/Images/appicon.png")));
    m_window.show();
    wait(200);
}

void WindowUser::link()
{
    click("pushButtonLinkBELUN");
    if (child<QLineEdit>("lineEditLinkBELUN").text() != QLatin1String("Link Success!")) {
        qFatal("no link");
    }
}

void WindowUser::browse()
{
    click("pushButtonEnterTFcard");
    QCoreApplication::processEvents();
    if (table().rowCount() == 0) {
        qFatal("no recordings");
    }
}

void WindowUser::downloadAll()
{
    table().selectAll();
    auto& button = child<QAbstractButton>("pushButtonDownloadFile");
    QEventLoop loop;
    const EndOfDownloads end(button, loop);
    button.click();
    if (button.isEnabled()) {
        qFatal("no download has begun");
    }
    loop.exec();
}

void WindowUser::wait(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

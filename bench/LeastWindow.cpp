// The smallest window that does the required work of a download: a thread reads at most 4,096 bytes
// at a time, writes them and emits a queued signal, and each signal updates a plain progress bar.
#include "bench/Camera.h"
#include "bench/Report.h"

#include <array>
#include <cstdio>

#include <fcntl.h>
#include <unistd.h>

#include <QApplication>
#include <QMainWindow>
#include <QProgressBar>
#include <QThread>
#include <QTimer>

namespace {

class Download : public QThread
{
    Q_OBJECT

public:
    Download(const char* path, const char* file) : m_path(path), m_file(file) {}

signals:
    void progress(qint64 received, qint64 total);

protected:
    void run() override
    {
        const int camera = bench::connectToCamera();
        const long long total = bench::sendRequest(camera, m_path);
        const int file = ::open(m_file, O_WRONLY | O_CREAT, 0777);
        std::array<char, 4096> buffer;
        qint64 received = 0;
        for (;;) {
            const ssize_t count = ::read(camera, buffer.data(), buffer.size());
            if (count <= 0) {
                return;
            }
            if (::write(file, buffer.data(), static_cast<std::size_t>(count)) != count) {
                std::perror("bench_least_window");
                return;
            }
            received += count;
            emit progress(received, total);
        }
    }

private:
    const char* m_path;
    const char* m_file;
};

} // namespace

int main(int argc, char* argv[])
{
    QApplication application(argc, argv);
    if (argc != 3) {
        std::fputs("Usage: bench_least_window PATH FILE\nDownloads PATH from the camera.\n",
                   stderr);
        return 2;
    }
    QMainWindow window;
    auto* bar = new QProgressBar;
    window.setCentralWidget(bar);
    window.resize(795, 712);
    window.show();

    double begin = 0;
    double cpu = 0;
    Download download(argv[1], argv[2]);
    QObject::connect(&download, &Download::progress, &window, [bar](qint64 received, qint64 total) {
        bar->setMaximum(static_cast<int>(total));
        bar->setValue(static_cast<int>(received));
    });
    QObject::connect(&download, &QThread::finished, &window, [&begin, &cpu] {
        bench::report({{"seconds", bench::now() - begin},
                       {"cpu", bench::cpuSeconds() - cpu},
                       {"peakKilobytes", bench::peakKilobytes()}});
        QCoreApplication::quit();
    });
    constexpr int painted = 200; // milliseconds
    QTimer::singleShot(painted, &window, [&begin, &cpu, &download] {
        begin = bench::now();
        cpu = bench::cpuSeconds();
        download.start();
    });
    return QApplication::exec();
}

#include "LeastWindow.moc"

#include "tests/download/CameraPlay.h"

#include "tests/download/DownloadScene.h"
#include "tests/kit/PacedSending.h"
#include "tests/kit/SleepWatch.h"

#include <QDir>
#include <QFile>

using support::Exchange;
using support::Peer;

namespace {

std::string progressOf(const DownloadRecorder& recorder)
{
    std::string text = " progress=";
    for (int number = 0; number < recorder.received.size(); ++number) {
        text += (number == 0 ? "" : ",") + std::to_string(recorder.received.at(number)) + "/" +
                std::to_string(recorder.announced.at(number));
    }
    return text;
}

/// Returns whether each piece that ends in the saved body was reported once, and nothing else.
bool eachPieceIsReported(const DownloadRecorder& recorder, const std::vector<std::string>& pieces,
                         qint64 saved, qint64 announced)
{
    qint64 count = saved; // becomes the number of body bytes sent so far; negative in the head
    for (const std::string& piece : pieces) {
        count -= static_cast<qint64>(piece.size());
    }
    QList<qint64> expected;
    for (const std::string& piece : pieces) {
        count += static_cast<qint64>(piece.size());
        if (count > 0) {
            expected.append(count);
        }
    }
    return recorder.received == expected &&
           recorder.announced.count(announced) == recorder.announced.size();
}

} // namespace

QByteArray describe(const resp_header& head)
{
    std::string text;
    const auto add = [&text](const char* name, const std::string& value) {
        text += (text.empty() ? "" : " ") + std::string(name) + "=" + value;
    };
    if (head.status_code != 0) {
        add("status", std::to_string(head.status_code));
    }
    if (head.content_type[0] != '\0') {
        add("type", support::shortened(head.content_type));
    }
    if (head.content_length != 0) {
        add("length", std::to_string(head.content_length));
    }
    return QByteArray::fromStdString(text);
}

std::string played(const Exchange& exchange, const std::vector<std::string>& pieces)
{
    const std::string operation = "download ";
    if (exchange.call.rfind(operation, 0) != 0) {
        return "unknown call";
    }
    const QString name = QString::fromStdString(exchange.call.substr(operation.size()));
    QFile file(QDir::homePath() + "/Desktop/DCIM/" + name);
    file.remove();

    Download download(name);
    const support::SleepWatch reader(download.thread);
    const Camera camera([&](Peer& peer) {
        peer.receiveUntil(Camera::requestEnd);
        support::sendPaced(peer, pieces, Camera::port, [&reader] { return reader.isAsleep(); });
        if (exchange.peerCloses) {
            peer.close();
        } else if (exchange.peerResets) {
            peer.reset();
        } else {
            peer.holdOpen();
        }
    });
    if (!download.run()) {
        return "not finished";
    }

    const resp_header& head = download.thread.respHeader;
    std::string text = describe(head).toStdString();
    const bool saved = file.open(QIODevice::ReadOnly);
    if (!exchange.pauses.empty() ||
        !eachPieceIsReported(download.recorder, pieces, file.size(), head.content_length)) {
        text += progressOf(download.recorder);
    }
    const QByteArray printed = download.output.text();
    text += printed.isEmpty() ? "" : " prints=" + support::inQuotes(printed.toStdString());
    text += text.empty() ? "" : " ";
    return text + (saved ? support::inQuotes(file.readAll().toStdString()) : "no file");
}

#include "tests/app/WindowPlay.h"

#include "tests/app/Scene.h"
#include "tests/kit/MessageBoxWatcher.h"

#include <atomic>
#include <utility>

#include <QMessageBox>
#include <QStringList>
#include <QTest>

using support::Conversation;
using support::Exchange;
using support::Peer;

namespace {

/// Returns the short name of a request and its argument, or the target if it is another one.
QString shortName(const QByteArray& target)
{
    for (const auto& [name, start] :
         {std::pair("count", fake::countTarget), std::pair("list", fake::listTarget),
          std::pair("info", fake::infoTarget), std::pair("delete", fake::deleteTarget),
          std::pair("delete all", fake::deleteAllTarget),
          std::pair("format", fake::formatTarget)}) {
        if (target.startsWith(start)) {
            const QByteArray argument = target.mid(static_cast<int>(qstrlen(start)));
            return QString::fromUtf8((name + (' ' + argument)).trimmed());
        }
    }
    return QString::fromUtf8(target);
}

/// Makes the camera send these answers in order, and then close without an answer. Returns a
/// counter of the requests.
std::shared_ptr<std::atomic<int>> giveAnswers(fake::Camera& camera, const Texts& answers)
{
    auto asked = std::make_shared<std::atomic<int>>(0);
    camera.on("", [answers, asked](Peer& peer) {
        const QByteArray bytes = answers.value((*asked)++);
        const bool isWhole = bytes.isEmpty() || bytes.startsWith("HTTP/");
        peer.send(isWhole ? bytes : fake::withLength(bytes));
    });
    return asked;
}

/// Links the window and lists the names; the camera does not answer the requests for details.
void showCard(Scene& scene, const QByteArray& names)
{
    Texts all = QByteArray(names).replace(", ", ";").split(';');
    scene.link();
    giveAnswers(*scene.camera,
                {"=\"" + QByteArray::number(all.size()) + "\";", fake::fileList(all)});
    scene.user.clickBrowse();
    QCOMPARE(scene.user.table().rowCount(), all.size());
}

void act(const UserWindow& user, const QString& action)
{
    if (!action.startsWith("delete ") || action == "delete all") {
        const QString text = QString(action).replace(' ', '_');
        user.probe().click(support::windowText(text).shownBy.first());
        return;
    }
    QList<int> rows;
    for (const QString& number : action.mid(7).split(' ')) {
        rows.append(number.toInt());
    }
    user.deleteRows(rows);
}

/// Plays one call. Returns the result in the words of the conversations.
QString played(Scene& scene, const QString& action, const Exchange& exchange)
{
    Texts answers;
    for (const support::Piece& piece : exchange.pieces) {
        answers.append(QByteArray::fromStdString(piece.bytes));
    }
    support::MessageBoxWatcher watcher;
    if (exchange.result.find("box ") != std::string::npos) {
        watcher.answerNext(QMessageBox::Ok);
    }
    const auto asked = giveAnswers(*scene.camera, answers);
    scene.camera->forgetRequests();
    act(scene.user, action);

    QStringList seen;
    for (const QByteArray& target : scene.camera->targets()) {
        seen.append(shortName(target));
    }
    for (const support::SeenBox& box : watcher.boxes()) {
        seen.append("box " + box.text);
    }
    const QString requests = seen.isEmpty() ? "no request" : seen.join(", ");
    if (*asked != answers.size() && answers != Texts{""}) {
        return QStringLiteral("%1 answers are stated for: ").arg(answers.size()) + requests;
    }
    return requests + ": " + shownTable(scene.user) +
           (scene.user.canDeleteAll() ? "" : "; Delete All Files is disabled");
}

} // namespace

void addConversations(const char* file)
{
    const std::string start = std::string(file) + ": ";
    support::addConversations("window", [&](const Conversation& conversation) {
        return conversation.name.rfind(start, 0) == 0;
    });
}

void playInWindow(const Conversation& conversation)
{
    Scene scene;
    for (const Exchange& exchange : conversation.exchanges) {
        const QStringList call = QString::fromStdString(exchange.call).split(" given ");
        if (call.size() == 2) {
            showCard(scene, call[1].toUtf8());
        }
        QCOMPARE(played(scene, call[0], exchange), QString::fromStdString(exchange.result));
    }
}

QString shownTable(const UserWindow& user)
{
    QString rows;
    for (int row = 0; row < user.table().rowCount(); ++row) {
        const QStringList cells = user.row(row);
        bool hasDetails = false;
        for (int column = 1; column < cells.size(); ++column) {
            hasDetails = hasDetails || user.table().item(row, column) != nullptr;
        }
        rows += '[' + (hasDetails ? cells.join('|') : cells.first()) + ']';
    }
    return rows.isEmpty() ? "no rows" : rows;
}

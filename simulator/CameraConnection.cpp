#include "simulator/CameraConnection.h"

namespace simulator {

namespace {

constexpr std::size_t longestRequest = 65'536;
constexpr Milliseconds headCutPause{100};
constexpr Milliseconds linkLostPause{500};

} // namespace

CameraConnection::CameraConnection(FileDescriptor socket, ConnectionName name, Journal& journal,
                                   CameraState& state)
    : Connection(std::move(socket), std::move(name), journal), m_state(&state)
{
}

void CameraConnection::received(std::string_view bytes)
{
    if (m_requestWhole) {
        return; // one exchange per connection
    }
    m_request += bytes;
    m_requestWhole =
        m_request.find("\r\n\r\n") != std::string::npos || m_request.size() > longestRequest;
}

void CameraConnection::work(TimePoint)
{
    if (m_requestWhole && !m_answered && !m_state->faults->names(Fault::Silent, "camera")) {
        m_answered = true;
        takeRequest();
    }
}

void CameraConnection::takeRequest()
{
    const std::size_t lineEnd = m_request.find("\r\n");
    const auto target = requestTarget(std::string_view(m_request).substr(0, lineEnd));
    const RequestKind kind = target ? requestKind(*target) : RequestKind::Other;
    ++m_state->exchanges;
    JournalLine request = line("request");
    request.number("exchange", m_state->exchanges).text("kind", kindName(kind));
    if (target) {
        request.text("target", *target);
    }
    journal().write(request);

    m_state->exchangeBegins(m_state->exchanges);
    const FaultScope faults(*m_state->faults, kindName(kind), m_state->exchanges);
    m_isDownload = kind == RequestKind::Recording;
    if (faults.active(Fault::LinkLostMidCommand)) {
        m_state->dropModules();
        queuePause(linkLostPause);
    }
    if (const auto delay = faults.number(Fault::AnswerDelay)) {
        queuePause(Milliseconds(*delay));
    }
    if (m_request.size() > longestRequest) {
        queueAnswer(errorAnswer(431), faults);
    } else if (!target) {
        const bool otherMethod = m_request.rfind(" HTTP/1.1", lineEnd) != std::string::npos;
        queueAnswer(errorAnswer(otherMethod ? 405 : 400), faults);
    } else {
        queueAnswer(m_state->answers->answer(kind, *target, faults, m_state->exchanges), faults);
    }
}

void CameraConnection::queueAnswer(Answer answer, const FaultScope& faults)
{
    AnswerBytes bytes = answerBytes(std::move(answer), faults, m_state->exchanges);
    setRate(m_state->rate);
    if (const auto gap = faults.number(Fault::ByteByByte)) {
        setSingleBytes(Milliseconds(*gap));
    }
    if (faults.active(Fault::SplitHead)) {
        queueMessage(takeFront(bytes.head, messageSize(bytes.head) / 2));
        queuePause(headCutPause);
    }
    // head and literal body become one part, so that they are sent with one write
    for (Part& part : bytes.body) {
        append(bytes.head, std::move(part));
    }
    queueMessage(std::move(bytes.head));
    if (!bytes.held.empty()) {
        Step hold{Step::Kind::Hold};
        hold.held = [table = m_state->faults] { return table->active(Fault::Stall); };
        queue(std::move(hold));
        queueMessage(std::move(bytes.held));
    }
    if (m_isDownload) {
        Step note{Step::Kind::Call};
        note.call = m_state->downloadEnds;
        queue(std::move(note));
    }
    queue(Step{bytes.end == AnswerEnd::Reset ? Step::Kind::Reset : Step::Kind::Close});
}

void CameraConnection::queueMessage(Message message)
{
    for (Part& part : message) {
        Step step{Step::Kind::Send};
        step.part = std::move(part);
        queue(std::move(step));
    }
}

} // namespace simulator

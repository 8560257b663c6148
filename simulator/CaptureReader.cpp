// Reads a packet capture with libpcap.
#include "simulator/PacketBytes.h"
#include "simulator/RecordedRun.h"
#include "simulator/TcpStream.h"

#include <array>
#include <memory>
#include <optional>
#include <tuple>

#include <pcap/pcap.h>

namespace simulator {

namespace {

using Kind = ObservedEvent::Kind;

struct Address
{
    const char* device;
    std::uint32_t host;
    std::uint16_t port;
};

constexpr std::array<Address, 3> devices = {{
    {"control", 0xC0A80195U, 5000}, // 192.168.1.149
    {"ground", 0xC0A80194U, 5000},  // 192.168.1.148
    {"camera", 0xC0A80178U, 80},    // 192.168.1.120
}};

const Address* deviceAt(std::uint32_t host, std::uint16_t port)
{
    for (const Address& each : devices) {
        if (each.host == host && each.port == port) {
            return &each;
        }
    }
    return nullptr;
}

/// Sets the length of the link layer's header. Returns false for a link type that is not supported.
bool linkHeader(int linkType, std::size_t& length)
{
    switch (linkType) {
    case DLT_EN10MB:
        length = 14;
        return true;
    case DLT_LINUX_SLL:
        length = 16;
        return true;
    case DLT_LINUX_SLL2:
        length = 20;
        return true;
    case DLT_NULL:
    case DLT_LOOP:
        length = 4;
        return true;
    case DLT_RAW:
        length = 0;
        return true;
    default:
        return false;
    }
}

/// One TCP segment.
struct Segment
{
    std::uint32_t sequence;
    std::uint32_t acknowledgement;
    std::uint8_t flags;
    std::string_view captured;
    std::uint32_t size; ///< on the wire
    Microseconds time;

    bool fin() const { return (flags & 1U) != 0; }
    bool syn() const { return (flags & 2U) != 0; }
    bool reset() const { return (flags & 4U) != 0; }
    bool acknowledges() const { return (flags & 16U) != 0; }
};

/// The connections to the three devices, followed packet by packet.
class CaptureFollower
{
public:
    CaptureFollower(std::vector<ObservedEvent>& events, RecordedRun& run)
        : m_events(&events), m_run(&run)
    {
    }

    /// Adds a packet. packet: its bytes from the IP header on, as far as they were captured.
    void add(const PacketBytes& packet, Microseconds time)
    {
        constexpr std::uint8_t tcp = 6;
        const bool isFragment = (packet.word(6) & 0x3FFFU) != 0;
        if (packet.byte(0) >> 4 != 4 || packet.byte(9) != tcp || isFragment) {
            return;
        }
        const std::size_t header = static_cast<std::size_t>(packet.byte(0) & 0x0FU) * 4;
        const PacketBytes tcpPart = packet.from(header);
        const std::size_t data = static_cast<std::size_t>(tcpPart.byte(12) >> 4) * 4;
        // If the network card segments large packets, their length field may be 0.
        const std::size_t length = packet.word(2) != 0 ? packet.word(2) : packet.size();
        const std::size_t size = length > header + data ? length - header - data : 0;
        const Segment segment{tcpPart.number(4),
                              tcpPart.number(8),
                              tcpPart.byte(13),
                              tcpPart.from(data).view(),
                              static_cast<std::uint32_t>(size),
                              time};
        const std::uint32_t source = packet.number(12);
        const std::uint32_t target = packet.number(16);
        if (const Address* to = deviceAt(target, tcpPart.word(2))) {
            fromClient({to->device, source, tcpPart.word(0)}, segment);
        } else if (const Address* from = deviceAt(source, tcpPart.word(0))) {
            fromDevice({from->device, target, tcpPart.word(2)}, segment);
        }
    }

    /// Adds the numbers of gaps and filled-in bytes of the remaining connections to the run.
    void finish()
    {
        while (!m_connections.empty()) {
            forget(m_connections.begin()->first);
        }
    }

private:
    using Key = std::tuple<std::string, std::uint32_t, std::uint16_t>;
    struct Connection
    {
        int number = 0;
        std::optional<std::uint32_t> start; ///< sequence number of the client's first byte
        bool wasReset = false;              ///< what follows is repeated, or came too late
        TcpStream received;
        TcpStream sent;
    };

    void note(Kind kind, const Key& key, const Connection& connection, Microseconds time,
              std::string bytes = {})
    {
        m_events->push_back({kind, std::get<0>(key), connection.number, time, std::move(bytes)});
    }

    void noteBytes(Kind kind, const Key& key, const Connection& connection, Microseconds time,
                   std::string bytes)
    {
        if (!bytes.empty()) {
            note(kind, key, connection, time, std::move(bytes));
        }
    }

    void forget(const Key& key)
    {
        const auto known = m_connections.find(key);
        if (known == m_connections.end()) {
            return;
        }
        for (const TcpStream* stream : {&known->second.received, &known->second.sent}) {
            m_run->filledRuns += stream->filledRuns();
            m_run->filledBytes += stream->filledBytes();
        }
        m_connections.erase(known);
    }

    const Connection* find(const Key& key) const
    {
        const auto known = m_connections.find(key);
        return known != m_connections.end() ? &known->second : nullptr;
    }

    /// Forgets an earlier connection from the same port. A connection that starts with this byte of
    /// the client is the same one, whose opening was sent or captured again.
    void forgetUnlessItStartsAt(std::uint32_t sequence, const Key& key)
    {
        const Connection* const known = find(key);
        if (known && known->start != sequence) {
            forget(key);
        }
    }

    /// Returns the connection with this key. Adds it if it is unknown: it may have been opened
    /// before the capture began.
    Connection& open(const Key& key, Microseconds time)
    {
        Connection& connection = m_connections[key];
        if (connection.number == 0) {
            connection.number = ++m_lastNumber;
            note(Kind::Open, key, connection, time);
        }
        return connection;
    }

    void fromClient(const Key& key, const Segment& segment)
    {
        if (segment.syn()) {
            forgetUnlessItStartsAt(segment.sequence + 1, key);
            return;
        }
        const Connection* const known = find(key);
        if (known ? known->wasReset : segment.size == 0 || segment.reset()) {
            return;
        }
        Connection& connection = open(key, segment.time);
        if (segment.reset()) {
            connection.wasReset = true;
            return;
        }
        if (segment.acknowledges()) {
            noteBytes(Kind::Sent, key, connection, segment.time,
                      connection.sent.acknowledged(segment.acknowledgement));
        }
        noteBytes(Kind::Received, key, connection, segment.time,
                  connection.received.add(segment.sequence, segment.captured, segment.size));
        if (segment.fin()) {
            connection.received.end(segment.sequence + segment.size);
        }
    }

    void fromDevice(const Key& key, const Segment& segment)
    {
        if (segment.syn()) {
            forgetUnlessItStartsAt(segment.acknowledgement, key);
            if (!find(key)) {
                Connection& connection = open(key, segment.time);
                connection.start = segment.acknowledgement;
                connection.sent.begin(segment.sequence + 1);
                connection.received.begin(segment.acknowledgement);
            }
            return;
        }
        const Connection* const known = find(key);
        if (known ? known->wasReset : segment.size == 0) {
            return; // nothing to record: a refusal, or the end of an earlier connection
        }
        Connection& connection = open(key, segment.time);
        if (segment.acknowledges() && !segment.reset()) {
            noteBytes(Kind::Received, key, connection, segment.time,
                      connection.received.acknowledged(segment.acknowledgement));
        }
        noteBytes(Kind::Sent, key, connection, segment.time,
                  connection.sent.add(segment.sequence, segment.captured, segment.size));
        if (segment.reset()) {
            note(Kind::Reset, key, connection, segment.time);
            connection.wasReset = true;
        } else if (segment.fin() && connection.sent.end(segment.sequence + segment.size)) {
            note(Kind::HalfClose, key, connection, segment.time);
        }
    }

    std::vector<ObservedEvent>* m_events;
    RecordedRun* m_run;
    std::map<Key, Connection> m_connections;
    int m_lastNumber = 0;
};

} // namespace

std::string readCapture(const std::string& path, std::vector<ObservedEvent>& events,
                        RecordedRun& run)
{
    char error[PCAP_ERRBUF_SIZE] = {};
    const std::unique_ptr<pcap_t, decltype(&::pcap_close)> capture(
        ::pcap_open_offline_with_tstamp_precision(path.c_str(), PCAP_TSTAMP_PRECISION_MICRO, error),
        &::pcap_close);
    if (!capture) {
        return path + ": neither a journal nor a packet capture (" + error + ")";
    }
    std::size_t header = 0;
    const int linkType = ::pcap_datalink(capture.get());
    if (!linkHeader(linkType, header)) {
        const char* const name = ::pcap_datalink_val_to_name(linkType);
        return path + ": captures of the kind " + (name ? name : std::to_string(linkType)) +
               " are not understood; Ethernet ones are";
    }
    CaptureFollower follower(events, run);
    pcap_pkthdr* packet = nullptr;
    const unsigned char* bytes = nullptr;
    int result = 0;
    while ((result = ::pcap_next_ex(capture.get(), &packet, &bytes)) == 1) {
        const PacketBytes whole({reinterpret_cast<const char*>(bytes), packet->caplen});
        follower.add(whole.from(header),
                     std::chrono::seconds(packet->ts.tv_sec) + Microseconds(packet->ts.tv_usec));
    }
    follower.finish();
    return result == PCAP_ERROR_BREAK ? std::string() : path + ": " + ::pcap_geterr(capture.get());
}

} // namespace simulator

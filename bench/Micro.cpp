// Measures single functions; none uses the network.
#include "card/CardAnswers.h"
#include "card/FileInfoText.h"
#include "card/NameTable.h"
#include "download/ResponseHead.h"
#include "http/HTTPClient.h"
#include "link/VehicleFrame.h"

#include <memory>
#include <string>

#include <benchmark/benchmark.h>
#include <sys/socket.h>
#include <unistd.h>

namespace {

constexpr char head[] = "HTTP/1.1 200 OK\r\n"
                        "Server: nginx\r\n"
                        "Date: Sat, 21 Nov 2026 13:00:00 GMT\r\n"
                        "Content-Type: video/mp4\r\n"
                        "Content-Length: 536870912\r\n"
                        "Last-Modified: Sat, 21 Nov 2026 12:00:00 GMT\r\n"
                        "Connection: close\r\n"
                        "Accept-Ranges: bytes\r\n\r\n";

void downloadHead(benchmark::State& state)
{
    for (auto unused : state) {
        download::ResponseHead reader;
        for (const char byte : std::string_view(head)) {
            benchmark::DoNotOptimize(reader.add(byte));
        }
        benchmark::DoNotOptimize(download::parseHead(reader.text()));
    }
}

/// Measures reading a head that is already in the socket, with one system call per byte.
void clientHead(benchmark::State& state)
{
    int ends[2];
    if (::socketpair(AF_UNIX, SOCK_STREAM, 0, ends) != 0) {
        state.SkipWithError("no socket pair");
        return;
    }
    HTTPSession session;
    session.socketDescriptor = ends[0];
    HTTPClient client;
    for (auto unused : state) {
        if (::send(ends[1], head, sizeof head - 1, 0) != sizeof head - 1) {
            state.SkipWithError("nothing sent");
        }
        HTTPResponse response;
        benchmark::DoNotOptimize(client.readHeader(session, response));
    }
    ::close(ends[1]);
}

void listWalk(benchmark::State& state)
{
    std::string answer;
    for (int i = 0; i < state.range(0); ++i) {
        answer += "sd/DCIM/100ZEPNA/REC" + std::to_string(10'000 + i) + ".MP4;";
    }
    answer += "\r\n";
    const auto names = std::make_unique<card::NameTable>();
    for (auto unused : state) {
        card::FileListWalk walk(answer.c_str());
        for (int row = 0; const auto entry = walk.next(); ++row) {
            names->store(row, *entry->name);
        }
        benchmark::DoNotOptimize((*names)[0]);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void details(benchmark::State& state)
{
    const char* answer = "var create=\"20260131124502\";\r\nvar size=\"67108864\";\r\n"
                         "var time=\"37\";\r\n";
    for (auto unused : state) {
        benchmark::DoNotOptimize(card::readFileInfo(answer));
    }
}

void frame(benchmark::State& state)
{
    const vehicle::Received received{0xAA, 0xAF, 0x00, 0x09, 0x07, 0x01, 0x2C,
                                     0x02, 0x58, 0x00, 0x64, 0x00, 0x0A};
    for (auto unused : state) {
        benchmark::DoNotOptimize(vehicle::decodeVersionReport(received));
        benchmark::DoNotOptimize(vehicle::isHeartbeat(received, vehicle::controlStartByte));
    }
}

} // namespace

/// Registers and runs the benchmarks without the library's macros, about which Clang 22 warns.
int main(int argc, char** argv)
{
    benchmark::RegisterBenchmark("downloadHead", downloadHead);
    benchmark::RegisterBenchmark("clientHead", clientHead);
    benchmark::RegisterBenchmark("listWalk", listWalk)->Arg(16)->Arg(64)->Arg(128);
    benchmark::RegisterBenchmark("details", details);
    benchmark::RegisterBenchmark("frame", frame);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

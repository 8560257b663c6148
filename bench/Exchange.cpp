// Repeats one GET, each time over a new connection, with this project's client or with libcurl.
#include "bench/Report.h"
#include "http/HTTPClient.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <curl/curl.h>

namespace {

std::size_t append(char* data, std::size_t size, std::size_t count, void* body)
{
    static_cast<std::string*>(body)->append(data, size * count);
    return size * count;
}

/// Returns the total size of the received bodies in bytes, or a negative number on failure.
double getByHttpClient(const char* url, int count)
{
    HTTPClient client;
    HTTPRequest request;
    request.url = url;
    double bytes = 0;
    for (int i = 0; i < count; ++i) {
        HTTPResponse response;
        std::string body;
        if (!client.get(request, response, body) || response.statusCode != 200) {
            return -1;
        }
        bytes += static_cast<double>(body.size());
    }
    return bytes;
}

double getByCurl(const char* url, int count)
{
    CURL* handle = curl_easy_init();
    std::string body;
    curl_easy_setopt(handle, CURLOPT_URL, url);
    curl_easy_setopt(handle, CURLOPT_FRESH_CONNECT, 1L);
    curl_easy_setopt(handle, CURLOPT_FORBID_REUSE, 1L);
    curl_easy_setopt(handle, CURLOPT_FAILONERROR, 1L);
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, append);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &body);
    double bytes = 0;
    for (int i = 0; i < count && bytes >= 0; ++i) {
        body = std::string();
        bytes =
            curl_easy_perform(handle) == CURLE_OK ? bytes + static_cast<double>(body.size()) : -1;
    }
    curl_easy_cleanup(handle);
    return bytes;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 4) {
        std::fputs("Usage: bench_exchange http|curl URL COUNT\n", stderr);
        return 2;
    }
    const bool ours = std::strcmp(argv[1], "http") == 0;
    const int count = std::atoi(argv[3]);
    curl_global_init(CURL_GLOBAL_ALL);
    const double memory = bench::residentKilobytes();
    const double begin = bench::now();
    const double cpu = bench::cpuSeconds();
    const double bytes = ours ? getByHttpClient(argv[2], count) : getByCurl(argv[2], count);
    bench::report({{"seconds", bench::now() - begin},
                   {"cpu", bench::cpuSeconds() - cpu},
                   {"grownKilobytes", bench::peakKilobytes() - memory},
                   {"bytes", bytes}});
    curl_global_cleanup();
    return bytes < 0 ? 1 : 0;
}

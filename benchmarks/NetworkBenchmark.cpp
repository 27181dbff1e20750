#include "api/APIBase.h"
#include "benchmarks/DelayProxy.h"
#include "devservice/DevService.h"
#include "toolkit/HttpClient.h"

#include <QCoreApplication>
#include <QJsonDocument>

#include <benchmark/benchmark.h>
#include <curl/curl.h>

#include <chrono>

// What a request of the program costs, beside a plain loop over one kept handle of libcurl that sends the
// same bodies to the same service and parses nothing.

namespace {

constexpr int kReads = 500;
constexpr int kRoundTripMs = 20;
const QString kPaths[] = {QStringLiteral("/api/v1/user/get-info"), QStringLiteral("/api/v1/device/list")};

devservice::DevService& service()
{
    static devservice::DevService instance([] {
        devservice::Options options;
        options.devices = 20;
        options.clones = 0;
        return options;
    }());
    static const bool started = instance.start();
    if (!started)
        qFatal("%s", qPrintable(instance.errorText()));
    return instance;
}

QJsonObject body()
{
    return {{"token", service().userToken()}};
}

QString originAt(int port)
{
    return QStringLiteral("https://localhost:%1").arg(port);
}

/// The floor: one easy handle, kept, with the least that a JSON request needs.
class PlainLoop
{
public:
    PlainLoop() : m_curl(curl_easy_init())
    {
        m_headers = curl_slist_append(nullptr, "Content-Type: application/json");
        curl_easy_setopt(m_curl, CURLOPT_HTTPHEADER, m_headers);
        curl_easy_setopt(m_curl, CURLOPT_CAINFO, service().caFile().toLocal8Bit().constData());
        curl_easy_setopt(m_curl, CURLOPT_CAPATH, nullptr);
        curl_easy_setopt(m_curl, CURLOPT_HTTP_VERSION, CURL_HTTP_VERSION_1_1);
        curl_easy_setopt(m_curl, CURLOPT_ACCEPT_ENCODING, "gzip");
        curl_easy_setopt(m_curl, CURLOPT_WRITEFUNCTION, &PlainLoop::append);
        curl_easy_setopt(m_curl, CURLOPT_WRITEDATA, &m_answer);
    }
    ~PlainLoop()
    {
        curl_easy_cleanup(m_curl);
        curl_slist_free_all(m_headers);
    }
    PlainLoop(const PlainLoop&) = delete;
    PlainLoop& operator=(const PlainLoop&) = delete;

    bool post(const QString& url, const QByteArray& json)
    {
        m_answer.clear();
        curl_easy_setopt(m_curl, CURLOPT_URL, url.toUtf8().constData());
        curl_easy_setopt(m_curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(json.size()));
        curl_easy_setopt(m_curl, CURLOPT_POSTFIELDS, json.constData());
        return curl_easy_perform(m_curl) == CURLE_OK && !m_answer.empty();
    }

private:
    static std::size_t append(char* data, std::size_t size, std::size_t count, void* answer)
    {
        static_cast<std::string*>(answer)->append(data, size * count);
        return size * count;
    }

    CURL* m_curl;
    curl_slist* m_headers;
    std::string m_answer;
};

/// The client's time, with the plain loop beside it in every round, so that both meet the same machine.
void reads(benchmark::State& state)
{
    PlainLoop loop;
    const QJsonObject params = body();
    const QByteArray json = QJsonDocument(params).toJson(QJsonDocument::Compact);
    APIBase api;
    api.setBaseUrl(service().origin());
    api.setTrustAnchors(service().caFile());
    bool answered = true;
    const auto seconds = [&](auto read) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kReads; ++i)
            answered = answered && read(kPaths[i % 2]);
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    double floor = 0;
    double client = 0;
    for (auto _ : state) {
        floor += seconds([&](const QString& path) { return loop.post(service().origin() + path, json); });
        const double took = seconds([&](const QString& path) {
            return api.sendPostRequest(path, params, toolkit::Exchange::Read).success;
        });
        state.SetIterationTime(took);
        client += took;
    }
    if (!answered)
        state.SkipWithError("not answered");
    state.counters["plain_ms"] = benchmark::Counter(floor * 1e3, benchmark::Counter::kAvgIterations);
    state.counters["ratio"] = client / floor;
}

void distantReadFloor(benchmark::State& state)
{
    DelayProxy line(service().port(), kRoundTripMs);
    PlainLoop loop;
    const QByteArray json = QJsonDocument(body()).toJson(QJsonDocument::Compact);
    bool answered = loop.post(originAt(line.port()) + kPaths[0], json);
    for (auto _ : state)
        answered = answered && loop.post(originAt(line.port()) + kPaths[0], json);
    if (!answered)
        state.SkipWithError("not answered");
}

/// An exchange each after one of the kind @p before, which is not timed.
void distant(benchmark::State& state, toolkit::Exchange before, toolkit::Exchange exchange)
{
    DelayProxy line(service().port(), kRoundTripMs);
    APIBase api;
    api.setBaseUrl(originAt(line.port()));
    api.setTrustAnchors(service().caFile());
    const QJsonObject params = body();
    bool answered = true;
    for (auto _ : state) {
        state.PauseTiming();
        answered = answered && api.sendPostRequest(kPaths[0], params, before).success;
        state.ResumeTiming();
        answered = answered && api.sendPostRequest(kPaths[0], params, exchange).success;
    }
    if (!answered)
        state.SkipWithError("not answered");
}

} // namespace

BENCHMARK(reads)->Name("500 reads, client")->Unit(benchmark::kMillisecond)->UseManualTime();
BENCHMARK(distantReadFloor)
    ->Name("20 ms away/read, plain loop (one round trip)")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(distant, read, toolkit::Exchange::Read, toolkit::Exchange::Read)
    ->Name("20 ms away/read, client")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(distant, writeAfterRead, toolkit::Exchange::Read, toolkit::Exchange::Write)
    ->Name("20 ms away/write, client, after a read (on its connection)")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();
BENCHMARK_CAPTURE(distant, writeAfterWrite, toolkit::Exchange::Write, toolkit::Exchange::Write)
    ->Name("20 ms away/write, client, after a write (on one of its own)")
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

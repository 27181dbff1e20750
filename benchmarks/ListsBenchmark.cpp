#include "models/AppModel.h"

#include <QCoreApplication>
#include <QEvent>
#include <QJsonDocument>
#include <QThreadPool>

#include <benchmark/benchmark.h>

// The clone list of a large farm: what a worker does with an answer beside Qt's parser, and what the UI
// thread then does with the difference. The argument is the number of clones.

namespace {

constexpr int kDevices = 1000;
constexpr int kPasted = 10000;
const QString kToken = QStringLiteral("token");

QString uid(int i)
{
    return QString::number(100000000000000 + i);
}

QByteArray clone(int i, int password)
{
    const QJsonObject members{{"id", QString("650c0ffee0%1").arg(i, 14, 16, QLatin1Char('0'))},
                              {"uid", uid(i)},
                              {"cookies", QString("c_user=%1; xs=abcdefghijklmnopqrstuvwxyz%1").arg(i)},
                              {"device_id", QString("android-%1").arg(i % kDevices)},
                              {"email", QString("clone%1@mail.example").arg(i)},
                              {"firstname", "First"},
                              {"lastname", "Last"},
                              {"mail_password", "secret"},
                              {"network", "facebook"},
                              {"password", QString("secret%1").arg(password)},
                              {"novery", i % 2 == 0},
                              {"restriction", i % 32},
                              {"secretkey", "ABCD EFGH IJKL MNOP QRST"},
                              {"secure_flags", 1},
                              {"status", 1 << i % 4},
                              {"user_id", "65f0c0ffee0000000000000a"},
                              {"farm_profile", QString("profile %1").arg(i % 7)}};
    return QJsonDocument(members).toJson(QJsonDocument::Compact);
}

/// How an answer differs from the first: every n-th clone is changed, gone or new.
struct Variant {
    int changed = 0;
    int replaced = 0;
    int from = 0;
};

QByteArray answer(int clones, const Variant& variant = {})
{
    QByteArray list;
    for (int i = 0; i < clones; ++i) {
        const bool replaced = variant.replaced && i % variant.replaced == 7;
        const int id = variant.from + i + (replaced ? 10 * clones : 0);
        list += (i ? "," : "") + clone(id, variant.changed && i % variant.changed == 7 ? 1 : 0);
    }
    return R"({"code":200,"success":true,"message":"","data":[)" + list + "]}";
}

ListReading read(const QByteArray& bytes, const SnapshotPtr& last)
{
    return AppModel::readClones({bytes.data(), std::size_t(bytes.size())}, last, kToken);
}

SnapshotPtr none()
{
    return std::make_shared<const Snapshot>();
}

// The floor that the readings are judged by.
void qtParser(benchmark::State& state)
{
    const QByteArray bytes = answer(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(QJsonDocument::fromJson(bytes));
}

void readFirst(benchmark::State& state)
{
    const QByteArray bytes = answer(int(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(read(bytes, none()));
    QThreadPool::globalInstance()->waitForDone();
}

void readDifferent(benchmark::State& state, const Variant& variant)
{
    const SnapshotPtr last = read(answer(int(state.range(0))), none()).difference->after;
    const QByteArray bytes = answer(int(state.range(0)), variant);
    for (auto _ : state)
        benchmark::DoNotOptimize(read(bytes, last));
    QThreadPool::globalInstance()->waitForDone();
}

/// The UI thread's part, with as many objects as a view shows; from one answer to the other and back.
void refresh(benchmark::State& state, const Variant& variant)
{
    AppModel model;
    RecordModel& clones = *model.cloneModel();
    const QByteArray answers[] = {answer(int(state.range(0))), answer(int(state.range(0)), variant)};
    model.applyClones(*read(answers[0], clones.snapshot()).difference);
    for (int row = 0; row < 60; ++row)
        clones.data(clones.index(row), Qt::UserRole);
    int next = 1;
    for (auto _ : state) {
        state.PauseTiming();
        const ListReading reading = read(answers[next], clones.snapshot());
        next = 1 - next;
        state.ResumeTiming();
        model.applyClones(*reading.difference);
        state.PauseTiming();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QThreadPool::globalInstance()->waitForDone();
        state.ResumeTiming();
    }
}

void filterUids(benchmark::State& state)
{
    AppModel model;
    model.cloneModel()->replace(read(answer(int(state.range(0))), none()).difference->after);
    QVariantList uids;
    for (int i = 0; i < kPasted; ++i)
        uids.append(uid(i * 7)); // some of them nobody's
    for (auto _ : state) {
        model.filterClones({{"uid", uids}});
        state.PauseTiming();
        model.filterClones({});
        state.ResumeTiming();
    }
}

void tickAll(benchmark::State& state)
{
    AppModel model;
    model.cloneModel()->replace(read(answer(int(state.range(0))), none()).difference->after);
    bool selected = false;
    for (auto _ : state)
        model.selectAllClones(selected = !selected);
}

const Variant kSame;
const Variant kChanged{100, 0, 0};
const Variant kReplaced{0, 100, 0};
const Variant kAllNew{0, 0, 100000000};

// Between two of these lies a reading, which counts for nothing but takes its time.
constexpr int kRefreshes = 10;

void sizes(benchmark::internal::Benchmark* registered)
{
    registered->Unit(benchmark::kMillisecond)->Arg(50)->Arg(5000)->Arg(50000)->Arg(200000);
}

BENCHMARK(qtParser)->Apply(sizes);
BENCHMARK(readFirst)->Apply(sizes);
BENCHMARK_CAPTURE(readDifferent, same, kSame)->Apply(sizes);
BENCHMARK_CAPTURE(readDifferent, changed, kChanged)->Apply(sizes);
BENCHMARK_CAPTURE(readDifferent, replaced, kReplaced)->Apply(sizes);
BENCHMARK_CAPTURE(readDifferent, all_new, kAllNew)->Apply(sizes);
BENCHMARK_CAPTURE(refresh, changed, kChanged)->Apply(sizes)->Iterations(kRefreshes);
BENCHMARK_CAPTURE(refresh, replaced, kReplaced)->Apply(sizes)->Iterations(kRefreshes);
BENCHMARK_CAPTURE(refresh, all_new, kAllNew)->Apply(sizes)->Iterations(kRefreshes);
BENCHMARK(filterUids)->Apply(sizes)->Iterations(kRefreshes);
BENCHMARK(tickAll)->Apply(sizes);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}

#include "models/AppModel.h"

#include <QCoreApplication>
#include <QEvent>
#include <QJsonArray>
#include <QSet>

#include <benchmark/benchmark.h>

#include <memory>

// The clone list at the size of a large farm, each step beside the least that it could cost.

namespace {

constexpr int kClones = 50000;
constexpr int kDevices = 1000;
constexpr int kPasted = 10000;

QString uid(int i)
{
    return QString::number(100000000000000 + i);
}

/// The clones as the service sends them and the client hands them over.
const QVariantList& records()
{
    static const QVariantList list = [] {
        QJsonArray array;
        for (int i = 0; i < kClones; ++i) {
            array.append(QJsonObject{{"id", QString("id%1").arg(i)},
                                     {"uid", uid(i)},
                                     {"cookies", QString("c_user=%1; xs=abcdef").arg(i)},
                                     {"device_id", QString("android-%1").arg(i % kDevices)},
                                     {"email", QString("clone%1@mail.example").arg(i)},
                                     {"firstname", "First"},
                                     {"lastname", "Last"},
                                     {"mail_password", "secret"},
                                     {"network", "facebook"},
                                     {"password", "secret"},
                                     {"novery", i % 2 == 0},
                                     {"restriction", i % 32},
                                     {"secretkey", "ABCD EFGH"},
                                     {"secure_flags", 1},
                                     {"status", 1 << i % 4},
                                     {"user_id", "user"},
                                     {"farm_profile", QString("profile %1").arg(i % 7)}});
        }
        return array.toVariantList();
    }();
    return list;
}

QVariantList pastedUids()
{
    QVariantList uids;
    for (int i = 0; i < kPasted; ++i)
        uids.append(uid(i * 7)); // some of them nobody's
    return uids;
}

void deleteTheOld()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

// Floor of reading: look at every key and value once.
void walkRecords(benchmark::State& state)
{
    records();
    for (auto _ : state) {
        int size = 0;
        for (const QVariant& record : records()) {
            const QVariantMap map = record.toMap();
            for (auto it = map.cbegin(); it != map.cend(); ++it)
                size += it.key().size() + it.value().toString().size();
        }
        benchmark::DoNotOptimize(size);
    }
}

void setClones(benchmark::State& state)
{
    AppModel model;
    records();
    for (auto _ : state) {
        model.setClones(records());
        state.PauseTiming();
        deleteTheOld();
        state.ResumeTiming();
    }
}

void deleteClones(benchmark::State& state)
{
    AppModel model;
    for (auto _ : state) {
        state.PauseTiming();
        model.setClones(records());
        model.setClones({});
        state.ResumeTiming();
        deleteTheOld();
    }
}

// Floor of deleting: as many empty objects.
void deleteObjects(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto holder = std::make_unique<QObject>();
        for (int i = 0; i < kClones; ++i)
            new QObject(holder.get());
        state.ResumeTiming();
        holder.reset();
    }
}

// Floor of filtering: a set of the pasted uids, and one look-up a clone.
void lookUpUids(benchmark::State& state)
{
    const QVariantList uids = pastedUids();
    QStringList all;
    for (int i = 0; i < kClones; ++i)
        all.append(uid(i));
    for (auto _ : state) {
        QSet<QString> accepted;
        for (const QVariant& value : uids)
            accepted.insert(value.toString());
        int passing = 0;
        for (const QString& candidate : qAsConst(all))
            passing += accepted.contains(candidate);
        benchmark::DoNotOptimize(passing);
    }
}

void filterClones(benchmark::State& state)
{
    AppModel model;
    model.setClones(records());
    const QVariantMap filters{{"uid", pastedUids()}};
    for (auto _ : state) {
        model.filterClones(filters);
        state.PauseTiming();
        model.filterClones({});
        state.ResumeTiming();
    }
}

// Floor of ticking: look at every clone once.
void walkClones(benchmark::State& state)
{
    AppModel model;
    model.setClones(records());
    for (auto _ : state) {
        int shown = 0;
        for (const CloneInfo* clone : model.clones())
            shown += clone->filtered();
        benchmark::DoNotOptimize(shown);
    }
}

void selectAllClones(benchmark::State& state)
{
    AppModel model;
    model.setClones(records());
    bool selected = false;
    for (auto _ : state)
        model.selectAllClones(selected = !selected);
}

// Floor of counting: one step in a hash for each clone.
void countDeviceIds(benchmark::State& state)
{
    QStringList ids;
    for (int i = 0; i < kClones; ++i)
        ids.append(QString("android-%1").arg(i % kDevices));
    for (auto _ : state) {
        QHash<QString, int> counts;
        for (const QString& id : qAsConst(ids))
            ++counts[id];
        benchmark::DoNotOptimize(counts.size());
    }
}

void setDevicesCountingClones(benchmark::State& state)
{
    AppModel model;
    model.setClones(records());
    QVariantList devices;
    for (int i = 0; i < kDevices; ++i)
        devices.append(QVariantMap{{"android_id", QString("android-%1").arg(i)}});
    for (auto _ : state) {
        model.setDevices(devices);
        state.PauseTiming();
        deleteTheOld();
        state.ResumeTiming();
    }
}

BENCHMARK(walkRecords)->Unit(benchmark::kMillisecond);
BENCHMARK(setClones)->Unit(benchmark::kMillisecond);
BENCHMARK(deleteObjects)->Unit(benchmark::kMillisecond);
BENCHMARK(deleteClones)->Unit(benchmark::kMillisecond);
BENCHMARK(lookUpUids)->Unit(benchmark::kMillisecond);
BENCHMARK(filterClones)->Unit(benchmark::kMillisecond);
BENCHMARK(walkClones)->Unit(benchmark::kMillisecond);
BENCHMARK(selectAllClones)->Unit(benchmark::kMillisecond);
BENCHMARK(countDeviceIds)->Unit(benchmark::kMillisecond);
BENCHMARK(setDevicesCountingClones)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}

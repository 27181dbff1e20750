#include "models/AppModel.h"
#include "tests/support/LogCapture.h"

#include <QAbstractItemModelTester>
#include <QJsonDocument>
#include <QThreadPool>
#include <QtTest>

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <random>

namespace {

std::atomic<std::ptrdiff_t> taken{0};
std::atomic<std::ptrdiff_t> mostTaken{0};

} // namespace

// What the reader takes is counted, in one thread.
void* operator new(std::size_t size)
{
    void* const memory = std::malloc(size);
    if (!memory)
        throw std::bad_alloc();
    const auto now = taken += std::ptrdiff_t(malloc_usable_size(memory));
    if (now > mostTaken)
        mostTaken = now;
    return memory;
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return operator new(size);
}
void operator delete(void* memory) noexcept
{
    taken -= std::ptrdiff_t(malloc_usable_size(memory));
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept
{
    operator delete(memory);
}

namespace {

const SnapshotPtr kNone = std::make_shared<const Snapshot>();

ListReading readClones(const QByteArray& answer, const SnapshotPtr& last = kNone, const QString& owner = "t")
{
    return AppModel::readClones({answer.data(), std::size_t(answer.size())}, last, owner);
}

QByteArray envelope(const QByteArray& list)
{
    return R"({"success":true,"data":[)" + list + "]}";
}

/// A list of records "id:value", where the id may be empty.
QByteArray records(const QStringList& list)
{
    QByteArrayList objects;
    for (const QString& text : list) {
        const QString id = text.section(':', 0, 0);
        objects << (R"({"id":")" + id + R"(","uid":")" + text.section(':', 1) + R"("})").toUtf8();
    }
    return envelope(objects.join(','));
}

} // namespace

/// The long lists: how answers are read and compared, and how the model takes its views from one to the next.
class TestLists : public QObject
{
    Q_OBJECT

private slots:
    void values()
    {
        // A value, and what it is as text, integer and flag; nothing: it is no JSON.
        const std::pair<QByteArray, QString> values[] = {
            {"\"a\\u0000<b>\\n\\\"\\\\\\/\\t\\u00e9\"", QStringLiteral("a\0<b>\n\"\\/\té|0|0")},
            {R"("\ud83d\ude00")", "😀|0|0"},
            {R"("\ud83dx\ude00")", "\ufffdx\ufffd|0|0"}, // halves of pairs
            {"\"a\tb\x01\"", "a\tb\x01|0|0"},
            {R"("\q")", "q|0|0"},
            {"\"\\\t\"", "\t|0|0"},
            {R"("\u12g4")", {}},
            {"\"\xff\"", {}},
            {R"("19")", "19|19|0"},
            {R"("-019")", "-019|-19|0"},
            {R"("19 ")", "19 |0|0"},
            {R"("1.5")", "1.5|0|0"},
            {R"("2147483648")", "2147483648|0|0"},
            {"-0", "0|0|0"},
            {"2.75", "2.75|2|0"},
            {"1e-7", "1e-07|0|0"},
            {"1.0", "1|1|0"},
            {"2147483648", "2147483648|0|0"},
            {"9007199254740993", "9007199254740993|0|0"},
            {"18446744073709551615", "18446744073709551616|0|0"},
            {"-123456789012345678901234567890", "-123456789012345677877719597056|0|0"},
            {"1e20", "100000000000000000000|0|0"},
            {"1e400", {}},
            {"01", {}},
            {"true", "|0|1"},
            {"null", "|0|0"},
            {"[1]", "|0|0"},
            {"[1,]", {}},
            {"tru", {}},
            {"1 2", {}},
            {R"({"uid":1})", "|0|0"}};
        for (const auto& [json, expected] : values) {
            // A key that comes twice counts as it comes last.
            const auto reading = readClones(envelope(R"({"uid":"x","other":)" + json + R"(,"uid":)" + json +
                                                     R"(,"status":)" + json + R"(,"novery":)" + json + "}"));
            CloneInfo clone;
            if (reading.success)
                clone.assign(*reading.difference->after->records[0]);
            const auto shown = QString("%1|%2|%3").arg(clone.uid()).arg(clone.status()).arg(clone.novery());
            QVERIFY2((reading.success ? shown : QString()) == expected, json);
        }
    }

    void envelopes()
    {
        // An answer, and the ids in it or why there are none.
        const std::pair<QByteArray, QString> answers[] = {
            {"\xef\xbb\xbf {\"success\" : true , \"data\" : [ ] } \n", ""},
            {R"({"data":[{"id":1},{"id":"2"}],"message":"m","success":true})", "1 2"},
            {R"({"success":true,"data":[{"id":1}],"d\u0061ta":[{"i\u0064":3}]})", "3"},
            {envelope("{\"id\":\"]}\"}"), "]}"},
            {R"({"success":false,"message":"not you","data":[{"id":1}]})", "!not you"},
            {R"({"success":"true","data":[{"id":1}]})", "!"},
            {R"({"success":true,"data":[{"id":1}],"success":false})", "!"},
            {R"({"success":true,"data":{}})", "!"},
            {R"({"success":true,"data":[{"id":1}],"data":null})", "!"},
            {R"({"success":true})", "!"},
            {"[]", "!The answer is no JSON object"},
            {R"({"success":true,"data":[{},]})", "!The answer is no JSON"},
            {R"({"success":true,"data":[{} {}]})", "!The answer is no JSON"},
            {R"({"success":true,"data":[{}]}x)", "!The answer is no JSON"},
            {R"({"success":true,"x":tru,"data":[{}]})", "!The answer is no JSON"},
            {"{\"success\":true,\"data\":[{\"id\":1},{\"id", "!The answer is cut"},
            {R"({"success":true,"data":[{"id":1})", "!The answer is cut"},
            {"{\"success\":true,\"data\":[{\"id\":\"\xff\"}]}", "!The answer is not UTF-8"},
            {"{\"success\":true,\"message\":\"\xff\",\"data\":[{}]}", "!The answer is not UTF-8"},
            {envelope(R"({"x":)" + QByteArray(1021, '[') + QByteArray(1021, ']') + "}"), ""},
            {envelope(R"({"x":)" + QByteArray(1022, '[') + QByteArray(1022, ']') + "}"),
             "!The answer is nested too deep"},
            {envelope("1,null,[{}]"), "!The list holds no object"}};
        for (const auto& [answer, expected] : answers) {
            const ListReading reading = readClones(answer);
            QVERIFY(reading.success == bool(reading.difference));
            QStringList ids;
            for (int i = 0; reading.success && i < int(reading.difference->after->records.size()); ++i)
                ids << reading.difference->after->records[std::size_t(i)]->text(0);
            QVERIFY2((reading.success ? ids.join(' ') : '!' + reading.message) == expected, answer);
        }
    }

    void skipsWhatIsNoObject()
    {
        const LogCapture log;
        const auto reading = readClones(envelope(R"(1,{"id":"a"},[],null,{"id":"b"})"));
        QCOMPARE(reading.difference->after->records.size(), std::size_t(2));
        QCOMPARE(log.lines().size(), 1);
        QVERIFY(log.lines().at(0).endsWith("] elements that are no objects:  3"));
    }

    void readsAcrossSlices()
    {
        // Texts that look like the ends of records, wherever a slice may be guessed to end.
        std::mt19937 random(1);
        const std::pair<QByteArray, QByteArray> texts[] = {
            {"plain", "plain"}, {"},{", "},{"}, {"\\\\\\\"},{\\\"", "\\\"},{\""}};
        for (const auto& [text, shown] : texts) {
            QByteArray list;
            QVector<QByteArray> lengths;
            for (int i = 0; list.size() < 3 * 1024 * 1024; ++i) {
                lengths << QByteArray::number(int(random() % 200));
                list += (i ? ",\n{" : "{") + QByteArray(R"("id":)") + lengths.last() +
                        ",\"x\":[{\"y\":{}},{}],\"cookies\":\"" + text.repeated(lengths.last().toInt()) +
                        "\"}";
            }
            const auto all = readClones(envelope(list)).difference->after->records;
            QCOMPARE(int(all.size()), lengths.size());
            const int cookies = CloneInfo::layout().slot("cookies");
            for (std::size_t i = 0; i < all.size(); ++i) {
                QCOMPARE(all[i]->bytes(0), lengths[int(i)]);
                QCOMPARE(all[i]->bytes(cookies), shown.repeated(lengths[int(i)].toInt()));
            }
        }
    }

    void hostileBytes()
    {
        constexpr int large = 24 * 1024 * 1024;
        const auto many = [](const char* text) {
            return QByteArray(text).repeated(large / int(qstrlen(text)));
        };
        const std::pair<QByteArray, QString> answers[] = {
            {envelope(many("1,") + "1"), "The list holds no object"},
            {envelope(many("1,")), "The answer is no JSON"},
            {envelope("{\"x\":[" + many("1,") + "1]}"), "The answer has a record that is too large"},
            {envelope("{\"uid\":\"" + QByteArray(large, 'x') + "\"}"),
             "The answer has a record that is too large"},
            {envelope("{\"uid\":\"" + QByteArray(3600000, 1) + "\"}"),
             "The answer has a part that is too large"},
            {"{\"x\":[" + many("1,") + "1],\"success\":true,\"data\":[]}",
             "The answer has a part that is too large"},
            {envelope(QByteArray("{},").repeated(1000000) + "{}"),
             "The list has more than 1,000,000 records"},
            {envelope(QByteArray(large, '[')), "The answer is nested too deep"},
            {envelope(QByteArray(large, '"')), "The answer is no JSON"},
            {envelope(many("},")), "The answer is no JSON"}};
        for (const auto& [answer, words] : answers) {
            const auto before = mostTaken = taken.load();
            const ListReading reading = readClones(answer);
            QVERIFY(!reading.success);
            QCOMPARE(reading.message, words);
            // A million records of a list that is refused are no snapshot.
            const std::ptrdiff_t records = words.contains("1,000,000") ? 1000000 * 180 : 0;
            const auto took = (mostTaken - before - records) / 1024 / 1024;
            QVERIFY2(took < 64, qPrintable(QString("%1 MiB: %2").arg(took).arg(words)));
        }
    }

    void equalBytes()
    {
        const QByteArray answer = records({"a:1", "b:2"});
        const SnapshotPtr first = readClones(answer).difference->after;
        QVERIFY(readClones(answer, first).difference->unchanged());
        QVERIFY(!readClones(answer, first, "another").difference->unchanged());
        for (int at = 0; at < answer.size(); ++at) {
            QByteArray other = answer;
            other[at] = char(other[at] ^ 1);
            const ListReading reading = readClones(other, first);
            QVERIFY(!reading.success || !reading.difference->unchanged());
        }
        // Records that stay the same are shared.
        const auto second = readClones(records({"b:2", "a:3"}), first).difference->after;
        QCOMPARE(second->records[0], first->records[1]);
        QVERIFY(second->records[1] != first->records[0]);
    }

    void occurrences()
    {
        const SnapshotPtr first = readClones(records({"a:1", ":2", "b:3", ":4", "a:5"})).difference->after;
        const auto rows = [&](const QStringList& list) {
            QStringList texts;
            const auto difference = readClones(records(list), first).difference;
            for (const int row : difference->oldRows)
                texts << QString::number(row);
            return texts.join(' ');
        };
        QCOMPARE(rows({"a:1", ":2", "b:3", ":4", "a:5", "a:6"}), "0 1 2 3 4 -1");
        QCOMPARE(rows({"a:1", "b:3", ":4", "a:5", ":6", ":7"}), "0 2 1 4 3 -1");
        QCOMPARE(rows({":", "c:", "a:", "a:"}), "1 -1 0 4");
    }

    void randomRefreshes()
    {
        refreshAtRandom(12, 1500);
        refreshAtRandom(9000, 8); // with resets
    }

    void ticks()
    {
        AppModel model;
        const auto apply = [&](const QStringList& list) {
            model.applyClones(*readClones(records(list), model.cloneModel()->snapshot()).difference);
        };
        const auto filter = [&](const QVariantList& uids) { model.filterClones({{"uid", uids}}); };
        apply({"a:1", "b:2", "c:3"});
        QSignalSpy changed(model.cloneModel(), &RecordModel::ticksChanged);
        auto* const second = static_cast<CloneInfo*>(model.cloneList().at(1));
        QSignalSpy secondChanged(second, &CloneInfo::selectedChanged);
        second->setSelected(true);
        filter({"1", "3"});
        model.selectAllClones(true);
        QCOMPARE(model.selectedUids(), "1\n2\n3\n");
        model.selectAllClones(false); // the hidden one stays ticked
        QCOMPARE(model.selectedUids(), "2\n");
        QCOMPARE(model.cloneModel()->tickedHidden(), 1);
        QCOMPARE(secondChanged.count(), 1);
        apply({"c:3", "d:4", "b:5"}); // lives over a refresh, with its record's new values
        QCOMPARE(model.selectedCloneIds(), QStringList{"b"});
        filter({});
        QCOMPARE(model.cloneModel()->tickedHidden(), 0);
        apply({"c:3"}); // and dies with it
        QVERIFY(!second->selected() || second->place() != 0);
        apply({"b:5", "c:3"});
        QCOMPARE(model.cloneModel()->ticked(), 0);
        model.selectAllClones(true);
        model.clearFarm();
        QCOMPARE(model.cloneModel()->ticked(), 0);
        QCOMPARE(changed.count(), 8);
    }

    void objectsLiveOn()
    {
        AppModel model;
        RecordModel& clones = *model.cloneModel();
        const auto apply = [&](const QStringList& list) {
            model.applyClones(*readClones(records(list), clones.snapshot()).difference);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        };
        const auto at = [&](int row) {
            return qobject_cast<CloneInfo*>(clones.data(clones.index(row), Qt::UserRole).value<QObject*>());
        };
        apply({"a:1", "b:2", "c:3"});
        const QPointer<CloneInfo> a = at(0), b = at(1), c = at(2);
        QSignalSpy changed(c, &CloneInfo::uidChanged);
        QSignalSpy other(c, &CloneInfo::idChanged);
        QSignalSpy placed(c, &CloneInfo::placeChanged);
        QObject holder;
        auto shownBy = std::make_unique<QObject>();
        b->keepFor(shownBy.get());
        apply({"c:4"});
        QCOMPARE(at(0), c.data());
        QCOMPARE(QString("%1 %2 %3").arg(changed.count()).arg(other.count()).arg(placed.count()), "1 0 1");
        QVERIFY(a && b); // the views have not let go of them yet
        apply({"c:5"});
        QVERIFY(!a && b); // somebody still shows it
        shownBy.reset();
        apply({"c:6"});
        QVERIFY(!b && c);

        // Rows that have been scrolled past do not keep their objects.
        QStringList many;
        for (int i = 0; i < 5000; ++i)
            many << QString("n%1:").arg(i);
        apply(many);
        at(7)->keepFor(&holder);
        const QPointer<CloneInfo> held = at(7);
        for (int row = 0; row < 5000; ++row) {
            at(row);
            if (row % 16 == 0)
                QCoreApplication::processEvents();
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY2(clones.children().size() < 3000, qPrintable(QString::number(clones.children().size())));
        QVERIFY(held && at(7) == held);
    }

    void largeSnapshotsDieElsewhere()
    {
        QByteArray list = R"({"id":"x"})";
        for (int i = 0; i < 20000; ++i)
            list += ",{\"id\":\"" + QByteArray::number(i) + "\"}";
        SnapshotPtr snapshot = readClones(envelope(list)).difference->after;
        const Record::Ptr record = snapshot->records[5];
        QThreadPool::globalInstance()->setMaxThreadCount(1);
        QSemaphore gate;
        QThreadPool::globalInstance()->start([&] { gate.acquire(); });
        snapshot.reset();
        QCOMPARE(record->ref.loadRelaxed(), 2); // waits for a worker
        gate.release();
        QThreadPool::globalInstance()->waitForDone();
        QCOMPARE(record->ref.loadRelaxed(), 1);
    }

private:
    /// Against what anybody would do: look every record up by id and occurrence, again and again.
    static void refreshAtRandom(int size, int rounds)
    {
        std::mt19937 random(7);
        const auto below = [&](int end) { return int(random() % unsigned(end)); };
        AppModel model;
        RecordModel& clones = *model.cloneModel();
        const QAbstractItemModelTester tester(&clones, QAbstractItemModelTester::FailureReportingMode::Fatal);
        QSignalSpy listChanged(&model, &AppModel::cloneListChanged);
        QSignalSpy shownChanged(&model, &AppModel::filteredCloneListChanged);
        QSignalSpy resets(&clones, &QAbstractItemModel::modelReset);
        // A view's own idea of the rows, from the model's signals alone; while they come, every row can be
        // read.
        QVector<QObject*> view;
        const auto at = [&](int row) {
            return clones.data(clones.index(row), Qt::UserRole).value<QObject*>();
        };
        connect(&clones, &QAbstractItemModel::rowsRemoved,
                [&](const QModelIndex&, int first, int last) { view.remove(first, last - first + 1); });
        connect(&clones, &QAbstractItemModel::rowsInserted, [&](const QModelIndex&, int first, int last) {
            for (int row = first; row <= last; ++row)
                view.insert(row, at(row));
            for (int row = 0; row < clones.rowCount() && size < 100; ++row)
                QCOMPARE(at(row), view[row]);
        });
        connect(&clones, &QAbstractItemModel::modelReset, [&] {
            view.clear();
            for (int row = 0; row < clones.rowCount(); ++row)
                view << at(row);
        });

        QStringList list;
        for (int i = 0; i < size / 2; ++i)
            list << QString("%1:%2").arg(below(size)).arg(below(3));
        QStringList shown;
        QHash<QString, bool> ticked; // by id and occurrence
        const auto keys = [](const QStringList& texts) {
            QHash<QString, int> seen;
            QStringList result;
            for (const QString& text : texts) {
                const QString id = text.section(':', 0, 0);
                result << id + '#' + QString::number(seen[id]++);
            }
            return result;
        };
        QString filter;
        for (int round = 0; round < rounds; ++round) {
            const QStringList before = round == 0 ? QStringList() : list;
            const QStringList shownBefore = shown;
            switch (below(size < 100 ? 8 : 3)) {
            case 0: // move, change, remove and insert
            case 1:
            case 2:
                for (int change = below(size + 1); change > 0; --change) {
                    if (!list.isEmpty() && below(3) == 0)
                        list.removeAt(below(list.size()));
                    if (list.size() < size && below(2) == 0)
                        list.insert(below(list.size() + 1), QString("%1:%2").arg(below(size)).arg(below(3)));
                    if (!list.isEmpty() && below(2) == 0)
                        list.replace(below(list.size()), QString(":%1").arg(below(3)));
                    if (list.size() > 1 && below(4) == 0)
                        list.move(below(list.size()), below(list.size()));
                }
                break;
            case 3:
                list.clear();
                break;
            case 4:
                std::reverse(list.begin(), list.end());
                break;
            case 5:
                std::shuffle(list.begin(), list.end(), random);
                break;
            case 6:
                filter = below(2) ? QString::number(below(3)) : QString();
                break;
            default:
                for (int i = 0; i < list.size(); ++i) {
                    auto* const clone = static_cast<CloneInfo*>(model.cloneList().at(i));
                    if (below(2) == 0)
                        clone->setSelected(below(2) == 0);
                    ticked[keys(list).at(i)] = clone->selected();
                }
            }
            listChanged.clear();
            shownChanged.clear();
            model.filterClones({{"uid", filter.isNull() ? QVariantList() : QVariantList{filter}}});
            const int shownByFilter = shownChanged.count();
            const ListReading reading = readClones(records(list), clones.snapshot());
            QVERIFY(reading.success);
            model.applyClones(*reading.difference);

            const QStringList now = keys(list);
            QHash<QString, bool> left;
            for (const QString& key : now)
                left[key] = ticked.value(key);
            ticked = left;
            QCOMPARE(listChanged.count(), int(keys(before) != now));
            shown.clear();
            int row = 0;
            int hidden = 0;
            for (int i = 0; i < list.size(); ++i) {
                const QString value = list[i].section(':', 1);
                hidden += ticked[now[i]] && !filter.isNull() && value != filter;
                if (!filter.isNull() && value != filter)
                    continue;
                shown << now[i];
                auto* const clone = qobject_cast<CloneInfo*>(at(row));
                QVERIFY(row < view.size() && view[row] == clone);
                QCOMPARE(clone->uid(), value);
                QCOMPARE(clone->place(), i);
                QCOMPARE(clone->selected(), ticked[now[i]]);
                QVERIFY(clone->filtered());
                QCOMPARE(clones.rowOf(clone), row++);
            }
            QCOMPARE(clones.rowCount(), row);
            QCOMPARE(view.size(), row);
            QVERIFY(shownChanged.count() == int(shown != shownBefore) || shownByFilter);
            QCOMPARE(clones.tickedHidden(), hidden);
            QCOMPARE(clones.ticked(), int(std::count(ticked.begin(), ticked.end(), true)));
            if (round % 100 == 0)
                QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
        QVERIFY2(size < 100 || resets.count() > 2, qPrintable(QString::number(list.size())));
    }
};

QTEST_GUILESS_MAIN(TestLists)
#include "tst_lists.moc"

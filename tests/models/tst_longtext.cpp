#include "models/LongText.h"

#include <QtTest>

class TestLongText : public QObject
{
    Q_OBJECT

private slots:
    void changes_data()
    {
        QTest::addColumn<int>("position");
        QTest::addColumn<int>("length");
        QTest::addColumn<QString>("added");
        QTest::addColumn<QString>("expected"); // of "ab\ncd"
        QTest::addColumn<int>("lines");
        const auto row = [](const char* name, int position, int length, const QString& added,
                            const QString& expected, int lines) {
            QTest::newRow(name) << position << length << added << expected << lines;
        };
        row("insert", 1, 0, "x\ny", "ax\nyb\ncd", 3);
        row("over a line break", 1, 3, "-", "a-d", 1);
        row("at the end", 5, 0, "\n", "ab\ncd\n", 2);
        row("all", 0, 5, "", "", 0);
        row("out of bounds", -3, 99, "x", "x", 1);
        row("behind the end", 99, 1, "x", "ab\ncdx", 2);
        row("as a text area has it", 0, 5, QString::fromUtf8("1\r\n2\r3\u20284\u20295\u00a06"),
            "1\n2\n3\n4\n5 6", 5);
    }

    void changes()
    {
        QFETCH(QString, expected);
        LongText text;
        const QSignalSpy changed(&text, &LongText::changed);
        text.reset("ab\r\ncd");
        text.undo();
        text.redo();
        QCOMPARE(text.text(), QString("ab\ncd"));
        QFETCH(int, position);
        QFETCH(int, length);
        QFETCH(QString, added);
        text.replace(position, length, added);
        QCOMPARE(text.text(), expected);
        QTEST(text.filledLines(), "lines");
        QCOMPARE(text.lines(0, 99).join('\n'), expected);
        QCOMPARE(text.startOf(99), expected.size());
        text.undo();
        text.undo();
        QCOMPARE(text.text(), QString("ab\ncd"));
        QCOMPARE(text.lines(1, 1), QStringList("cd"));
        text.redo();
        text.redo();
        QCOMPARE(text.text(), expected);
        QCOMPARE(changed.count(), 4);
        text.undo();
        text.replace(0, 0, "!");
        text.redo();
        QCOMPARE(text.text(), QString("!ab\ncd"));
    }

    void part_data()
    {
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("most");
        QTest::addColumn<int>("width"); // characters of each of 3,000 lines
        QTest::addColumn<int>("first");
        QTest::addColumn<int>("count");
        const auto row = [](const char* name, int line, int most, int width, int first, int count) {
            QTest::newRow(name) << line << most << width << first << count;
        };
        row("first", 0, 1000, 10, 0, 1000);
        row("middle", 1500, 1000, 10, 1000, 1000);
        row("end", 2999, 1000, 10, 2000, 1000);
        row("behind the end", 99999, 100, 10, 2900, 100);
        row("never more than a thousand", 0, 5000, 10, 0, 1000);
        row("long lines", 1500, 1000, 700, 1375, 250);
        row("too long lines", 1500, 1000, 300000, 0, 0);
    }

    void part()
    {
        QFETCH(int, line);
        QFETCH(int, most);
        QFETCH(int, width);
        QFETCH(int, first);
        QFETCH(int, count);
        QStringList lines;
        for (int i = 0; i < 3000; ++i)
            lines << QString::number(i).leftJustified(width > 1000 && i % 1000 != 500 ? 10 : width, '-');
        LongText text;
        text.reset(lines.join('\n'));
        QVERIFY(text.isTooLong());
        QCOMPARE(text.openPart(line, most), QStringList(lines.mid(first, count)).join('\n'));
        QCOMPARE(text.partCount(), count);
        if (count > 0)
            QCOMPARE(text.partStart(), first);

        const QSignalSpy changed(&text, &LongText::changed);
        text.closePart(QStringList(lines.mid(first, count)).join('\n'));
        QCOMPARE(changed.count(), 0);
        text.openPart(line, most);
        text.closePart("one\ntwo");
        if (count > 0)
            lines = lines.mid(0, first) + QStringList{"one", "two"} + lines.mid(first + count);
        QCOMPARE(text.text(), lines.join('\n'));
        QCOMPARE(text.partCount(), 0);
    }
};

QTEST_GUILESS_MAIN(TestLongText)
#include "tst_longtext.moc"

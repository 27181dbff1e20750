#include "app/AppIO.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSignalSpy>
#include <QStyleHints>
#include <QTimer>
#include <QWindow>
#include <QtTest>

class TestAppIO : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        m_window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&m_window));
    }

    void keys_data()
    {
        QTest::addColumn<Qt::KeyboardModifiers>("held");
        QTest::addColumn<Qt::Key>("key");
        QTest::addColumn<int>("selectAll");
        QTest::addColumn<int>("copy");
        const Qt::KeyboardModifiers none = Qt::NoModifier, control = Qt::ControlModifier;
        QTest::newRow("Control+A") << control << Qt::Key_A << 1 << 0;
        QTest::newRow("Control+C") << control << Qt::Key_C << 0 << 1;
        QTest::newRow("Control+B") << control << Qt::Key_B << 0 << 0;
        QTest::newRow("Control+X") << control << Qt::Key_X << 0 << 0;
        QTest::newRow("A") << none << Qt::Key_A << 0 << 0;
        QTest::newRow("Shift+C") << Qt::KeyboardModifiers(Qt::ShiftModifier) << Qt::Key_C << 0 << 0;
        QTest::newRow("Control+Shift+A") << (control | Qt::ShiftModifier) << Qt::Key_A << 0 << 0;
    }

    void keys()
    {
        QFETCH(Qt::KeyboardModifiers, held);
        QFETCH(Qt::Key, key);
        QSignalSpy selectAll(&m_io, &AppIO::keyboardSelectAll);
        QSignalSpy copy(&m_io, &AppIO::keyboardCopy);
        QSignalSpy changed(&m_io, &AppIO::keyboardModifiersChanged);
        const int steps = (held & Qt::ControlModifier ? 1 : 0) + (held & Qt::ShiftModifier ? 1 : 0);

        if (held & Qt::ControlModifier)
            QTest::keyPress(&m_window, Qt::Key_Control, Qt::ControlModifier);
        if (held & Qt::ShiftModifier)
            QTest::keyPress(&m_window, Qt::Key_Shift, held);
        QCOMPARE(m_io.keyboardModifiers(), held);
        const int changes = changed.count();
        QVERIFY(changes >= steps);
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Control, held, QString(), true);
        QCoreApplication::sendEvent(&m_window, &repeated);
        QCOMPARE(changed.count(), changes);
        QTest::sendKeyEvent(QTest::Press, &m_window, key, QString(), Qt::NoModifier);
        // The window offers the key to its items, one after the other.
        QKeyEvent offered(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(this, &offered);
        QTest::sendKeyEvent(QTest::Release, &m_window, key, QString(), Qt::NoModifier);
        QTEST(selectAll.count(), "selectAll");
        QTEST(copy.count(), "copy");

        QTest::keyRelease(&m_window, Qt::Key_Shift, Qt::NoModifier);
        QTest::keyRelease(&m_window, Qt::Key_Control, Qt::NoModifier);
        QCOMPARE(m_io.keyboardModifiers(), Qt::KeyboardModifiers(Qt::NoModifier));
    }

    void clipboard()
    {
        m_io.sendToClibboard(QStringLiteral("1\n<b>2</b>\n"));
        QCOMPARE(QGuiApplication::clipboard()->text(), QStringLiteral("1\n<b>2</b>\n"));
        QCOMPARE(m_io.clipboardText(), QStringLiteral("1\n<b>2</b>\n"));
    }

    // The timer is run faster.
    void cursorRestsWithThePerson()
    {
        auto* const blinking = m_io.findChild<QTimer*>();
        QCOMPARE(blinking->interval(), 10000);
        blinking->setInterval(1);
        const QStyleHints* const hints = QGuiApplication::styleHints();
        QTRY_COMPARE(hints->cursorFlashTime(), 0);
        QVERIFY(!blinking->isActive());
        blinking->setInterval(10000);
        QTest::mouseMove(&m_window, {20, 20});
        QCOMPARE(hints->cursorFlashTime(), 0);
        QTest::mouseClick(&m_window, Qt::LeftButton);
        QVERIFY(hints->cursorFlashTime() > 0);
        blinking->start(1);
        QTRY_COMPARE(hints->cursorFlashTime(), 0);
        QTest::keyClick(&m_window, Qt::Key_B);
        QVERIFY(hints->cursorFlashTime() > 0);
    }

private:
    QWindow m_window;
    AppIO m_io{qGuiApp};
};

QTEST_MAIN(TestAppIO)
#include "tst_appio.moc"

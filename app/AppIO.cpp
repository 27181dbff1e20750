#include "app/AppIO.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QStyleHints>

namespace {

constexpr int kBlinkingTime = 10000; // ms
// What style hints take for the system's own time.
constexpr int kSystemFlashTime = -1;

} // namespace

AppIO::AppIO(QGuiApplication* application) : QObject(application), m_application(application)
{
    m_application->installEventFilter(this);
    m_blinking.setSingleShot(true);
    m_blinking.setInterval(kBlinkingTime);
    connect(&m_blinking, &QTimer::timeout, this,
            [] { QGuiApplication::styleHints()->setCursorFlashTime(0); });
    m_blinking.start();
}

Qt::KeyboardModifiers AppIO::keyboardModifiers() const
{
    return m_keyboardModifiers;
}

void AppIO::sendToClibboard(const QString& text)
{
    QGuiApplication::clipboard()->setText(text);
}

QString AppIO::clipboardText(bool selected) const
{
    return QGuiApplication::clipboard()->text(selected ? QClipboard::Selection : QClipboard::Clipboard);
}

bool AppIO::eventFilter(QObject* watched, QEvent* event)
{
    // The application sees a key event once for the window, then again for each item that is offered it. Only
    // the first counts.
    if (watched->isWindowType()) {
        if (event->type() == QEvent::KeyPress)
            keyPressed(static_cast<QKeyEvent*>(event)->key());
        else if (event->type() == QEvent::KeyRelease)
            updateModifiers(static_cast<QKeyEvent*>(event)->key());
        if (event->type() == QEvent::KeyPress || event->type() == QEvent::MouseButtonPress)
            letCursorBlink();
    }
    return QObject::eventFilter(watched, event);
}

void AppIO::keyPressed(int key)
{
    const bool controlAlone = m_keyboardModifiers == Qt::ControlModifier;
    if (key == Qt::Key_A && controlAlone)
        emit keyboardSelectAll();
    else if (key == Qt::Key_C && controlAlone)
        emit keyboardCopy();
    else
        updateModifiers(key);
}

void AppIO::updateModifiers(int key)
{
    if (key != Qt::Key_Shift && key != Qt::Key_Control)
        return;
    // The event's own modifiers do not include its key yet; the system's do.
    const auto modifiers = m_application->queryKeyboardModifiers();
    if (modifiers == m_keyboardModifiers)
        return;
    m_keyboardModifiers = modifiers;
    emit keyboardModifiersChanged();
}

void AppIO::letCursorBlink()
{
    if (!m_blinking.isActive())
        QGuiApplication::styleHints()->setCursorFlashTime(kSystemFlashTime);
    m_blinking.start();
}

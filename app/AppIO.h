#pragma once

#include <QObject>
#include <QTimer>

class QGuiApplication;

/// Keyboard and clipboard for the scene: whether Shift and Control are down, the select-all and copy keys
/// wherever the focus is, the clipboard's text. Text cursors stop blinking ten seconds after the last key or
/// click, as each blink paints the whole window. Sees every event and consumes none. Lives on the UI thread.
class AppIO : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Qt::KeyboardModifiers keyboardModifiers READ keyboardModifiers NOTIFY keyboardModifiersChanged)

public:
    explicit AppIO(QGuiApplication* application);

    Qt::KeyboardModifiers keyboardModifiers() const;

    /// Puts @p text on the system clipboard as plain text. The name's spelling is part of the interface;
    /// kept.
    Q_INVOKABLE void sendToClibboard(const QString& text);
    /// The text on the clipboard, or of the selection that a middle click inserts (@p selected; empty where
    /// the system has none).
    Q_INVOKABLE QString clipboardText(bool selected = false) const;

    bool eventFilter(QObject* watched, QEvent* event) override;

signals:
    void keyboardModifiersChanged();
    /// Control+A, no other modifier.
    void keyboardSelectAll();
    /// Control+C, no other modifier.
    void keyboardCopy();

private:
    void keyPressed(int key);
    void updateModifiers(int key);
    void letCursorBlink();

    QGuiApplication* m_application;
    Qt::KeyboardModifiers m_keyboardModifiers = Qt::NoModifier;
    /// Runs while a cursor may blink.
    QTimer m_blinking{this};
};

#pragma once

#include <QObject>

class QGuiApplication;

/// What the scene needs of keyboard and clipboard: the Shift and Control keys that are held, the keys for
/// select-all and copy wherever the focus is, and a way to the clipboard. Sees every event, consumes none.
/// Lives on the UI thread.
class AppIO : public QObject
{
    Q_OBJECT
    Q_PROPERTY(Qt::KeyboardModifiers keyboardModifiers READ keyboardModifiers NOTIFY keyboardModifiersChanged)

public:
    explicit AppIO(QGuiApplication* application);

    Qt::KeyboardModifiers keyboardModifiers() const;

    /// Puts @p text on the system clipboard as plain text.
    Q_INVOKABLE void sendToClibboard(const QString& text);

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

    QGuiApplication* m_application;
    Qt::KeyboardModifiers m_keyboardModifiers = Qt::NoModifier;
};

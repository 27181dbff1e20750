#pragma once

#include <QObject>

/// A property that QML may read, write and bind to: the member (value-initialised), its getter, its setter
/// and its signal <name>Changed, emitted only when the value differs. For the class body of a QObject; the
/// access after it is private.
#define NOTIFYING_PROPERTY(Type, name, setName)                                                              \
    Q_PROPERTY(Type name READ name WRITE setName NOTIFY name##Changed)                                       \
public:                                                                                                      \
    const Type& name() const                                                                                 \
    {                                                                                                        \
        return m_##name;                                                                                     \
    }                                                                                                        \
    void setName(const Type& value)                                                                          \
    {                                                                                                        \
        if (m_##name == value)                                                                               \
            return;                                                                                          \
        m_##name = value;                                                                                    \
        emit name##Changed();                                                                                \
    }                                                                                                        \
    Q_SIGNAL void name##Changed();                                                                           \
                                                                                                             \
private:                                                                                                     \
    Type m_##name {}

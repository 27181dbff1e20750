#pragma once

#include <QObject>

/// One property of a QObject class that QML may read, write and bind to: the member, its getter, its setter
/// and its signal <name>Changed, which the setter emits only when the value differs. It starts
/// value-initialised. Stands in the class body; the access after it is private.
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

#pragma once

#include <QDebug>
#include <QMessageLogger>

/// Starts one log line of the program: "[D][ operation ][ line ]", to which the caller streams the message.
/// Lines go to Qt's debug stream without file or function context, so any installed message handler sees
/// them. Safe on every thread.
inline QDebug logLine(const char* operation, int line)
{
    return QMessageLogger().debug() << "[D][" << operation << "][" << line << "]";
}

/// Starts a log line under the name of the enclosing function.
#define LOG_D logLine(__func__, __LINE__)

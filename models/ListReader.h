#pragma once

#include "models/Difference.h"

/// What an answer to the question for a list says.
struct ListReading {
    /// The service said so, and there is a list.
    bool success = false;
    /// The service's own message; without a list, why there is none.
    QString message;
    /// Null without success.
    std::shared_ptr<Difference> difference;
};

/// Reads @p answer, a whole answer of the service, as a list of records, and compares it with @p last, which
/// is never null. The answer that @p last came from, for the same @p owner (a token), is not read again.
/// Elements that are no objects are left out; a list of nothing else is no list, nor is one of more than
/// 1,000,000 records, or with one of more than 3.5 MiB. Takes at most 64 MiB beside the answer and the
/// snapshots, whatever the bytes. Any thread; @p layout must stay.
ListReading readList(std::string_view answer, const RecordLayout& layout, const SnapshotPtr& last,
                     const QString& owner);

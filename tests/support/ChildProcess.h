#pragma once

#include <functional>
#include <string>
#include <vector>

/// The end of a process.
struct ChildEnd {
    bool aborted = false;
    int status = -1;                  ///< exit status; -1 if it did not exit
    std::vector<std::string> journal; ///< of the part alone
};

/// Runs `part` in a copy of this process: for parts that abort, or that change settings of the whole process. After a
/// part that returns the status is 99, after one that takes too long it is absent.
[[nodiscard]] ChildEnd runInChild(const std::function<void()>& part);

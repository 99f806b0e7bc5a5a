#pragma once

#include <functional>
#include <string>
#include <vector>

/// How a part of the program ended that ran in a process of its own.
struct ChildEnd {
    bool aborted = false;
    int status = -1;                  ///< exit status, if it exited
    std::vector<std::string> journal; ///< of the part alone
};

/// Runs `part`, which ends its process, in a copy of this one. A part that returns ends it with status 99, one
/// that takes too long ends without a status.
[[nodiscard]] ChildEnd runInChild(const std::function<void()>& part);

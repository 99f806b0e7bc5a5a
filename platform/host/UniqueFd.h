#pragma once

#include <utility>

#include <unistd.h>

/// A file descriptor that closes itself.
class UniqueFd {
public:
    /// Owns the descriptor; a negative one means none.
    explicit UniqueFd(int descriptor = -1) : m_descriptor(descriptor) {}
    UniqueFd(UniqueFd&& other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    UniqueFd& operator=(UniqueFd&& other) noexcept {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~UniqueFd() {
        if (m_descriptor >= 0) (void)::close(m_descriptor); // closes the descriptor even if it reports a failure
    }
    [[nodiscard]] int get() const { return m_descriptor; }
    explicit operator bool() const { return m_descriptor >= 0; }

private:
    int m_descriptor;
};

#pragma once

/// Deleter of a C library's objects.
template <auto kRelease>
struct Release {
    void operator()(auto* object) const { (void)kRelease(object); }
};

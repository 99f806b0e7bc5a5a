#pragma once

/// A custom control that has something to do when it has been made from a description, its items included.
class MadeFromDescription {
public:
    virtual ~MadeFromDescription() = default;
    virtual void didDecode() = 0;
};

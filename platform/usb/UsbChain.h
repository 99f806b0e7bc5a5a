#pragma once

#include "usb/Usb.h"

#include <functional>
#include <optional>
#include <utility>
#include <vector>

// The way from a service over its plug-in to the object, for implementations that have nothing to do on it
// but to make the object at its end.

/// Result that a step has to report instead of doing its work, absent normally.
using ForcedResult = std::function<std::optional<UsbResult>()>;

inline std::optional<UsbResult> nothingForced() {
    return std::nullopt;
}

template <class Object>
using MakeObject = std::function<UsbYield<Object>()>;

template <class Object>
class ChainPlugIn : public UsbPlugIn<Object> {
public:
    explicit ChainPlugIn(MakeObject<Object> make) : m_make(std::move(make)) {}
    UsbYield<Object> QueryInterface() override { return m_make(); }

private:
    MakeObject<Object> m_make;
};

template <class Object>
class ChainService : public UsbService<Object> {
public:
    explicit ChainService(MakeObject<Object> make, ForcedResult plugIn = nothingForced,
                          ForcedResult release = nothingForced)
        : m_make(std::move(make)), m_plugIn(std::move(plugIn)), m_release(std::move(release)) {}

    UsbYield<UsbPlugIn<Object>> createPlugIn() override {
        if (const auto forced = m_plugIn())
            return {*forced, nullptr};
        return {UsbCode::Success, std::make_unique<ChainPlugIn<Object>>(m_make)};
    }
    UsbResult release() override { return m_release().value_or(UsbCode::Success); }

private:
    MakeObject<Object> m_make;
    ForcedResult m_plugIn;
    ForcedResult m_release;
};

template <class Object>
class ChainIterator : public UsbIterator<Object> {
public:
    void add(std::unique_ptr<UsbService<Object>> service) { m_services.push_back(std::move(service)); }
    std::unique_ptr<UsbService<Object>> next() override {
        return m_next < m_services.size() ? std::move(m_services[m_next++]) : nullptr;
    }

private:
    std::vector<std::unique_ptr<UsbService<Object>>> m_services;
    std::size_t m_next = 0;
};

/// Whether a field of a find request admits a descriptor's value.
inline bool admits(std::uint16_t field, std::uint8_t value) {
    return field == UsbFindInterfaceRequest::kMatchAny || field == value;
}

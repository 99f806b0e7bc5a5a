#pragma once

#include "Usb.h"

#include <functional>
#include <utility>
#include <vector>

// Services and plug-ins that only lead to an object.

template <class Object>
using MakeObject = std::function<std::unique_ptr<Object>()>;

template <class Object>
class ChainPlugIn : public UsbPlugIn<Object> {
public:
    explicit ChainPlugIn(MakeObject<Object> make) : m_make(std::move(make)) {}
    UsbOutcome<Object> QueryInterface() override { return {UsbCode::Success, m_make()}; }

private:
    MakeObject<Object> m_make;
};

template <class Object>
class ChainService : public UsbService<Object> {
public:
    explicit ChainService(MakeObject<Object> make) : m_make(std::move(make)) {}
    UsbOutcome<UsbPlugIn<Object>> createPlugIn() override {
        return {UsbCode::Success, std::make_unique<ChainPlugIn<Object>>(m_make)};
    }
    UsbResult release() override { return UsbCode::Success; }

private:
    MakeObject<Object> m_make;
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

#pragma once

#include "FatalStop.h"

#include <QPointer>
#include <QWidget>

#include <vector>

/// A controller's reference to a control of its window, by the control's name. The window owns the control.
class OutletBase {
public:
    virtual ~OutletBase() = default;
    OutletBase(const OutletBase&) = delete;
    OutletBase& operator=(const OutletBase&) = delete;

    [[nodiscard]] const char* name() const { return m_name; }
    /// Finds the control of that name and class below `root`.
    virtual void connectBelow(const QWidget& root) = 0;

protected:
    explicit OutletBase(const char* name) : m_name(name) {}

private:
    const char* m_name;
};

/// The outlets of one controller, in the order of their declaration.
using OutletList = std::vector<OutletBase*>;

template <class Control>
class Outlet : public OutletBase {
public:
    /// Empty until the controller's window has been loaded.
    Outlet(OutletList& outlets, const char* name) : OutletBase(name) { outlets.push_back(this); }

    void connectBelow(const QWidget& root) override {
        m_control = root.findChild<Control*>(QString::fromLatin1(name()));
    }

    /// The control. Stops the program if the outlet is not connected.
    [[nodiscard]] Control* get() const {
        if (!m_control) fatalStop("outlet %s is not connected", name());
        return m_control.data();
    }
    Control* operator->() const { return get(); }

private:
    QPointer<Control> m_control;
};

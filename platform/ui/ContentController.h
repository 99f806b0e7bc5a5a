#pragma once

#include "Outlet.h"

#include <QObject>
#include <QVariant>

/// Controls a window's content. The window description makes it, connects its outlets to the window's controls and the
/// controls' actions to its slots, all by name, and calls `viewDidLoad`.
class ContentController : public QObject {
    Q_OBJECT

public:
    virtual void viewDidLoad() {}

    [[nodiscard]] QVariant representedObject() const { return m_representedObject; }
    virtual void setRepresentedObject(const QVariant& object) { m_representedObject = object; }

    [[nodiscard]] const OutletList& outlets() const { return m_outlets; }

protected:
    OutletList m_outlets; ///< filled by the outlets themselves

private:
    QVariant m_representedObject;
};

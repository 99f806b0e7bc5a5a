#include "windows/Outlet.h"

#include "host/FatalStop.h"

void OutletBase::stopUnconnected() const {
    fatalStop("outlet %s is not connected", m_name);
}

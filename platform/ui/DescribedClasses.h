#pragma once

#include <QByteArray>
#include <QMetaObject>
#include <QMetaType>

/// Makes a class known by name to window descriptions. Its constructor must be Q_INVOKABLE.
template <class Class>
void registerDescribedClass() {
    qRegisterMetaType<Class*>();
}

/// The meta-object of a registered class, absent for any other name.
inline const QMetaObject* describedClass(const QByteArray& name) {
    return QMetaType::fromName(name + '*').metaObject();
}

/// A custom control that has something to do when it has been made from a description, its items included.
class MadeFromDescription {
public:
    virtual ~MadeFromDescription() = default;
    virtual void didDecode() = 0;
};

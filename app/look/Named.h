#pragma once

#include <QString>

/// Names a widget, layout or timer as its member, which is how tests and assistive tools find it. Gives the object
/// back. `name` is ASCII.
template <typename Object> Object* named(const char* name, Object* object)
{
    object->setObjectName(QLatin1String(name));
    return object;
}

/// The same for a name that is put together, such as "meter3".
template <typename Object> Object* named(const QString& name, Object* object)
{
    object->setObjectName(name);
    return object;
}

#pragma once

#include <QString>

/// Names a widget or layout as its member, which is how tests and assistive tools find it. Gives the object back.
template <typename Object> Object* named(const char* name, Object* object)
{
    object->setObjectName(QString::fromLatin1(name));
    return object;
}

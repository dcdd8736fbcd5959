#pragma once

#include <QCheckBox>
#include <QString>
#include <QtGlobal>

/// Names a widget as its member, which is how tests and assistive tools find it. Gives the widget back.
template <typename Widget> Widget* named(const char* name, Widget* widget)
{
    widget->setObjectName(QString::fromLatin1(name));
    return widget;
}

/// Calls `slot`, a member function of `receiver` without arguments, at each change of the box's state.
/// Qt renamed the signal in 6.7.
template <typename Receiver, typename Slot>
void connectStateChanged(const QCheckBox* box, const Receiver* receiver, Slot slot)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 7, 0)
    QObject::connect(box, &QCheckBox::checkStateChanged, receiver, slot);
#else
    QObject::connect(box, &QCheckBox::stateChanged, receiver, slot);
#endif
}

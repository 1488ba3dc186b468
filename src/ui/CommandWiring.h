#pragma once

#include <QAbstractButton>
#include <QAction>
#include <type_traits>

// A window's command is reached from its button and from its menu item alike; either may be
// missing. A button paired with a menu item names it in the property "komento": the item's
// letters and keys reach the command from the keyboard.
inline void pairCommand(QAbstractButton* button, QAction* action)
{
    if (button && action)
        button->setProperty("komento", QVariant::fromValue<QObject*>(action));
}

template <typename Receiver, typename Slot>
void connectCommand(QAbstractButton* button, QAction* action, Receiver* receiver,
    Slot slot) requires std::is_member_function_pointer_v<Slot>
{
    pairCommand(button, action);
    if (button)
        QObject::connect(
            button, &QAbstractButton::clicked, receiver, [receiver, slot] { (receiver->*slot)(); });
    if (action)
        QObject::connect(action, &QAction::triggered, receiver, [receiver, slot] { (receiver->*slot)(); });
}

// The same for a command given as a function.
template <typename Function>
void connectCommand(QAbstractButton* button, QAction* action, QObject* context,
    Function function) requires std::is_invocable_v<Function>
{
    pairCommand(button, action);
    if (button)
        QObject::connect(button, &QAbstractButton::clicked, context, function);
    if (action)
        QObject::connect(action, &QAction::triggered, context, function);
}

#pragma once

#include <QStringList>
#include <functional>

class QLineEdit;
class QObject;
class QWidget;

// The editor of an account cell, as every account field has it: "tTili", completing a number or
// any part of a name from `accounts` (case-insensitive). A choice taken from the open completion
// list reaches the editor as returnPressed, past its delegate's own Enter handling, so `accept`
// runs then, once the list has closed and only while the editor lives.
QLineEdit* accountEditor(
    QWidget* parent, const QStringList& accounts, QObject* context, std::function<void(QLineEdit*)> accept);

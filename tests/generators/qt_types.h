// The types that the annotations of the interface name, as a client in Qt declares them.
#pragma once

#include <QtDBus/QtDBus>

struct Any {};
QDBusArgument& operator<<(QDBusArgument& argument, const Any& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, Any& value);
using ParameterList = QList<Any>;
using UsesList = QList<QStringList>;
using StateList = QList<Any>;
using ReasonList = QList<Any>;
using PreviewList = QList<Any>;
using RefusalList = QList<Any>;
using TransactionList = QList<Any>;
using CommitList = QList<Any>;
using ChangeList = QList<Any>;
Q_DECLARE_METATYPE(Any)

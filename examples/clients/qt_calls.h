// Calls of both interfaces, their answers and errors, for client.cpp.
#pragma once
#include <QtCore/QTextStream>
#include <QtDBus/QtDBus>

const QString NAME = "org.tavrel.transaction";
constexpr uint COMMITTED = 0xffffffff;  // in place of a transaction: what everybody sees
constexpr uint NOBODYS = 0xfffffffe;    // a transaction that is not open
constexpr uint WRITABLE = 4;            // flags of GetState
constexpr uint HAS_VALUE = 64;

inline void say(const QString& line) { QTextStream(stdout) << line << Qt::endl; }

// Tells an error, and what a client does about it. The second interface has a name for each; the
// first has one for all, and only its text tells the cause.
inline void report(const QDBusMessage& error) {
  static const std::pair<QString, QString> REMEDIES[] = {
      {"Error.UnknownTransaction:", "begin anew"}, {"Error.UnknownParameter:", "list them"},
      {"Error.InvalidPattern:", "mend it"},        {"Error.TooLarge:", "ask for less"},
      {"invalid transaction id", "begin anew"},    {"", "tell the user"}};
  const QString text = error.errorName() + ": " + error.errorMessage();
  const auto* remedy = REMEDIES;
  while (!text.contains(remedy->first)) remedy++;
  say("error: " + error.errorMessage() + "; " + remedy->second);
}

// The arguments of the answer; none after an error.
inline QVariantList call(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& arguments) {
  auto message = QDBusMessage::createMethodCall(NAME, path, interface, method);
  message.setArguments(arguments);
  const QDBusMessage answer = QDBusConnection::sessionBus().call(message);
  if (answer.type() == QDBusMessage::ErrorMessage) report(answer);
  return answer.type() == QDBusMessage::ReplyMessage ? answer.arguments() : QVariantList();
}
template <typename... Arguments>
QVariantList first(const QString& method, const Arguments&... arguments) {
  return call("/transaction", "org.tavrel.transaction", method, {arguments...});
}
template <typename... Arguments>
QVariantList second(const QString& method, const Arguments&... arguments) {
  return call("/parameters", "org.tavrel.parameters1", method, {arguments...});
}

// A field of a row as a text.
inline QString textOf(const QVariant& field) {
  if (field.type() == QVariant::StringList) return field.toStringList().join(", ");
  if (!field.canConvert<QDBusArgument>()) return field.toString();
  QString text;
  const auto map = field.value<QDBusArgument>();
  if (map.currentType() != QDBusArgument::MapType) return text;  // the ranges of GetState
  map.beginMap();
  while (!map.atEnd()) {
    QString name, value;
    map.beginMapEntry();
    map >> name >> value;
    map.endMapEntry();
    text += "; " + name + " is " + value;
  }
  map.endMap();
  return text;
}

// The rows of a list of structures.
inline QList<QStringList> rowsOf(const QVariant& list) {
  QList<QStringList> rows;
  if (!list.isValid()) return rows;
  const auto in = list.value<QDBusArgument>();
  in.beginArray();
  while (!in.atEnd()) {
    QStringList row;
    in.beginStructure();
    while (!in.atEnd()) row += textOf(in.asVariant());
    in.endStructure();
    rows += row;
  }
  in.endArray();
  return rows;
}
